#pragma once

#include "Engines/RuntimeState.h"
#include "Store/Messages/ThreadQueries.h"

/// What a bubble shows of one message.
namespace corvane::UnifiedBubble {

struct Ticks {
    enum class Kind { None, Single, Double, Read, Word };
    Kind kind = Kind::None;
    QString text;
    QString help; ///< a longer text, usually empty
};

/// The delivery state of an outgoing message; none for an incoming one.
Ticks statusTicks(const QString& direction, const QString& platform, int status);
QString wordOf(Ticks::Kind kind); ///< "single", "double", "read" or "word"; empty for none

bool hasImage(const UnifiedMsgRow& row); ///< and its file exists
bool hasAudio(const UnifiedMsgRow& row);
QString mediaTitle(const UnifiedMsgRow& row);

/// "image", "audio", "video", "document", "sticker", "media" for any other; empty for plain text.
QString mediaKind(const UnifiedMsgRow& row);

/// The word for a kind of media: "Document", "Video", "Audio", "Sticker", "Image", else "Media".
QString mediaWord(const QString& mediaType);

/// The text without a leading mark such as "[Image]", trimmed; nothing if there is no such mark.
std::optional<QString> textBehindMark(const QString& body);

/// The text for a file that does not exist, or is not a regular file of its account.
QString missingText(const QString& mediaType);
QString refusedText(const QString& mediaType);

struct MediaState {
    enum class Kind { None, Ready, Download, Downloading, Failed, Missing, Refused };
    Kind kind = Kind::None;
    QString text;
};

/// The state of a message's media; `places` are its account's folders. Only WhatsApp media can be downloaded.
MediaState mediaState(
    const UnifiedMsgRow& row, const std::optional<MediaDownloadStatus>& download, const QStringList& places);

/// The text for reading aloud and copying: the transcript of a voice note, else the body, on one line.
QString readableText(const UnifiedMsgRow& row);

}
