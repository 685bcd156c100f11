#include "CRM/PaneRows.h"

#include "Foundation/Channel.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Foundation/WAName.h"
#include "Presentation/BodyText.h"
#include "Presentation/DateWords.h"
#include "Presentation/MailText.h"

namespace corvane {

namespace {

constexpr int lineLength = 240;
constexpr int longestText = 10'000; ///< more would block the window, and nobody reads it in a pane

QString line(const QString& text)
{
    return singleLine(BodyText::printable(MailText::withoutQuote(firstCharacters(text, lineLength))));
}

QString joined(QStringList parts)
{
    parts.removeAll(QString());
    return parts.join(u" · "_s);
}

QString signalWords(const QString& signal)
{
    return signal == u"name" ? u"similar name (weak)"_s : u"matching "_s + signal;
}

}

PaneRow suggestionRow(const MergeCandidate& pair, const QString& contactId)
{
    const bool isFirst = pair.aId == contactId;
    const QString name = WAName::pretty(isFirst ? pair.bName : pair.aName);
    PaneRow row;
    row.id = isFirst ? pair.bId : pair.aId;
    row.channel = row.id.section(u':', 1, 1);
    row.text = u"Same as %1?"_s.arg(name);
    row.detail = signalWords(pair.signal);
    return row;
}

PaneRow mergeRow(const LiveMerge& merge, const QString& mergedName)
{
    PaneRow row;
    row.id = merge.id;
    row.channel = merge.mergedId.section(u':', 1, 1);
    row.text = u"Merged with "_s + WAName::pretty(mergedName);
    row.detail = channelLabel(row.channel);
    return row;
}

PaneRow memoryRow(const MemoryEntry& entry)
{
    PaneRow row;
    row.id = entry.id;
    row.text = firstCharacters(entry.body, longestText);
    return row;
}

QList<PaneRow> infoRows(const ContactInfoRow& info)
{
    QList<PaneRow> rows;
    const auto add = [&](const QString& label, const QStringList& values) {
        for (const QString& value : values) {
            PaneRow row;
            row.id = label + u':' + value;
            row.label = label;
            row.text = value;
            rows.append(row);
        }
    };
    add(u"Email"_s, info.emails);
    add(u"Phone"_s, info.phones);
    for (const QString& platform : info.platforms) {
        add(u"Channel"_s, { channelLabel(platform) });
        rows.last().channel = platform;
    }
    add(u"Handle"_s, info.handles);
    add(u"Company"_s, info.companies);
    return rows;
}

PaneRow dealRow(const CRMDealRow& deal)
{
    PaneRow row;
    row.id = deal.id;
    row.text = line(deal.name);
    row.stage = deal.stage;
    row.detail = line(joined({ deal.stage, deal.value, deal.company }));
    return row;
}

PaneRow noteRow(const NoteRow& note, const DateWords& words)
{
    PaneRow row;
    row.id = note.id;
    row.text = firstCharacters(note.body, longestText);
    row.timeText = words.listTime(note.ts);
    return row;
}

PaneRow activityRow(const ActivityRow& activity, const DateWords& words)
{
    using Kind = ActivityRow::Kind;
    PaneRow row;
    row.id = activity.id;
    row.text = line(activity.text);
    row.detail = activity.processingStatus;
    row.timeText = words.listTime(activity.ts);
    row.channel = activity.channel;
    row.icon = activity.kind == Kind::Call ? u"call-start"_s : activity.kind == Kind::Note ? u"note"_s : QString();
    row.label = activity.kind == Kind::Call ? u"Call"_s
        : activity.kind == Kind::Note       ? u"Note"_s
                                            : channelLabel(activity.channel);
    return row;
}

PaneRow taskRow(const CRMTaskRow& task)
{
    PaneRow row;
    row.id = task.id;
    row.text = line(task.title);
    // Default values are not shown.
    row.detail = line(joined({ task.due, task.priority == u"Normal" ? QString() : task.priority,
        task.status == u"To do" ? QString() : task.status }));
    return row;
}

}
