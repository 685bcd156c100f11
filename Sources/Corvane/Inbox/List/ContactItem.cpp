#include "Inbox/List/ContactItem.h"

#include "Foundation/Channel.h"
#include "Foundation/Literals.h"
#include "Foundation/WAName.h"
#include "Inbox/List/HitText.h"
#include "Inbox/Thread/UnifiedBubble.h"
#include "Presentation/ContactFace.h"
#include "Presentation/DateWords.h"
#include "Presentation/MailText.h"

#include <QFileInfo>

namespace corvane {

namespace {

constexpr int snippetLength = 160;

QString snippetOf(const QString& body, const QString& mediaType)
{
    const QString start = MailText::withoutQuote(body.left(2 * snippetLength)).trimmed();
    if (start.isEmpty())
        return mediaType.isEmpty() ? QString() : UnifiedBubble::mediaWord(mediaType);
    if (const auto text = UnifiedBubble::textBehindMark(start)) {
        const QString word = start.sliced(1, start.indexOf(u']') - 1);
        return text->isEmpty() ? word : word + u": "_s + lineOf(*text);
    }
    return lineOf(start);
}

QString spokenOf(const ContactItem& item)
{
    QStringList parts { item.name };
    parts += item.platformLabels;
    if (item.isGroup)
        parts.append(u"group"_s);
    if (item.isMuted)
        parts.append(u"muted"_s);
    if (item.unread > 0)
        parts.append(u"%1 unread"_s.arg(item.unread));
    if (!item.timeText.isEmpty())
        parts.append(item.timeText);
    if (!item.ticksText.isEmpty())
        parts.append(item.ticksText);
    const QString facts = parts.join(u", "_s);
    return item.snippet.isEmpty() ? facts : facts + u": "_s + item.snippet;
}

QString existing(const QString& path)
{
    return !path.isEmpty() && QFileInfo::exists(path) ? path : QString();
}

MessageHitItem messageHitItem(const MessageHit& hit, const QString& query, const DateWords& words)
{
    MessageHitItem item;
    item.id = hit.id;
    item.contactId = hit.contactId;
    item.name = WAName::pretty(lineOf(hit.contactName));
    item.platform = hit.channel;
    item.platformLabel = channelLabel(hit.channel);
    const QString you = hit.direction == u"OUT"_s ? u"You: "_s : QString();
    const QString line = cutBefore(hit.snippet, query).value_or(snippetOf(hit.snippet, hit.mediaType));
    item.snippet = you + highlighted(line, query);
    item.timeText = words.listTime(hit.ts);
    item.avatarPath = existing(hit.avatarPath);
    item.initials = initials(item.name);
    item.hue = hue(hit.contactId);
    item.spoken = u"%1, %2, %3: %4"_s.arg(item.name, item.platformLabel, item.timeText, you + line);
    return item;
}

}

QString contactName(const ContactRow& row)
{
    return WAName::pretty(lineOf(row.name));
}

ContactItem contactItem(const ContactRow& row, const LastMessage& last, const DateWords& words)
{
    ContactItem item;
    item.id = row.id;
    item.name = contactName(row);
    item.platforms = row.platforms;
    for (const QString& platform : row.platforms)
        item.platformLabels.append(channelLabel(platform));
    item.snippet = snippetOf(row.snippet, last.mediaType);
    if (last.direction == u"OUT"_s && !item.snippet.isEmpty())
        item.snippet.prepend(u"You: "_s);
    const UnifiedBubble::Ticks ticks = UnifiedBubble::statusTicks(last.direction, last.channel, last.status);
    item.ticks = UnifiedBubble::wordOf(ticks.kind);
    item.ticksText = ticks.text;
    item.timeText = words.listTime(row.lastTs);
    item.unread = row.unread;
    item.account = row.account;
    item.isGroup = row.isGroup;
    item.avatarPath = existing(row.avatarPath);
    item.initials = initials(item.name);
    item.hue = hue(row.id);
    item.isMuted = row.isMuted;
    item.spoken = spokenOf(item);
    return item;
}

QList<MessageHitItem> messageHitItems(const QList<MessageHit>& hits, const QString& query, const DateWords& words)
{
    QStringList people;
    QHash<QString, QList<MessageHitItem>> ofPerson;
    for (const MessageHit& hit : hits) {
        QList<MessageHitItem>& items = ofPerson[hit.contactId];
        if (items.isEmpty())
            people.append(hit.contactId);
        items.append(messageHitItem(hit, query, words));
        items.last().leads = items.size() == 1;
    }
    QList<MessageHitItem> all;
    for (const QString& person : people)
        all += ofPerson.value(person);
    return all;
}

}
