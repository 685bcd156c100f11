#include "Inbox/Thread/UnifiedBubble.h"

#include "Engines/MediaPlaces.h"
#include "Foundation/Channel.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Presentation/BodyText.h"

#include <QFileInfo>
#include <QStringList>

namespace corvane::UnifiedBubble {

namespace {

constexpr qsizetype titleLength = 500;
const QStringList knownKinds { u"document"_s, u"video"_s, u"audio"_s, u"sticker"_s, u"image"_s };

bool isSet(const std::optional<QString>& text)
{
    return text && !text->isEmpty();
}

bool isPlacedInBrowser(const QString& platform)
{
    return platform == u"LINKEDIN"_s || platform == u"INSTAGRAM"_s || platform == u"MESSENGER"_s;
}

bool hasFile(const UnifiedMsgRow& row)
{
    return isSet(row.mediaPath) && QFileInfo(*row.mediaPath).isFile();
}

bool hasFileOf(const UnifiedMsgRow& row, QLatin1StringView kind)
{
    return row.mediaType && row.mediaType->toLower() == kind && hasFile(row);
}

}

Ticks statusTicks(const QString& direction, const QString& platform, int status)
{
    if (direction != u"OUT"_s)
        return {};
    if (isPlacedInBrowser(platform) && status < 1)
        return { Ticks::Kind::Word, u"Placed"_s, u"Placed in browser"_s };
    if (status < 1)
        return {};
    if (platform != u"WHATSAPP"_s)
        return { Ticks::Kind::Word, u"Sent"_s, {} };
    if (status < 3)
        return { Ticks::Kind::Single, u"Sent"_s, {} };
    if (status == 3)
        return { Ticks::Kind::Double, u"Delivered"_s, {} };
    return { Ticks::Kind::Read, u"Read"_s, {} };
}

QString wordOf(Ticks::Kind kind)
{
    switch (kind) {
    case Ticks::Kind::None:
        return {};
    case Ticks::Kind::Single:
        return u"single"_s;
    case Ticks::Kind::Double:
        return u"double"_s;
    case Ticks::Kind::Read:
        return u"read"_s;
    case Ticks::Kind::Word:
        return u"word"_s;
    }
    return {};
}

bool hasImage(const UnifiedMsgRow& row)
{
    return hasFileOf(row, "image"_L1);
}

bool hasAudio(const UnifiedMsgRow& row)
{
    return hasFileOf(row, "audio"_L1);
}

QString mediaTitle(const UnifiedMsgRow& row)
{
    const QString text = textBehindMark(row.body).value_or(row.body.trimmed());
    if (!text.isEmpty())
        return BodyText::shown(text, titleLength).text;
    if (isSet(row.mediaPath))
        return BodyText::printable(QFileInfo(*row.mediaPath).fileName());
    return mediaWord(row.mediaType.value_or(QString()));
}

QString mediaKind(const UnifiedMsgRow& row)
{
    if (!isSet(row.mediaType) && !isSet(row.mediaPath))
        return {};
    const QString kind = row.mediaType.value_or(QString()).toLower();
    return knownKinds.contains(kind) ? kind : u"media"_s;
}

QString mediaWord(const QString& mediaType)
{
    const QString kind = mediaType.toLower();
    if (!knownKinds.contains(kind))
        return u"Media"_s;
    return kind.first(1).toUpper() + kind.sliced(1);
}

std::optional<QString> textBehindMark(const QString& body)
{
    static const QStringList marks { u"[Document]"_s, u"[Image]"_s, u"[Video]"_s, u"[GIF]"_s, u"[Audio]"_s,
        u"[Sticker]"_s };
    const QString text = body.trimmed();
    for (const QString& mark : marks) {
        if (text.startsWith(mark))
            return text.sliced(mark.size()).trimmed();
    }
    return std::nullopt;
}

QString missingText(const QString& mediaType)
{
    return mediaWord(mediaType) + u" file is missing from local media cache."_s;
}

QString refusedText(const QString& mediaType)
{
    return mediaWord(mediaType) + u" file is not a regular file in its account's media folder, so it is not opened."_s;
}

MediaState mediaState(
    const UnifiedMsgRow& row, const std::optional<MediaDownloadStatus>& download, const QStringList& places)
{
    if (mediaKind(row).isEmpty())
        return {};
    if (isSet(row.mediaPath) && QFileInfo::exists(*row.mediaPath) && !isMediaPath(places, *row.mediaPath))
        return { MediaState::Kind::Refused, refusedText(row.mediaType.value_or(QString())) };
    if (hasFile(row))
        return { MediaState::Kind::Ready, {} };
    if (isSet(row.mediaPath))
        return { MediaState::Kind::Missing, missingText(row.mediaType.value_or(QString())) };
    if (!download)
        return { MediaState::Kind::Download, u"Download"_s };
    if (download->kind == MediaDownloadStatus::Kind::Downloading)
        return { MediaState::Kind::Downloading, u"Fetching from %1..."_s.arg(channelLabel(row.platform)) };
    return { MediaState::Kind::Failed, download->message };
}

QString readableText(const UnifiedMsgRow& row)
{
    const bool isAudio = row.mediaType && row.mediaType->toLower() == u"audio"_s;
    return singleLine(isAudio ? row.audioTranscript.value_or(QString()) : row.body);
}

}
