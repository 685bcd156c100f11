#include "Inbox/Thread/UnifiedBubble.h"

#include "Engines/MediaPlaces.h"
#include "Foundation/Channel.h"
#include "Foundation/Text.h"
#include "Presentation/BodyText.h"

#include <QFileInfo>
#include <QStringList>

namespace corvane::UnifiedBubble {

namespace {

constexpr qsizetype titleLength = 500;
const QStringList knownKinds { QStringLiteral("document"), QStringLiteral("video"), QStringLiteral("audio"),
    QStringLiteral("sticker"), QStringLiteral("image") };

bool isSet(const std::optional<QString>& text)
{
    return text && !text->isEmpty();
}

bool isPlacedInBrowser(const QString& platform)
{
    return platform == QStringLiteral("LINKEDIN") || platform == QStringLiteral("INSTAGRAM")
        || platform == QStringLiteral("MESSENGER");
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
    if (direction != QStringLiteral("OUT"))
        return {};
    if (isPlacedInBrowser(platform) && status < 1)
        return { Ticks::Kind::Word, QStringLiteral("Placed"), QStringLiteral("Placed in browser") };
    if (status < 1)
        return {};
    if (platform != QStringLiteral("WHATSAPP"))
        return { Ticks::Kind::Word, QStringLiteral("Sent"), {} };
    if (status < 3)
        return { Ticks::Kind::Single, QStringLiteral("Sent"), {} };
    if (status == 3)
        return { Ticks::Kind::Double, QStringLiteral("Delivered"), {} };
    return { Ticks::Kind::Read, QStringLiteral("Read"), {} };
}

QString wordOf(Ticks::Kind kind)
{
    switch (kind) {
    case Ticks::Kind::None:
        return {};
    case Ticks::Kind::Single:
        return QStringLiteral("single");
    case Ticks::Kind::Double:
        return QStringLiteral("double");
    case Ticks::Kind::Read:
        return QStringLiteral("read");
    case Ticks::Kind::Word:
        return QStringLiteral("word");
    }
    return {};
}

bool hasImage(const UnifiedMsgRow& row)
{
    return hasFileOf(row, QLatin1StringView("image"));
}

bool hasAudio(const UnifiedMsgRow& row)
{
    return hasFileOf(row, QLatin1StringView("audio"));
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
    return knownKinds.contains(kind) ? kind : QStringLiteral("media");
}

QString mediaWord(const QString& mediaType)
{
    const QString kind = mediaType.toLower();
    if (!knownKinds.contains(kind))
        return QStringLiteral("Media");
    return kind.first(1).toUpper() + kind.sliced(1);
}

std::optional<QString> textBehindMark(const QString& body)
{
    static const QStringList marks { QStringLiteral("[Document]"), QStringLiteral("[Image]"), QStringLiteral("[Video]"),
        QStringLiteral("[GIF]"), QStringLiteral("[Audio]"), QStringLiteral("[Sticker]") };
    const QString text = body.trimmed();
    for (const QString& mark : marks) {
        if (text.startsWith(mark))
            return text.sliced(mark.size()).trimmed();
    }
    return std::nullopt;
}

QString missingText(const QString& mediaType)
{
    return mediaWord(mediaType) + QStringLiteral(" file is missing from local media cache.");
}

QString refusedText(const QString& mediaType)
{
    return mediaWord(mediaType)
        + QStringLiteral(" file is not a plain file in its account's media folder, so it is not opened.");
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
        return { MediaState::Kind::Download, QStringLiteral("Download") };
    if (download->kind == MediaDownloadStatus::Kind::Downloading)
        return { MediaState::Kind::Downloading, QStringLiteral("Fetching from %1...").arg(channelLabel(row.platform)) };
    return { MediaState::Kind::Failed, download->message };
}

QString readableText(const UnifiedMsgRow& row)
{
    const bool isAudio = row.mediaType && row.mediaType->toLower() == QStringLiteral("audio");
    return singleLine(isAudio ? row.audioTranscript.value_or(QString()) : row.body);
}

}
