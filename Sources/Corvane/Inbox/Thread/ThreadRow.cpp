#include "Inbox/Thread/ThreadRow.h"

#include "Foundation/Channel.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Foundation/WAName.h"
#include "Inbox/Thread/UnifiedBubble.h"
#include "Presentation/BodyText.h"
#include "Presentation/DateWords.h"
#include "Presentation/MailText.h"

#include <algorithm>

namespace corvane {

namespace {

using UnifiedBubble::MediaState;
using UnifiedBubble::Ticks;

constexpr qsizetype spokenLength = 1000;
constexpr qsizetype longestSender = 200;

QString mediaStateWord(MediaState::Kind kind)
{
    switch (kind) {
    case MediaState::Kind::None:
        return {};
    case MediaState::Kind::Ready:
        return u"ready"_s;
    case MediaState::Kind::Download:
        return u"download"_s;
    case MediaState::Kind::Downloading:
        return u"downloading"_s;
    case MediaState::Kind::Failed:
        return u"failed"_s;
    case MediaState::Kind::Missing:
        return u"missing"_s;
    case MediaState::Kind::Refused:
        return u"refused"_s;
    }
    return {};
}

/// Removes the quoted tail of a mail from the row, or shows it if it is expanded; returns the number of hidden
/// characters.
qsizetype foldQuote(ThreadRow& shown, UnifiedMsgRow& row, const ThreadSurroundings& surroundings, qsizetype length)
{
    const qsizetype start = MailText::quoteStart(row.body);
    if (start == row.body.size())
        return 0;
    const bool isFolded = !surroundings.unfolded.contains(row.id);
    shown.quoteLabel = isFolded ? u"Show quoted text"_s : u"Hide quoted text"_s;
    qsizetype hidden = 0;
    if (!isFolded) {
        const auto quote = BodyText::shown(row.body.sliced(start), length);
        shown.quote = MailText::unquoted(quote.text);
        hidden = quote.hidden;
    }
    row.body.truncate(start);
    row.body = row.body.trimmed();
    return hidden;
}

/// Truncates very long texts, whose layout would block the window; returns the number of hidden characters.
qsizetype shorten(UnifiedMsgRow& row, qsizetype length)
{
    const auto body = BodyText::shown(row.body, length);
    const auto transcript = BodyText::shown(row.audioTranscript.value_or(QString()), length);
    row.body = body.text;
    if (row.audioTranscript)
        row.audioTranscript = transcript.text;
    row.sender = singleLine(row.sender.left(longestSender));
    return body.hidden + transcript.hidden;
}

// A picture shows its caption below; a document, or media that is not available, is a card whose title is the same
// text.
QString bubbleText(const UnifiedMsgRow& row, const ThreadRow& shown)
{
    if (shown.mediaKind.isEmpty())
        return row.body;
    const bool isCard
        = shown.mediaState != u"ready"_s || shown.mediaKind == u"document"_s || shown.mediaKind == u"media"_s;
    return isCard ? QString() : UnifiedBubble::textBehindMark(row.body).value_or(row.body);
}

/// A voice note with a file but without a transcript can be transcribed.
void describeTranscription(ThreadRow& shown, const ThreadSurroundings& surroundings)
{
    if (shown.mediaKind != u"audio"_s || shown.mediaPath.isEmpty())
        return;
    using Kind = AudioTranscriptionState::Kind;
    const auto state = surroundings.transcription ? surroundings.transcription(shown.id) : std::nullopt;
    if (!state) {
        shown.transcribeState = shown.transcript.isEmpty() ? u"offer"_s : QString();
        return;
    }
    shown.transcribeState = state->kind == Kind::Loading ? u"loading"_s
        : state->kind == Kind::MissingModel              ? u"missing"_s
                                                         : u"failed"_s;
    shown.transcribeText = state->text;
}

void describeMedia(ThreadRow& shown, const UnifiedMsgRow& row, const ThreadSurroundings& surroundings)
{
    shown.mediaKind = UnifiedBubble::mediaKind(row);
    if (!shown.mediaKind.isEmpty()) {
        const auto download = surroundings.download ? surroundings.download(row.id) : std::nullopt;
        const QStringList places = surroundings.mediaPlaces ? surroundings.mediaPlaces(row) : QStringList();
        const MediaState state = UnifiedBubble::mediaState(row, download, places);
        shown.mediaState = mediaStateWord(state.kind);
        shown.mediaStateText = state.text;
        shown.mediaTitle = UnifiedBubble::mediaTitle(row);
        if (state.kind == MediaState::Kind::Ready)
            shown.mediaPath = *row.mediaPath;
    }
    shown.body = bubbleText(row, shown);
    shown.transcript = row.audioTranscript.value_or(QString());
    describeTranscription(shown, surroundings);
}

QString spokenMessage(const ThreadRow& shown, const QString& sender)
{
    QStringList parts { shown.outgoing ? u"You"_s : WAName::pretty(sender), shown.timeText };
    if (!shown.ticksText.isEmpty())
        parts.append(shown.ticksText);
    if (!shown.mediaKind.isEmpty())
        parts.append(UnifiedBubble::mediaWord(shown.mediaKind));
    const QString text = shown.mediaKind.isEmpty() ? shown.body : shown.mediaTitle;
    return parts.join(u", "_s) + u": "_s + BodyText::shown(text, spokenLength).text;
}

ThreadRow dateRow(const QString& label)
{
    ThreadRow row;
    row.id = u"date:"_s + label;
    row.isDate = true;
    row.dateText = label;
    row.spoken = label;
    return row;
}

ThreadRow messageRow(const ThreadMsg& message, const ThreadSurroundings& surroundings, const DateWords& words)
{
    ThreadRow shown;
    UnifiedMsgRow row = message.row;
    const qsizetype length = surroundings.lengths.value(row.id, firstBodyLength);
    const qsizetype ofQuote = foldQuote(shown, row, surroundings, length);
    shown.moreText = BodyText::moreText(shorten(row, length) + ofQuote);
    shown.id = row.id;
    shown.outgoing = row.direction == u"OUT"_s;
    shown.grouped = message.grouped;
    shown.showTime = message.showTime;
    shown.timeText = words.clockTime(row.ts);
    shown.platform = row.platform;
    if (surroundings.isGroup && !shown.outgoing && !message.grouped && !row.sender.trimmed().isEmpty())
        shown.senderLabel = WAName::pretty(row.sender);
    const Ticks ticks = UnifiedBubble::statusTicks(row.direction, row.platform, row.status);
    shown.ticks = UnifiedBubble::wordOf(ticks.kind);
    shown.ticksText = ticks.text;
    shown.ticksHelp = ticks.help;
    shown.reaction = row.reaction;
    if (row.id == surroundings.firstUnreadId)
        shown.unreadText
            = surroundings.unread == 1 ? u"1 unread message"_s : u"%1 unread messages"_s.arg(surroundings.unread);
    shown.highlighted = row.id == surroundings.highlightId;
    shown.subject = row.subject;
    describeMedia(shown, row, surroundings);
    shown.spoken = spokenMessage(shown, row.sender.trimmed().isEmpty() ? surroundings.contactName : row.sender);
    return shown;
}

/// A subject is shown where it changes.
void labelSubjects(QList<ThreadRow>& rows)
{
    QString previous;
    for (ThreadRow& row : rows) {
        if (row.subject.isEmpty())
            continue;
        const QString plain = MailText::plainSubject(row.subject);
        row.subject = plain == previous ? QString() : BodyText::printable(singleLine(row.subject));
        previous = plain;
    }
}

/// The first message shows its channel only if another channel follows.
void labelChannels(QList<ThreadRow>& rows)
{
    ThreadRow* previous = nullptr;
    ThreadRow* first = nullptr;
    for (ThreadRow& row : rows) {
        if (row.isDate)
            continue;
        if (!first)
            first = &row;
        if (previous && previous->platform != row.platform) {
            row.channelLabel = channelLabel(row.platform);
            first->channelLabel = channelLabel(first->platform);
        }
        previous = &row;
    }
}

}

QList<ThreadRow> threadRows(const QList<ThreadItem>& items, const ThreadSurroundings& surroundings)
{
    const DateWords words(0);
    QList<ThreadRow> rows;
    rows.reserve(items.size());
    for (const ThreadItem& item : items) {
        const auto* message = std::get_if<ThreadMsg>(&item);
        rows.append(message ? messageRow(*message, surroundings, words) : dateRow(std::get<QString>(item)));
    }
    labelChannels(rows);
    labelSubjects(rows);
    return rows;
}

}
