#include "Platform/WholeFile.h"

#include <QIODevice>
#include <QtEndian>
#include <algorithm>

namespace corvane {

namespace {

constexpr qint64 tailSize = 4096;
constexpr int mostParts = 100'000; // a file with more is not looked through
constexpr qint64 longestJpeg = 64 << 20; // a longer one is not looked through
constexpr quint32 streamedLength = 0x7ffff000; // written by programs that did not know the length yet

/// Boxes of an MPEG-4 file: each tells its length, and one of them makes the rest readable: "moov", or
/// "meta" of a picture.
bool isWholeMpeg4(QIODevice& file)
{
    bool index = false;
    qint64 at = 0;
    for (int part = 0; at < file.size(); ++part) {
        if (part == mostParts)
            return true;
        file.seek(at);
        const QByteArray box = file.read(16);
        if (box.size() < 8)
            return false;
        qint64 length = qFromBigEndian<quint32>(box.constData());
        if (length == 1 && box.size() == 16)
            length = qFromBigEndian<qint64>(box.constData() + 8);
        index = index || box.sliced(4, 4) == "moov" || box.sliced(4, 4) == "meta";
        if (length == 0)
            break; // up to the end of the file
        if (length < 8 || length > file.size() - at)
            return false;
        at += length;
    }
    return index;
}

/// Chunks of a PNG file: each tells its length, and "IEND" is the last. What stands behind it is no matter.
bool isWholePng(QIODevice& file)
{
    qint64 at = 8;
    for (int part = 0; part < mostParts; ++part) {
        file.seek(at);
        const QByteArray chunk = file.read(8);
        if (chunk.size() < 8)
            return false;
        at += 12 + qint64(qFromBigEndian<quint32>(chunk.constData()));
        if (at > file.size())
            return false;
        if (chunk.endsWith("IEND"))
            return true;
    }
    return true;
}

/// Segments of a JPEG file tell their lengths up to the picture itself, which ends at a mark that is not found within
/// it. That mark is at the end of the file, unless a phone wrote a film behind it.
bool isWholeJpeg(QIODevice& file)
{
    file.seek(std::max<qint64>(0, file.size() - tailSize));
    if (file.read(tailSize).contains("\xff\xd9"))
        return true;
    file.seek(0);
    const QByteArray content = file.read(longestJpeg);
    for (qsizetype at = 2; at + 4 <= content.size() && content.at(at) == '\xff';) {
        if (content.at(at + 1) == '\xda')
            return content.size() == longestJpeg || content.indexOf("\xff\xd9", at) > 0;
        at += 2 + qFromBigEndian<quint16>(content.constData() + at + 2);
    }
    return false;
}

}

bool isWholeFile(QIODevice& file)
{
    file.seek(0);
    const QByteArray head = file.read(12);
    if (head.startsWith("\x89PNG"))
        return isWholePng(file);
    if (head.startsWith("\xff\xd8\xff"))
        return isWholeJpeg(file);
    if (head.startsWith("RIFF") && head.size() >= 8) {
        const quint32 length = qFromLittleEndian<quint32>(head.constData() + 4);
        return length >= streamedLength || length + 8LL <= file.size();
    }
    if (head.sliced(0, std::min<qsizetype>(8, head.size())).endsWith("ftyp"))
        return isWholeMpeg4(file);
    return true;
}

}
