#include "Inbox/Thread/MediaFile.h"

#include "Inbox/Thread/UnifiedBubble.h"

#include <QDir>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QtEndian>

namespace corvane {

namespace {

constexpr qint64 headSize = 4096;
constexpr qint64 longestJpeg = 64 << 20; // a longer one is not looked through
constexpr quint32 streamedLength = 0x7ffff000; // written by programs that did not know the length yet

bool isInside(const QString& path, const QString& folder)
{
    return !folder.isEmpty() && path.startsWith(folder + u'/');
}

bool leadsOutside(const QString& path, const QString& mediaFolder)
{
    const QFileInfo file(path);
    const bool named = isInside(QDir::cleanPath(file.absoluteFilePath()), QDir::cleanPath(mediaFolder));
    if (!named && !file.isSymLink())
        return false;
    return !isInside(file.canonicalFilePath(), QFileInfo(mediaFolder).canonicalFilePath());
}

bool isProgram(const QFileInfo& file, const QByteArray& head)
{
    static const QStringList endings { QStringLiteral("desktop"), QStringLiteral("appimage"), QStringLiteral("exe"),
        QStringLiteral("jar"), QStringLiteral("run"), QStringLiteral("sh"), QStringLiteral("flatpakref") };
    return file.isExecutable() || endings.contains(file.suffix().toLower()) || head.startsWith("#!")
        || head.startsWith("\x7f"
                           "ELF")
        || head.startsWith("[Desktop Entry]");
}

/// What a container of sound or film is called is not always what it holds, so each passes for the other.
bool isOfKind(const QString& kind, const QFileInfo& file, const QByteArray& head)
{
    const bool picture = kind == u"image" || kind == u"sticker";
    const bool playable = kind == u"audio" || kind == u"video";
    if (!picture && !playable)
        return true;
    const QMimeDatabase types;
    QMimeType type = types.mimeTypeForData(head);
    if (playable && type.isDefault()) // a stream without a mark at its head
        type = types.mimeTypeForFile(file, QMimeDatabase::MatchExtension);
    const QString name = type.name();
    if (picture)
        return name.startsWith(u"image/");
    return name.startsWith(u"audio/") || name.startsWith(u"video/") || name == u"application/ogg";
}

/// Boxes of an MPEG-4 file: each tells its length, and the one that makes the rest readable is "moov".
bool isWholeMpeg4(QFile& file)
{
    bool index = false;
    for (qint64 at = 0; at < file.size();) {
        file.seek(at);
        const QByteArray box = file.read(16);
        if (box.size() < 8)
            return false;
        qint64 length = qFromBigEndian<quint32>(box.constData());
        if (length == 1 && box.size() == 16)
            length = qFromBigEndian<qint64>(box.constData() + 8);
        index = index || box.sliced(4, 4) == "moov";
        if (length == 0)
            break; // up to the end of the file
        if (length < 8 || length > file.size() - at)
            return false;
        at += length;
    }
    return index;
}

/// Chunks of a PNG file: each tells its length, and "IEND" is the last. What stands behind it is no matter.
bool isWholePng(QFile& file)
{
    for (qint64 at = 8; file.seek(at);) {
        const QByteArray chunk = file.read(8);
        if (chunk.size() < 8)
            return false;
        at += 12 + qint64(qFromBigEndian<quint32>(chunk.constData()));
        if (at > file.size())
            return false;
        if (chunk.endsWith("IEND"))
            return true;
    }
    return false;
}

/// Segments of a JPEG file tell their lengths up to the picture itself, which ends at a mark that is not found within
/// it. That mark is at the end of the file, unless a phone wrote a film behind it.
bool isWholeJpeg(QFile& file)
{
    file.seek(std::max<qint64>(0, file.size() - headSize));
    if (file.read(headSize).contains("\xff\xd9"))
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

bool isWhole(QFile& file, const QByteArray& head)
{
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

MediaProblem checkMedia(const QString& path, const QString& kind, const QString& mediaFolder)
{
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists())
        return MediaProblem::Missing;
    if (leadsOutside(path, mediaFolder))
        return MediaProblem::LinkOutside;
    if (!info.isFile())
        return MediaProblem::NotAFile;
    if (info.size() == 0)
        return MediaProblem::Empty;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return MediaProblem::Missing;
    const QByteArray head = file.read(headSize);
    if (isProgram(info, head))
        return MediaProblem::Program;
    if (!isOfKind(kind, info, head))
        return MediaProblem::WrongType;
    return isWhole(file, head) ? MediaProblem::None : MediaProblem::CutShort;
}

QString mediaProblemText(MediaProblem problem, const QString& kind)
{
    const QString word = UnifiedBubble::mediaWord(kind);
    switch (problem) {
    case MediaProblem::None:
        return {};
    case MediaProblem::Missing:
        return UnifiedBubble::missingText(kind);
    case MediaProblem::LinkOutside:
        return word + QStringLiteral(" file is a link to a place outside the media folder, so it is not opened.");
    case MediaProblem::NotAFile:
        return word + QStringLiteral(" file is not a file that can be read.");
    case MediaProblem::Program:
        return word + QStringLiteral(" file is a program, so it is not opened.");
    case MediaProblem::Empty:
        return word + QStringLiteral(" file is empty.");
    case MediaProblem::WrongType:
        return word + QStringLiteral(" file holds something else than it says, so it is not opened.");
    case MediaProblem::CutShort:
        return word + QStringLiteral(" file is damaged: its end is missing.");
    }
    return {};
}

}
