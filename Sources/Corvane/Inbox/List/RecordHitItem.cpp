#include "Inbox/List/RecordHitItem.h"

#include "Foundation/Literals.h"
#include "Inbox/List/HitText.h"
#include "Presentation/DateWords.h"

#include <QHash>

namespace corvane {

namespace {

QString joined(QStringList parts, const QString& separator)
{
    parts.removeAll(QString());
    return parts.join(separator);
}

RecordHitItem recordHitItem(const FoundRecord& record, const QString& words, const DateWords& dates)
{
    RecordHitItem item;
    const QString title = lineOf(record.title);
    const QString text = cutBefore(record.text, words).value_or(lineOf(record.text));
    item.id = recordKey(record);
    item.icon = recordIcon(record);
    item.title = highlighted(title.isEmpty() ? u"Untitled"_s : title, words);
    const QString detail = lineOf(record.detail).replace(u'_', u' '); // states such as in_progress
    item.snippet = joined({ detail.toHtmlEscaped(), highlighted(text, words) }, u" · "_s);
    item.timeText = dates.listTime(record.ts);
    item.opens = record.kind != "task"_L1 || !record.personId.isEmpty();
    item.spoken = joined({ groupLabel(record.group), title, detail, item.timeText, text }, u", "_s);
    return item;
}

}

QString recordKey(const FoundRecord& record)
{
    return record.kind + u':' + record.id;
}

QString recordIcon(const FoundRecord& record)
{
    static const QHash<QString, QString> icons { { u"call"_s, u"call-start"_s }, { u"transcript"_s, u"audio"_s },
        { u"note"_s, u"note"_s }, { u"deal"_s, u"hub-gtm"_s }, { u"task"_s, u"tick"_s },
        { u"event"_s, u"view-calendar"_s }, { u"context"_s, u"view-list"_s }, { u"item"_s, u"tick"_s },
        { u"decision"_s, u"approvals"_s }, { u"ask"_s, u"dialog-information"_s }, { u"project"_s, u"computer"_s } };
    return icons.value(record.kind);
}

QList<RecordHitItem> recordHitItems(
    const QList<FoundRecord>& records, const QString& words, int limit, const DateWords& dates)
{
    QList<RecordHitItem> items;
    QHash<SearchGroup, int> counts;
    for (const FoundRecord& record : records) {
        const int count = ++counts[record.group];
        if (count > limit) {
            items.last().more = u"All %1"_s.arg(groupLabel(record.group).toLower());
            continue;
        }
        items.append(recordHitItem(record, words, dates));
        if (count == 1)
            items.last().heading = groupLabel(record.group);
    }
    return items;
}

}
