#include "Inbox/Thread/MediaFile.h"

#include "Engines/MediaPlaces.h"
#include "Foundation/Literals.h"
#include "Inbox/Thread/UnifiedBubble.h"
#include "Platform/WholeFile.h"

#include <QFileInfo>
#include <QMimeDatabase>

namespace corvane {

namespace {

constexpr qint64 headSize = 4096;

bool isProgram(const QFileInfo& file, const QByteArray& head)
{
    static const QStringList endings { u"desktop"_s, u"appimage"_s, u"exe"_s, u"jar"_s, u"run"_s, u"sh"_s,
        u"flatpakref"_s };
    return file.isExecutable() || endings.contains(file.suffix().toLower()) || head.startsWith("#!")
        || head.startsWith("\x7f"
                           "ELF")
        || head.startsWith("[Desktop Entry]");
}

/// Containers are used for sound and video alike, so either type is accepted.
bool isOfKind(const QString& kind, const QFileInfo& file, const QByteArray& head)
{
    const bool picture = kind == u"image" || kind == u"sticker";
    const bool playable = kind == u"audio" || kind == u"video";
    if (!picture && !playable)
        return true;
    const QMimeDatabase types;
    QMimeType type = types.mimeTypeForData(head);
    if (playable && type.isDefault()) // a stream without a header
        type = types.mimeTypeForFile(file, QMimeDatabase::MatchExtension);
    const QString name = type.name();
    if (picture)
        return name.startsWith(u"image/");
    return name.startsWith(u"audio/") || name.startsWith(u"video/") || name == u"application/ogg";
}

}

MediaProblem checkMedia(const QString& path, const QString& kind, const QStringList& places)
{
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists())
        return MediaProblem::Missing;
    if (!isMediaPath(places, path))
        return MediaProblem::Elsewhere;
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
    return isWholeFile(file) ? MediaProblem::None : MediaProblem::CutShort;
}

QString describe(MediaProblem problem, const QString& kind)
{
    const QString word = UnifiedBubble::mediaWord(kind);
    switch (problem) {
    case MediaProblem::None:
        return {};
    case MediaProblem::Missing:
        return UnifiedBubble::missingText(kind);
    case MediaProblem::Elsewhere:
        return UnifiedBubble::refusedText(kind);
    case MediaProblem::Program:
        return word + u" file is a program, so it is not opened."_s;
    case MediaProblem::Empty:
        return word + u" file is empty."_s;
    case MediaProblem::WrongType:
        return word + u" file is not what it claims to be, so it is not opened."_s;
    case MediaProblem::CutShort:
        return word + u" file is damaged: its end is missing."_s;
    }
    return {};
}

}
