#include "Platform/WholeFile.h"

#include <QIODevice>
#include <QtEndian>
#include <algorithm>

namespace corvane {

namespace {

constexpr qint64 tailSize = 4096;
constexpr int mostParts = 100'000; // files with more are not checked
constexpr qint64 longestJpeg = 64 << 20; // longer ones are not checked
constexpr quint32 streamedLength = 0x7ffff000; // from programs that did not know the length yet

/// Checks the boxes of an MPEG-4 file: each has a length, and one of them makes the rest readable: "moov", or
/// "meta" for a picture.
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

/// Checks the chunks of a PNG file: each has a length, and "IEND" is the last. Trailing data is ignored.
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

/// Checks the segments of a JPEG file. They have lengths, except for the picture data, which ends at a marker. That
/// marker is at the end of the file, unless a phone appended a video.
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
