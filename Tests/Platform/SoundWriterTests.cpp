#include "Foundation/Literals.h"
#include "Platform/Linux/Audio/M4aWriter.h"
#include "Platform/Linux/Audio/WavWriter.h"

#include "SoundFiles.h"
#include "Support/Print.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <array>

using namespace corvane;

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

constexpr QFile::Permissions othersToo { QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther };

}

TEST(WavWriterTest, theFileIsItsHeaderAndTheSamplesClamped)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.wav");
    auto writer = WavWriter::create(path, 16'000);
    ASSERT_TRUE(writer);
    EXPECT_EQ(contentOf(path), QByteArray()) << "not yet flushed";
    const std::array first { 0.0F, 1.0F, -1.0F, 2.0F };
    const std::array second { -2.0F, 0.5F };
    ASSERT_TRUE((*writer)->write(first));
    ASSERT_TRUE((*writer)->write(second));
    ASSERT_TRUE((*writer)->finish());
    const QByteArray expected("RIFF\x30\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x80\x3e\0\0\0\x7d\0\0\x02\0\x10\0"
                              "data\x0c\0\0\0\0\0\xff\x7f\x01\x80\xff\x7f\x01\x80\0\x40",
        44 + 12);
    EXPECT_EQ(contentOf(path).toHex(), expected.toHex());
    EXPECT_FALSE(QFileInfo(path).permissions() & othersToo);
    EXPECT_FALSE(WavWriter::create(path, 16'000)) << "a file that stands there is not written over";
    EXPECT_EQ(contentOf(path), expected);
    EXPECT_FALSE(WavWriter::create(folder.filePath("nowhere/a.wav"), 16'000));
}

TEST(M4aWriterTest, eachChannelKeepsItsSoundThroughEveryPieceOfTheFile)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.m4a");
    constexpr int rate = 48'000;
    auto writer = M4aWriter::create(path, { .rate = rate, .channels = 2, .bitRate = 128'000 });
    ASSERT_TRUE(writer);
    EXPECT_FALSE(QFileInfo(path).permissions() & othersToo);
    EXPECT_FALSE(M4aWriter::create(path, {}));
    // A tone on the right; silence on the left. Pieces that fit no frame.
    std::vector<float> sound;
    constexpr size_t frames = rate * 3;
    for (size_t i = 0; i < frames; ++i) {
        sound.push_back(0);
        sound.push_back(0.5F * float(std::sin(double(i) * 2 * 3.141592653589793 * 440 / rate)));
    }
    for (size_t at = 0; at < sound.size(); at += 5000)
        ASSERT_TRUE((*writer)->write(std::span(sound).subspan(at, std::min<size_t>(5000, sound.size() - at))));
    ASSERT_TRUE((*writer)->close());
    EXPECT_TRUE(contentOf(path).contains("moof")) << "in fragments";
    const auto raw = [&] {
        return output("ffmpeg", { "-v", "error", "-i", path, "-f", "f32le", "-" });
    };
    const auto check = [&] {
        EXPECT_EQ(formatOf(path), "aac,48000,2");
        EXPECT_NEAR(secondsOf(path), 3, 0.05);
        const QByteArray bytes = raw();
        std::vector<float> decoded(size_t(bytes.size()) / sizeof(float));
        std::memcpy(decoded.data(), bytes.constData(), decoded.size() * sizeof(float));
        ASSERT_GE(decoded.size(), sound.size() - size_t(rate / 10));
        // The tone is there in every tenth of a second, and on its side.
        for (size_t from = rate / 5; from + rate / 5 < sound.size() - rate / 5; from += rate / 5) {
            float left = 0;
            float right = 0;
            for (size_t i = from; i < from + rate / 5; i += 2) {
                left = std::max(left, std::fabs(decoded[i]));
                right = std::max(right, std::fabs(decoded[i + 1]));
            }
            EXPECT_LT(left, 0.05F) << from;
            EXPECT_NEAR(right, 0.5F, 0.1F) << from;
        }
    };
    check();
    QFile(folder.filePath("a.m4a.whole")).open(QIODevice::WriteOnly); // left by a kill
    ASSERT_TRUE(M4aWriter::join(path));
    EXPECT_FALSE(contentOf(path).contains("moof"));
    check();
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList { "a.m4a" });
}

TEST(M4aWriterTest, whatCannotBeJoinedStaysAsItIs)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.m4a");
    EXPECT_FALSE(M4aWriter::join(path));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("no sound") == 8);
    file.close();
    EXPECT_FALSE(M4aWriter::join(path));
    EXPECT_EQ(contentOf(path), "no sound");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList { "a.m4a" });
    EXPECT_FALSE(M4aWriter::create(path, {}));
    EXPECT_FALSE(M4aWriter::create(folder.filePath("b.m4a"), { .rate = 1 })) << "no such rate";
    EXPECT_FALSE(QFile::exists(folder.filePath("b.m4a")));

    const QString brief = folder.filePath("c.m4a");
    auto writer = M4aWriter::create(brief, {});
    ASSERT_TRUE(writer);
    ASSERT_TRUE((*writer)->write(std::vector<float>(1000, 0.5F))); // less than a frame
    ASSERT_TRUE((*writer)->finish());
    EXPECT_GT(secondsOf(brief), 0.02);
    EXPECT_FALSE(contentOf(brief).contains("moof"));
}
