#include "Platform/WholeFile.h"

#include "Foundation/Literals.h"

#include <QBuffer>
#include <QImage>
#include <QtEndian>
#include <gtest/gtest.h>

namespace corvane {

namespace {

bool isWhole(QByteArray content)
{
    QBuffer buffer(&content);
    EXPECT_TRUE(buffer.open(QIODevice::ReadOnly));
    return isWholeFile(buffer);
}

QByteArray picture(const char* format)
{
    QImage image(200, 100, QImage::Format_RGB32);
    for (int x = 0; x < image.width(); ++x)
        for (int y = 0; y < image.height(); ++y)
            image.setPixel(x, y, QRgb(x * y * 2654435761U));
    QBuffer buffer;
    EXPECT_TRUE(image.save(&buffer, format));
    return buffer.data();
}

QByteArray box(const char* name, qsizetype size)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(quint32(size + 8), bytes.data());
    return bytes + name + QByteArray(size, 'x');
}

}

TEST(WholeFile, aFileThatWasCutIsToldByItsOwnFormat)
{
    const QByteArray mpeg4 = box("ftyp", 8) + box("moov", 20) + box("mdat", 100);
    QByteArray large = box("mdat", 100); // its length in 64 bits
    qToBigEndian(quint32(1), large.data());
    qToBigEndian(qint64(108), large.data() + 8);
    QByteArray open = box("mdat", 100); // up to the end of the file
    qToBigEndian(quint32(0), open.data());
    const QByteArray riff = QByteArray("RIFF\x0c\0\0\0WAVE", 12) + QByteArray(8, 'x');
    const QByteArray streamed = QByteArray("RIFF\xff\xff\xff\xffWAVE", 12) + "x";
    for (const QByteArray& whole : { picture("PNG"), picture("PNG") + "trailing", picture("JPEG"),
             picture("JPEG") + QByteArray(10'000, 'v'), mpeg4, box("ftyp", 8) + box("meta", 4),
             box("ftyp", 8) + box("moov", 20) + large, box("ftyp", 8) + box("moov", 20) + open, riff, streamed,
             QByteArray("any other file"), QByteArray("x"), QByteArray() })
        EXPECT_TRUE(isWhole(whole)) << whole.first(std::min<qsizetype>(12, whole.size())).constData();
    for (const QByteArray& cut :
        { picture("PNG").chopped(1), picture("PNG").first(100), picture("PNG").first(8), picture("JPEG").chopped(2),
            picture("JPEG").first(3000), mpeg4.chopped(1), mpeg4.first(3 + 16 + 28), box("ftyp", 8),
            box("ftyp", 8) + box("mdat", 100), box("ftyp", 8) + box("moov", 20) + large.chopped(1), riff.chopped(1) })
        EXPECT_FALSE(isWhole(cut)) << cut.first(std::min<qsizetype>(12, cut.size())).constData() << ' ' << cut.size();
    QByteArray wrong = mpeg4;
    qToBigEndian(quint32(7), wrong.data() + 16);
    EXPECT_FALSE(isWhole(wrong)) << "no box is so short";
    EXPECT_TRUE(isWhole(box("ftyp", 8) + box("moov", 0))) << "but this short";
}

TEST(WholeFile, aJpegIsFollowedThroughItsSegmentsToItsEnd)
{
    const QByteArray begin("\xff\xd8");
    const QByteArray comment = QByteArray("\xff\xfe\x00\x06", 4) + "abcd";
    const QByteArray scan = QByteArray("\xff\xda\x00\x02", 4) + "pixels";
    const QByteArray video(10'000, 'v');
    EXPECT_TRUE(isWhole(begin + comment + scan + "\xff\xd9"));
    EXPECT_TRUE(isWhole(begin + comment + scan + "\xff\xd9" + video)) << "what a phone appended";
    EXPECT_FALSE(isWhole(begin + comment + scan + video));
    EXPECT_FALSE(isWhole(begin + comment + video)) << "no picture follows";
    EXPECT_FALSE(isWhole(begin + QByteArray("\xff\xfe\x00\x08", 4) + "\xff\xd9" + "ab" + video))
        << "an end within a comment is none";
    EXPECT_FALSE(isWhole(begin + comment + "\xff"));
    EXPECT_FALSE(isWhole(begin + comment));
}

TEST(WholeFile, aLengthReachesExactlyToTheEnd)
{
    const auto chunk = [](const char* name, int size) {
        return QByteArray("\0\0\0", 3) + char(size) + name + QByteArray(size + 4, 'c');
    };
    const QByteArray png = QByteArray("\x89PNG\r\n\x1a\n", 8) + chunk("IHDR", 13) + chunk("IDAT", 0);
    EXPECT_TRUE(isWhole(png + chunk("IEND", 0)));
    EXPECT_FALSE(isWhole(png + chunk("IEND", 0).chopped(1)));
    EXPECT_FALSE(isWhole(png)) << "no end";
    EXPECT_FALSE(isWhole(png + chunk("IEND", 0).first(7)));
    EXPECT_FALSE(isWhole(png + chunk("tEXt", 0).repeated(99'997)));
    EXPECT_TRUE(isWhole(png + chunk("tEXt", 0).repeated(99'998))) << "so many are not followed";
    EXPECT_FALSE(isWhole(box("ftyp", 0) + box("free", 0).repeated(99'999)));
    EXPECT_TRUE(isWhole(box("ftyp", 0) + box("free", 0).repeated(100'000)));
    const auto riff = [](quint32 length, qsizetype size) {
        QByteArray bytes = "RIFF" + QByteArray(size - 4, 'x');
        qToLittleEndian(length, bytes.data() + 4);
        return bytes;
    };
    EXPECT_TRUE(isWhole(riff(4, 12)));
    EXPECT_FALSE(isWhole(riff(5, 12)));
    EXPECT_TRUE(isWhole(riff(0, 8)));
    EXPECT_TRUE(isWhole("RIFF")) << "too short to say";
    EXPECT_TRUE(isWhole(riff(0x7ffff000, 12)));
    EXPECT_FALSE(isWhole(riff(0x7fffefff, 12)));
    EXPECT_TRUE(isWhole("1234567ftyp"));
    EXPECT_FALSE(isWhole("1234ftyp"));
}

}
