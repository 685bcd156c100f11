#include "Platform/Linux/Decode/SoundFile.h"

#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QFile>
#include <QProcess>
#include <fcntl.h>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

/// A WAV file of floats.
QByteArray wav(int rate, int channels, const QList<float>& samples)
{
    const auto number = [](auto value) {
        return QByteArray(reinterpret_cast<const char*>(&value), sizeof value);
    };
    const QByteArray data(
        reinterpret_cast<const char*>(samples.constData()), samples.size() * qsizetype(sizeof(float)));
    const int frameSize = channels * int(sizeof(float));
    return "RIFF" + number(quint32(36 + data.size())) + "WAVEfmt " + number(quint32(16)) + number(quint16(3))
        + number(quint16(channels)) + number(quint32(rate)) + number(quint32(rate * frameSize))
        + number(quint16(frameSize)) + number(quint16(32)) + "data" + number(quint32(data.size())) + data;
}

/// Rises from 0 to 1; a second channel falls as much.
QList<float> ramp(int frames, int channels)
{
    QList<float> samples;
    for (int i = 0; i < frames; ++i)
        for (int channel = 0; channel < channels; ++channel)
            samples.append((channel == 0 ? 1.0F : -1.0F) * float(i) / float(frames));
    return samples;
}

class SoundFileTest : public testing::Test {
protected:
    std::unique_ptr<SoundFile> open(const QByteArray& content, SampleFormat format)
    {
        home.write("sound", content);
        auto sound = SoundFile::open(Descriptor(::open(qPrintable(home.path("sound")), O_RDONLY | O_CLOEXEC)), format);
        return sound ? std::move(*sound) : nullptr;
    }
    static QList<float> read(SoundFile& sound, int frames)
    {
        QList<float> samples(qsizetype(frames) * sound.format().channels);
        samples.resize(qsizetype(sound.read({ samples.data(), size_t(samples.size()) })));
        return samples;
    }
    QByteArray made(const QString& name, const QStringList& source) const
    {
        EXPECT_EQ(
            QProcess::execute("ffmpeg", QStringList { "-v", "error" } + source + QStringList { home.path(name) }), 0);
        return home.read(name);
    }

    const TemporaryHome home;
};

}

TEST_F(SoundFileTest, eachFrameIsReadOnceAndFromAnyPlace)
{
    const QList<float> samples = ramp(96'000, 2);
    const auto sound = open(wav(48'000, 2, samples), { 48'000, 2 });
    ASSERT_TRUE(sound);
    EXPECT_EQ(sound->durationMs(), 2000);
    EXPECT_EQ(sound->frame(), 0);
    QList<float> pieces;
    for (int i = 0; i < 13; ++i) {
        EXPECT_EQ(sound->frame(), i * 7000);
        pieces += read(*sound, 7000);
    }
    EXPECT_EQ(read(*sound, 7000).size(), 5000 * 2);
    EXPECT_EQ(sound->frame(), 96'000);
    EXPECT_EQ(read(*sound, 1).size(), 0);
    EXPECT_EQ(pieces, samples.first(pieces.size()));
    for (const int from : { 50'000, 0, 1, 5000, 12'000, 12'001, 95'990, 95'999, 30'000 }) {
        sound->seek(from);
        const int count = std::min(1000, 96'000 - from);
        EXPECT_EQ(read(*sound, 1000), samples.sliced(from * 2, count * 2)) << from;
        EXPECT_EQ(sound->frame(), from + count);
    }
    for (const int behind : { 96'000, 300'000 }) {
        sound->seek(behind);
        EXPECT_EQ(read(*sound, 10).size(), 0) << behind;
    }
}

TEST_F(SoundFileTest, anotherRateIsConvertedInFullLength)
{
    const auto sound = open(wav(44'100, 1, ramp(88'200, 1)), speechFormat);
    ASSERT_TRUE(sound);
    const QList<float> all = read(*sound, 100'000);
    EXPECT_EQ(all.size(), 32'000);
    for (const int frame : { 100, 8000, 16'000, 31'000 })
        EXPECT_NEAR(all.at(frame), double(frame) / 32'000, 0.0005) << frame;
    for (const int frame : { 16'000, 100, 31'000 }) {
        sound->seek(frame);
        const QList<float> piece = read(*sound, 100);
        ASSERT_EQ(piece.size(), 100);
        EXPECT_NEAR(piece.at(50), double(frame + 50) / 32'000, 0.0005) << frame;
    }
    const auto stereo = open(wav(8000, 1, QList<float>(8000, 0.5F)), { 48'000, 2 });
    const QList<float> both = read(*stereo, 60'000);
    EXPECT_EQ(both.size(), 96'000);
    EXPECT_EQ(both.at(48'000), both.at(48'001));
}

TEST_F(SoundFileTest, theShapeIsThePeakOfEachPart)
{
    const auto shape = [&](int rate, const QList<float>& samples, int bars) {
        QList<float> both;
        for (const float sample : samples)
            both << sample << sample;
        const auto sound = open(wav(rate, 2, both), { rate, 2 });
        return sound ? shapeOf(*sound, bars) : SoundShape();
    };
    QList<float> samples(4000, 0.1F); // half a second
    for (int i = 1700; i < 2300; ++i)
        samples[i] = i == 2000 ? -3.0F : -0.6F;
    const SoundShape brief = shape(8000, samples, 10);
    EXPECT_EQ(brief.durationMs, 500);
    ASSERT_EQ(brief.bars.size(), 10);
    for (int i = 0; i < 10; ++i)
        EXPECT_NEAR(brief.bars.at(i), i == 4 || i == 5 ? 1.0 : 0.1, 0.0001) << i;
    const SoundShape fewer = shape(8000, samples, 2);
    EXPECT_NEAR(fewer.bars.at(0), 0.1, 0.0001);
    EXPECT_EQ(fewer.bars.at(1), 1.0F);
    const SoundShape nothing = shape(8000, {}, 3);
    EXPECT_EQ(nothing.bars, QList<float>(3, 0.0F));
    EXPECT_EQ(nothing.durationMs, 0);

    // Of a long sound only a glance at each part is taken.
    QList<float> lengthy(8000 * 310, 0.1F);
    for (int i = 8000 * 154; i < 8000 * 156; ++i)
        lengthy[i] = 0.7F;
    const SoundShape glances = shape(8000, lengthy, 10);
    EXPECT_EQ(glances.durationMs, 310'000);
    for (int i = 0; i < 10; ++i)
        EXPECT_NEAR(glances.bars.at(i), i == 5 ? 0.7 : 0.1, 0.0001) << i;
    const SoundShape whole = shape(8000, lengthy.first(8000 * 300), 10);
    EXPECT_NEAR(whole.bars.at(5), 0.7, 0.0001) << "anywhere in its part";
}

TEST_F(SoundFileTest, onlyTheSoundOfAFileIsRead)
{
    const QStringList film { "-f", "lavfi", "-i", "testsrc=size=64x64:rate=10:duration=1" };
    EXPECT_FALSE(open(made("silent.mp4", film), { 48'000, 2 })) << "a film without sound";
    const auto sound = open(
        made("film.mkv", film + QStringList { "-f", "lavfi", "-i", "sine=frequency=440:sample_rate=48000:duration=1" }),
        { 48'000, 1 });
    ASSERT_TRUE(sound);
    EXPECT_NEAR(double(read(*sound, 100'000).size()), 48'000, 2100);
    for (const QByteArray& content : { QByteArray(), QByteArray("no sound"), home.read("silent.mp4").first(100) })
        EXPECT_FALSE(open(content, { 48'000, 2 })) << content.size();
}
