#pragma once

#include "Engines/RuntimeState.h"
#include "Store/Messages/ThreadQueries.h"

/// What a bubble says of one message.
namespace corvane::UnifiedBubble {

struct Ticks {
    enum class Kind { None, Single, Double, Read, Word };
    Kind kind = Kind::None;
    QString text;
    QString help; ///< a longer text, mostly empty
};

/// How far an outgoing message got; none for an incoming one.
Ticks statusTicks(const QString& direction, const QString& platform, int status);
QString wordOf(Ticks::Kind kind); ///< "single", "double", "read" or "word"; empty for none

bool hasImage(const UnifiedMsgRow& row); ///< and its file is there
bool hasAudio(const UnifiedMsgRow& row);
QString mediaTitle(const UnifiedMsgRow& row);

/// "image", "audio", "video", "document", "sticker", "media" for any other; empty for a plain text.
QString mediaKind(const UnifiedMsgRow& row);

/// The word for a kind of media: "Document", "Video", "Audio", "Sticker", "Image", else "Media".
QString mediaWord(const QString& mediaType);

/// The text without a leading mark such as "[Image]", trimmed; nothing where no mark leads it.
std::optional<QString> textBehindMark(const QString& body);

/// What is said of a file that a message names and that is not there, or not a plain file of its account.
QString missingText(const QString& mediaType);
QString refusedText(const QString& mediaType);

struct MediaState {
    enum class Kind { None, Ready, Download, Downloading, Failed, Missing, Refused };
    Kind kind = Kind::None;
    QString text;
};

/// Where the medium of a message stands; `places` are those of its account. Only WhatsApp's can be fetched.
MediaState mediaState(
    const UnifiedMsgRow& row, const std::optional<MediaDownloadStatus>& download, const QStringList& places);

/// What is read aloud and copied: the transcript of a voice note, else the body, on one line.
QString readableText(const UnifiedMsgRow& row);

}
