#include "Foundation/Literals.h"
#include "Platform/Linux/Decode/DecodeMessages.h"
#include "Platform/Linux/Decode/Sandbox.h"
#include "Support/Await.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"
#include "Support/RealDecoder.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QProcess>
#include <QSet>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <libheif/heif.h>
#include <numeric>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>

using namespace corvane;

namespace {

constexpr PictureBox box { 100, 50, 200 };

template <typename Value> using Answered = std::optional<std::expected<Value, DecodeFailure>>;

QImage image(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::blue);
    for (int x = 0; x < size.width() / 2; ++x) {
        for (int y = 0; y < size.height(); ++y)
            image.setPixelColor(x, y, QColor(200, 30 + y % 20, 30));
    }
    return image;
}

/// The running DecoderProgram children of this process.
QList<pid_t> children()
{
    QList<pid_t> found;
    for (const QString& entry : QDir("/proc").entryList(QDir::Dirs)) {
        QFile file("/proc/" + entry + "/stat");
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QList<QByteArray> fields = file.readAll().split(' ');
        if (fields.value(1) == "(DecoderProgram)" && fields.value(2) != "Z" && fields.value(3).toInt() == ::getpid())
            found.append(entry.toInt());
    }
    return found;
}

class MediaDecoderTest : public testing::Test {
protected:
    template <typename Value> static std::expected<Value, DecodeFailure> result(Answered<Value>& answer)
    {
        EXPECT_TRUE(await([&] { return answer.has_value(); }));
        return answer.value_or(std::unexpected(DecodeFailure::Unavailable));
    }

    std::expected<Pixels, DecodeFailure> picture(const QString& path, PictureBox room = box)
    {
        return picture(real.decoder, path, room);
    }
    static std::expected<Pixels, DecodeFailure> picture(MediaDecoder& by, const QString& path, PictureBox room = box)
    {
        Answered<Pixels> answer;
        const auto request = by.picture(path, room, [&](const auto& pixels) { answer = pixels; });
        return result(answer);
    }
    DecodeFailure problem(const QString& path)
    {
        const auto pixels = picture(path);
        EXPECT_FALSE(pixels.has_value()) << path.toStdString();
        return pixels ? DecodeFailure::Unavailable : pixels.error();
    }
    SoundPiece sound(const QString& path, SoundPosition position)
    {
        Answered<SoundPiece> answer;
        const auto request = real.decoder.sound(path, position, [&](const auto& piece) { answer = piece; });
        return result(answer).value_or(SoundPiece());
    }

    QString put(const QString& name, const QByteArray& content) const
    {
        home.write(name, content);
        return home.path(name);
    }
    QString saved(const QString& name, QSize size) const
    {
        EXPECT_TRUE(image(size).save(home.path(name))) << name.toStdString();
        return home.path(name);
    }
    QString made(const QString& name, const QString& source) const
    {
        EXPECT_EQ(QProcess::execute(
                      "ffmpeg", { "-v", "error", "-f", "lavfi", "-i", source, "-frames:v", "1", home.path(name) }),
            0);
        return home.path(name);
    }
    QString heif(const QString& name) const;
    QString slowJpeg() const;

    const LogCapture log;
    const TemporaryHome home;
    RealDecoder real;
};

QString MediaDecoderTest::heif(const QString& name) const
{
    heif_context* const context = heif_context_alloc();
    heif_image* still = nullptr;
    heif_image_create(320, 240, heif_colorspace_RGB, heif_chroma_interleaved_RGB, &still);
    heif_image_add_plane(still, heif_channel_interleaved, 320, 240, 24);
    int stride = 0;
    uint8_t* const plane = heif_image_get_plane(still, heif_channel_interleaved, &stride);
    std::iota(plane, plane + stride * 240, uint8_t(0));
    heif_encoder* encoder = nullptr;
    heif_context_get_encoder_for_format(context, heif_compression_HEVC, &encoder);
    heif_context_encode_image(context, still, encoder, nullptr, nullptr);
    EXPECT_EQ(heif_context_write_to_file(context, home.path(name).toUtf8().constData()).code, heif_error_Ok);
    heif_encoder_release(encoder);
    heif_image_release(still);
    heif_context_free(context);
    return home.path(name);
}

/// A progressive JPEG with thousands of scans. Each scan is only a few bytes, but covers the whole picture.
QString MediaDecoderTest::slowJpeg() const
{
    QImage plain(4096, 4096, QImage::Format_Grayscale8);
    plain.fill(128);
    QImageWriter writer(home.path("plain.jpg"));
    writer.setProgressiveScanWrite(true);
    EXPECT_TRUE(writer.write(plain));
    const QByteArray jpeg = home.read("plain.jpg");
    const qsizetype last = jpeg.lastIndexOf("\xff\xda");
    const QByteArray pass = jpeg.sliced(last).chopped(2);
    return put("slow.jpg", jpeg.chopped(2) + pass.repeated(60'000) + jpeg.last(2));
}

}

TEST_F(MediaDecoderTest, eachFormatIsReadByItsContentAndNoOtherIs)
{
    for (const QString& path : { saved("a.png", { 320, 240 }), saved("a.jpg", { 320, 240 }),
             saved("a.webp", { 320, 240 }), made("a.gif", "testsrc=size=320x240"), heif("a.heic") }) {
        ASSERT_TRUE(QFile::copy(path, path + ".svg"));
        const auto pixels = picture(path + ".svg");
        ASSERT_TRUE(pixels.has_value()) << path.toStdString() << qPrintable(describe(pixels.error()));
        EXPECT_EQ(pixels->size, QSize(133, 100)) << path.toStdString();
        if (path.endsWith(".gif"))
            continue; // a truncated GIF is still shown
        QFile file(path);
        ASSERT_TRUE(file.resize(file.size() / 2));
        EXPECT_EQ(problem(path), DecodeFailure::Damaged) << path.toStdString();
    }
    QByteArray bomb = "<svg xmlns='http://www.w3.org/2000/svg'><g id='a0'><rect width='1' height='1'/></g>";
    for (int i = 1; i < 40; ++i)
        bomb += u"<g id='a%1'>%2</g>"_s.arg(i).arg(u"<use href='#a%1'/>"_s.arg(i - 1).repeated(10)).toUtf8();
    for (const QString& name : { "bomb.svg", "bomb.jpg" })
        EXPECT_EQ(problem(put(name, bomb + "</svg>")), DecodeFailure::UnknownFormat);
    EXPECT_EQ(problem(put("device.svg", "<svg><image href='file:///dev/zero'/></svg>")), DecodeFailure::UnknownFormat);
    EXPECT_EQ(problem(made("a.bmp", "testsrc")), DecodeFailure::UnknownFormat);
    EXPECT_EQ(problem(put("empty.png", "")), DecodeFailure::UnknownFormat);
}

TEST_F(MediaDecoderTest, whatIsNoPlainFileIsNotOpenedAndWhatIsTooLargeNotDecoded)
{
    ASSERT_EQ(::mkfifo(home.path("pipe.png").toUtf8().constData(), 0600), 0);
    ASSERT_TRUE(QFile::link(saved("a.png", { 10, 10 }), home.path("link.png")));
    for (const QString& path : { home.path("pipe.png"), home.path("link.png"), home.path(""), u"/dev/zero"_s })
        EXPECT_EQ(problem(path), DecodeFailure::NotAFile) << path.toStdString();
    EXPECT_EQ(problem(home.path("gone.png")), DecodeFailure::Missing);
    EXPECT_EQ(problem(saved("edge.png", { 400'000, 1 })), DecodeFailure::TooManyPixels);
    EXPECT_EQ(problem(saved("thin.png", { 1, 500 })), DecodeFailure::TooManyPixels);
    for (const QSize size : { QSize(500, 5), QSize(5, 500), QSize(30'000, 300) })
        EXPECT_TRUE(picture(saved("edge.png", size)).has_value()) << size.width();
    for (const QSize size : { QSize(501, 5), QSize(5, 501), QSize(30'001, 301) })
        EXPECT_EQ(problem(saved("edge.png", size)), DecodeFailure::TooManyPixels) << size.width();
    QFile large(saved("large.png", { 10, 10 }));
    ASSERT_TRUE(large.resize(64 << 20));
    EXPECT_TRUE(picture(large.fileName()).has_value());
    ASSERT_TRUE(large.resize((64 << 20) + 1));
    EXPECT_EQ(problem(large.fileName()), DecodeFailure::TooLarge);
}

TEST_F(MediaDecoderTest, aPictureKeepsItsRatioWithinItsRoomAndIsTurnedAsItsCameraSays)
{
    EXPECT_EQ(picture(saved("wide.png", { 900, 300 }))->size, QSize(200, 100)); // cropped at the sides
    EXPECT_EQ(picture(saved("tall.jpg", { 300, 900 }))->size, QSize(50, 100));
    EXPECT_EQ(picture(saved("small.png", { 40, 30 }))->size, QSize(40, 30));
    QByteArray jpeg = home.read("tall.jpg");
    const QByteArray turned("\xff\xe1\x00\x22"
                            "Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0",
        36);
    const auto pixels = picture(put("turned.jpg", jpeg.insert(2, turned)));
    ASSERT_TRUE(pixels.has_value());
    EXPECT_EQ(pixels->size, QSize(200, 100));
    // The left edge is now at the top.
    const auto* const argb = reinterpret_cast<const QRgb*>(pixels->bytes.constData());
    EXPECT_GT(qRed(argb[5 * 200 + 100]), 150);
    EXPECT_GT(qBlue(argb[95 * 200 + 100]), 150);
}

TEST_F(MediaDecoderTest, aFileThatTakesTooLongOrKillsTheChildIsNotTriedAgainAndTheNextOneIsRead)
{
    const QString slow = slowJpeg();
    const QString good = saved("good.png", { 100, 100 });
    SeccompMediaDecoder hurried(real.scheduler, CORVANE_TEST_PROGRAMS "/DecoderProgram",
        { .perFile = Milliseconds(1000), .start = Milliseconds(60'000) });
    EXPECT_EQ(picture(hurried, slow).error(), DecodeFailure::TooSlow);
    EXPECT_EQ(picture(hurried, slow).error(), DecodeFailure::TooSlow);
    EXPECT_EQ(log.lines().filter("takes too long").size(), 1) << "the second time nobody was asked";
    ASSERT_TRUE(await([] { return children().isEmpty(); }));

    Answered<Pixels> poisoned;
    Answered<Pixels> next;
    const auto first = real.decoder.picture(slow, box, [&](const auto& pixels) { poisoned = pixels; });
    const auto second = real.decoder.picture(good, box, [&](const auto& pixels) { next = pixels; });
    auto third = real.decoder.picture(good, box, [](const auto&) { ADD_FAILURE() << "it was withdrawn"; });
    third.reset();
    ASSERT_TRUE(await([&] { return children().size() == 1; }));
    const pid_t child = children().first();
    // Wait until the child is in its sandbox.
    ASSERT_TRUE(await([&] {
        QFile file(u"/proc/%1/status"_s.arg(child));
        return file.open(QIODevice::ReadOnly) && file.readAll().contains("Seccomp:\t2");
    }));
    ASSERT_TRUE(await([&] { return poisoned || ::kill(child, SIGKILL) == 0; }));
    ASSERT_FALSE(result(poisoned).has_value());
    EXPECT_TRUE(result(next).has_value());
}

TEST_F(MediaDecoderTest, itsEndWaitsForNoFileAndLeavesNoChild)
{
    const QString slow = slowJpeg();
    auto decoder = std::make_unique<SeccompMediaDecoder>(
        real.scheduler, CORVANE_TEST_PROGRAMS "/DecoderProgram", SeccompMediaDecoder::Limits());
    const auto request = decoder->picture(slow, box, [](const auto&) { ADD_FAILURE(); });
    ASSERT_TRUE(await([] { return children().size() == 1; }));
    decoder.reset();
    EXPECT_TRUE(await([] { return children().isEmpty(); }));
    SeccompMediaDecoder missing(real.scheduler, home.path("no-such-program"), {});
    EXPECT_EQ(picture(missing, saved("a.png", { 9, 9 })).error(), DecodeFailure::Unavailable);
}

TEST_F(MediaDecoderTest, theMiddleOfAPictureIsShown)
{
    QImage striped(900, 300, QImage::Format_RGB32);
    striped.fill(Qt::white);
    for (int y = 0; y < 300; ++y)
        for (int x = 0; x < 900; ++x)
            if (x < 150 || x >= 750)
                striped.setPixel(x, y, qRgb(255, 0, 0));
            else if (x < 180 || y < 30)
                striped.setPixel(x, y, qRgb(0, 0, 255));
    ASSERT_TRUE(striped.save(home.path("striped.png")));
    const auto pixels = picture(home.path("striped.png"));
    ASSERT_TRUE(pixels.has_value());
    ASSERT_EQ(pixels->size, QSize(200, 100));
    const auto* const argb = reinterpret_cast<const QRgb*>(pixels->bytes.constData());
    EXPECT_EQ(argb[50 * 200 + 4], qRgb(0, 0, 255)) << "what is left of it is cut off";
    EXPECT_EQ(argb[50 * 200 + 20], qRgb(255, 255, 255));
    EXPECT_EQ(argb[50 * 200 + 195], qRgb(255, 255, 255));
    EXPECT_EQ(argb[4 * 200 + 100], qRgb(0, 0, 255));
    EXPECT_EQ(picture(saved("tiny.png", { 1, 1 }), { 100, 1, 200 })->size, QSize(1, 1));
    EXPECT_EQ(picture(saved("flat.png", { 400, 4 }), { 1, 1, 10 })->size, QSize(10, 1));
}

TEST_F(MediaDecoderTest, soundThatIsPlayedComesFirstAndAnIdleChildEnds)
{
    SeccompMediaDecoder decoder(real.scheduler, CORVANE_TEST_PROGRAMS "/DecoderProgram",
        { .perFile = Milliseconds(60'000), .start = Milliseconds(60'000), .idle = Milliseconds(1) });
    const QString still = saved("a.png", { 20, 20 });
    const QString tone = made("a.wav", "sine=duration=1");
    QStringList answered;
    const auto pictureAs = [&](const QString& name) {
        return decoder.picture(still, box, [&answered, name](const auto&) { answered.append(name); });
    };
    const auto soundAs = [&](const QString& name, SampleFormat format) {
        return decoder.sound(tone, { 1, 0, 100, format }, [&answered, name](const auto& piece) {
            answered.append(name + ' ' + QString::number(piece ? piece->samples.size() : -1));
        });
    };
    const auto first = pictureAs("first");
    const auto withdrawn = std::make_unique<MediaDecoder::Handle>(pictureAs("withdrawn"));
    const auto second = pictureAs("second");
    const auto speech = soundAs("speech", speechFormat);
    const auto played = soundAs("played", { SoundPiece::rate, SoundPiece::channels });
    withdrawn->reset();
    EXPECT_TRUE(answered.isEmpty()) << "nothing is answered at once";
    EXPECT_TRUE(await([&] { return answered.size() == 4; }));
    EXPECT_EQ(answered, QStringList({ "played 200", "first", "second", "speech 100" }));
    EXPECT_TRUE(await([] { return children().isEmpty(); }));
    auto dropped = pictureAs("dropped");
    EXPECT_TRUE(await([] { return !children().isEmpty(); }));
    dropped.reset();
    const auto next = pictureAs("next");
    EXPECT_TRUE(await([&] { return answered.size() == 5; }));
    EXPECT_EQ(answered.last(), "next") << "an answer that nobody waits for any more is dropped";
}

TEST_F(MediaDecoderTest, aChildThatDoesNotKeepToTheOrderOfMessagesIsEnded)
{
    const QString still = saved("a.png", { 9, 9 });
    const auto answerOf = [&](const QByteArray& script) {
        home.write("child", "#!/bin/sh\nsend() { head -c $1 /dev/zero >&0; }\n" + script);
        QFile::setPermissions(home.path("child"), QFile::ReadOwner | QFile::ExeOwner);
        SeccompMediaDecoder decoder(
            real.scheduler, home.path("child"), { .perFile = Milliseconds(60'000), .start = Milliseconds(60'000) });
        const auto answer = picture(decoder, still);
        return answer ? DecodeFailure::Missing : answer.error();
    };
    // Zeros are the message that the child is ready.
    const QByteArray ready = "send " + QByteArray::number(sizeof(DecodeHead)) + '\n';
    const QByteArray takesOrder = ready + "head -c 1 <&0 >/dev/null\n";
    EXPECT_EQ(answerOf("exit 0"), DecodeFailure::Unavailable);
    EXPECT_EQ(answerOf("send 10"), DecodeFailure::Unavailable);
    EXPECT_EQ(answerOf("send 1000; exec sleep 1000"), DecodeFailure::Unavailable) << "more than one message";
    EXPECT_EQ(answerOf(takesOrder), DecodeFailure::Crashed);
    EXPECT_EQ(answerOf(takesOrder + ready + "exec sleep 1000"), DecodeFailure::Crashed) << "no answer to the order";
    EXPECT_EQ(log.lines().filter("can't be read safely").size(), 5);
    EXPECT_TRUE(await([] { return children().isEmpty(); }));
}

TEST_F(MediaDecoderTest, aSoundTellsItsLengthAndShapeAndItsPiecesJoin)
{
    const QString loudAtItsEnd = "sine=frequency=440:duration=2,volume='if(lt(t,1),0.01,1)':eval=frame";
    for (const QString& name : { "a.wav", "a.m4a", "a.ogg", "a.mp3" }) {
        const QString path = made(name, loudAtItsEnd);
        Answered<SoundShape> answer;
        const auto request = real.decoder.shape(path, 20, [&](const auto& shape) { answer = shape; });
        const auto shape = result(answer);
        ASSERT_TRUE(shape.has_value()) << name.toStdString();
        EXPECT_NEAR(double(shape->durationMs), 2000, 100);
        ASSERT_EQ(shape->bars.size(), 20);
        EXPECT_LT(shape->bars[4], shape->bars[16] / 10) << name.toStdString();

        const SoundPiece whole = sound(path, { 1, 0, 60'000 });
        ASSERT_EQ(whole.samples.size(), 120'000);
        EXPECT_FALSE(whole.isLast);
        const SoundPiece begun = sound(path, { 2, 0, 30'000 });
        const SoundPiece joined = sound(path, { 2, 30'000, 30'000 });
        EXPECT_EQ(begun.samples + joined.samples, whole.samples) << name.toStdString();
        const SoundPiece moved = sound(path, { 3, 58'000, 2000 });
        double most = 0;
        for (qsizetype i = 0; i < moved.samples.size(); ++i)
            most = std::max(most, double(std::abs(moved.samples[i] - whole.samples[116'000 + i])));
        EXPECT_LT(most, 0.02) << name.toStdString();
        EXPECT_TRUE(sound(path, { 3, 60'000, 60'000 }).isLast);
    }
    Answered<SoundShape> answer;
    const auto request = real.decoder.shape(put("a.oga", "no sound"), 20, [&](const auto& shape) { answer = shape; });
    EXPECT_EQ(result(answer).error(), DecodeFailure::Damaged);
}

TEST(Sandbox, nothingCanBeOpenedConnectedOrStarted)
{
    const pid_t child = ::fork();
    if (child == 0) {
        bool holds = enterSandbox().has_value();
        holds = holds && ::open("/dev/null", O_RDONLY) < 0 && ::socket(AF_UNIX, SOCK_STREAM, 0) < 0;
        holds = holds && ::kill(::getpid(), 0) < 0 && ::execl("/bin/true", "true", nullptr) < 0 && ::fork() < 0;
        ::_exit(holds ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST(DecodeMessages, anAnswerThatDoesNotFitItsOrderIsRefused)
{
    using Kind = DecodeHead::Kind;
    const auto failed = [](int failure, quint32 payload = 0) {
        return DecodeHead { .kind = Kind::Failed, .failure = failure, .payload = payload };
    };
    const auto done = [](int width, int height, quint32 payload, qint64 durationMs = 0) {
        return DecodeHead { Kind::Done, 0, width, height, durationMs, 0, payload };
    };
    const DecodeOrder picture { .kind = DecodeOrder::Kind::Picture, .box = box };
    for (const DecodeHead& head : { done(10, 10, 400), done(200, 100, 80'000), done(1, 1, 4), failed(0),
             failed(int(DecodeFailure::Unavailable)) })
        EXPECT_TRUE(fitsOrder(head, picture)) << head.payload;
    for (const DecodeHead& head : { done(10, 10, 404), done(10, 10, 396), done(201, 1, 804), done(1, 101, 404),
             done(-10, -10, 400), done(0, 10, 0), done(10, 0, 0), done(10, 10, 400, -1), failed(-1),
             failed(int(DecodeFailure::Unavailable) + 1), failed(0, 4), DecodeHead() })
        EXPECT_FALSE(fitsOrder(head, picture)) << head.payload;

    const DecodeOrder shape { .kind = DecodeOrder::Kind::Shape, .count = 4 };
    EXPECT_TRUE(fitsOrder(done(0, 0, 16, 2000), shape));
    for (const quint32 payload : { 12U, 17U, 20U })
        EXPECT_FALSE(fitsOrder(done(0, 0, payload), shape)) << payload;
    const DecodeOrder sound { .kind = DecodeOrder::Kind::Sound, .count = 4, .format = { 48'000, 2 } };
    for (const quint32 payload : { 0U, 8U, 32U })
        EXPECT_TRUE(fitsOrder(done(0, 0, payload), sound)) << payload;
    for (const quint32 payload : { 4U, 9U, 36U, 40U })
        EXPECT_FALSE(fitsOrder(done(0, 0, payload), sound)) << payload;
}

TEST(DecodeFailure, eachIsToldInWordsOfItsOwn)
{
    QSet<QString> told;
    for (int failure = 0; failure <= int(DecodeFailure::Unavailable); ++failure) {
        const QString words = describe(DecodeFailure(failure));
        EXPECT_TRUE(words.endsWith('.')) << words.toStdString();
        told.insert(words);
    }
    EXPECT_EQ(told.size(), int(DecodeFailure::Unavailable) + 1);
}
