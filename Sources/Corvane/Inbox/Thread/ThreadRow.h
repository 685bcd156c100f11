#pragma once

#include "Engines/RuntimeState.h"
#include "Inbox/Thread/ThreadBuilder.h"
#include "Inbox/Thread/VoiceTranscripts.h"

#include <QMetaType>
#include <QSet>

namespace corvane {

/// A line of the open thread: a date or a message.
class ThreadRow {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(bool isDate MEMBER isDate)
    Q_PROPERTY(QString dateText MEMBER dateText)
    Q_PROPERTY(bool outgoing MEMBER outgoing)
    Q_PROPERTY(bool grouped MEMBER grouped)
    Q_PROPERTY(bool showTime MEMBER showTime)
    Q_PROPERTY(QString timeText MEMBER timeText)
    Q_PROPERTY(QString subject MEMBER subject)
    Q_PROPERTY(QString body MEMBER body)
    Q_PROPERTY(QString quote MEMBER quote)
    Q_PROPERTY(QString quoteLabel MEMBER quoteLabel)
    Q_PROPERTY(QString moreText MEMBER moreText)
    Q_PROPERTY(QString unreadText MEMBER unreadText)
    Q_PROPERTY(QString senderLabel MEMBER senderLabel)
    Q_PROPERTY(QString platform MEMBER platform)
    Q_PROPERTY(QString channelLabel MEMBER channelLabel)
    Q_PROPERTY(QString ticks MEMBER ticks)
    Q_PROPERTY(QString ticksText MEMBER ticksText)
    Q_PROPERTY(QString ticksHelp MEMBER ticksHelp)
    Q_PROPERTY(QString mediaKind MEMBER mediaKind)
    Q_PROPERTY(QString mediaPath MEMBER mediaPath)
    Q_PROPERTY(QString mediaTitle MEMBER mediaTitle)
    Q_PROPERTY(QString mediaState MEMBER mediaState)
    Q_PROPERTY(QString mediaStateText MEMBER mediaStateText)
    Q_PROPERTY(QString transcript MEMBER transcript)
    Q_PROPERTY(QString transcribeState MEMBER transcribeState)
    Q_PROPERTY(QString transcribeText MEMBER transcribeText)
    Q_PROPERTY(QString reaction MEMBER reaction)
    Q_PROPERTY(bool highlighted MEMBER highlighted)
    Q_PROPERTY(QString spoken MEMBER spoken)
public:
    QString id; ///< of the message; "date:..." for a date
    bool isDate = false;
    QString dateText; ///< the day, for a date
    bool outgoing = false;
    bool grouped = false; ///< continues the run of the bubble above
    bool showTime = false; ///< the last bubble of its run: time and ticks are shown
    QString timeText;
    QString subject; ///< of a mail, if it differs from the previous one
    QString body; ///< text of the bubble; empty if the media title already says it
    QString quote; ///< the quoted tail of a mail, while it is expanded
    QString quoteLabel; ///< label of the toggle for the quoted tail; empty if there is none
    QString moreText; ///< label of the toggle for the rest of a long body, else empty
    QString unreadText; ///< above the first message that was unread when the thread was opened: "3 unread messages"
    QString senderLabel; ///< in group chats: for the first bubble of a run
    QString platform; ///< such as "WHATSAPP"
    QString channelLabel; ///< the channel's name if it differs from the message above, else empty
    QString ticks; ///< "", "single", "double", "read" (double, in the accent colour) or "word"
    QString ticksText; ///< such as "Delivered"
    QString ticksHelp; ///< a longer text for a tool tip, usually empty
    QString mediaKind; ///< "" for none, "image", "audio", "video", "document", "sticker" or "media"
    QString mediaPath; ///< only set if the file exists
    QString mediaTitle;
    QString mediaState; ///< "", "ready", "download", "downloading", "failed" (with a retry), "missing" or "refused"
    QString mediaStateText;
    QString transcript; ///< of a voice note
    QString transcribeState; ///< "", "offer", "loading", "missing" (no model) or "failed"
    QString transcribeText; ///< the progress, or why it failed
    QString reaction;
    bool highlighted = false;
    QString spoken;

    static constexpr const char* role = "message";
    const QString& key() const { return id; }
    bool operator==(const ThreadRow&) const = default;
};

/// How much of a body is shown initially.
constexpr qsizetype firstBodyLength = 10'000;

/// What a thread's rows depend on besides its messages.
struct ThreadSurroundings {
    QString contactName; ///< the sender if a message does not name one
    bool isGroup = false;
    QString highlightId;
    QString firstUnreadId;
    int unread = 0; ///< the number of unread messages from that one on
    QHash<QString, qsizetype> lengths = {}; ///< of bodies that were expanded
    QSet<QString> unfolded = {}; ///< messages whose quoted tail is expanded
    std::function<std::optional<MediaDownloadStatus>(const QString& messageId)> download;
    std::function<QStringList(const UnifiedMsgRow& row)> mediaPlaces; ///< where a message's file may be
    std::function<std::optional<AudioTranscriptionState>(const QString& messageId)> transcription = {};
};

QList<ThreadRow> threadRows(const QList<ThreadItem>& items, const ThreadSurroundings& surroundings);

}
