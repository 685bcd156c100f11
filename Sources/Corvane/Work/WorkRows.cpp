#include "Work/WorkRows.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Presentation/BodyText.h"
#include "Presentation/CountWords.h"
#include "Presentation/DateWords.h"
#include "Store/Work/OpsRecords.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int longestLine = 300;
constexpr qsizetype longestText = 4000;
constexpr qsizetype digestLength = 25;

QString joined(const QStringList& parts, const QString& between = u", "_s)
{
    QStringList present = parts;
    present.removeAll(QString());
    return present.join(between);
}

/// A known or unknown word with its first letter in upper case.
QString capital(const QString& word)
{
    return word.isEmpty() ? word : word.first(1).toUpper() + word.sliced(1);
}

OpsTimelineEvent event(const WorkEvent& from, const QString& at, const DateWords& words)
{
    OpsTimelineEvent shown;
    shown.id = from.kind + u':' + from.id;
    shown.label = from.kind;
    shown.detail = shownText(from.detail);
    const auto ms = parsedIsoTime(at);
    shown.time = ms ? words.clockTime(*ms) : QString();
    shown.day = words.group(ms.value_or(0));
    return shown;
}

OpsTimelineEvent timelineEvent(const WorkEvent& from, const DateWords& words)
{
    OpsTimelineEvent shown = event(from, from.at, words);
    if (from.kind == "decision"_L1) {
        shown.icon = u"approvals"_s;
        shown.title = shownLine(from.title) + u" - "_s + shownLine(from.status);
    } else if (from.kind == "evidence"_L1) {
        shown.icon = u"document"_s;
        shown.title = shownLine(factLine({ from.title, from.by }));
        shown.capture = from.role == "browser-capture"_L1 ? from.uri : QString();
    } else {
        shown.icon = from.role == "assistant"_L1 ? u"hub-lumo"_s : u"note"_s;
        shown.title = shownLine(from.by);
    }
    shown.aloud = joined({ shown.time, shown.label, shown.title, shownLine(shown.detail) });
    return shown;
}

}

QString factLine(const QStringList& facts)
{
    return joined(facts, u" · "_s);
}

QString shownLine(const QString& text)
{
    return firstCharacters(singleLine(BodyText::shown(text, longestLine).text), longestLine);
}

QString shownText(const QString& text)
{
    const BodyText::Shown shown = BodyText::shown(text, longestText);
    return shown.hidden > 0 ? shown.text + u'…' : shown.text;
}

QString shownTime(const QString& isoTime, const DateWords& words)
{
    const auto ms = parsedIsoTime(isoTime);
    return ms ? words.listTime(*ms) : QString();
}

WorkContextSeed contextSeed(const WorkConsoleConfig& config, const WorkContextRow& context, int waitingDecisions)
{
    WorkContextSeed seed;
    seed.id = context.id;
    seed.group = groupOf(config, context);
    seed.title = shownLine(context.title.isEmpty() ? context.slug : context.title);
    seed.subtitle = shownLine(context.subtitle);
    seed.meta = u"%1 open"_s.arg(context.openItems);
    seed.waits = waitingDecisions > 0;
    seed.live = context.liveAgents + context.liveSessions > 0;
    seed.aloud = joined({ seed.title, seed.meta,
        seed.waits ? countWords(waitingDecisions, u"decision waits"_s, u"decisions wait"_s) : QString(),
        seed.live ? u"an agent is working"_s : QString(), seed.subtitle });
    return seed;
}

WorkItemSeed itemSeed(const WorkItemRecord& item, bool waits, const DateWords& words)
{
    WorkItemSeed seed;
    seed.id = item.id;
    seed.kind = capital(shownLine(item.kind));
    seed.title = shownLine(item.title.isEmpty() ? u"Untitled"_s : item.title);
    seed.status = shownLine(item.status).replace(u'_', u' ');
    if (item.priority != "normal"_L1)
        seed.priority = capital(shownLine(item.priority));
    seed.owner = shownLine(item.owner);
    seed.summary = shownLine(item.summary);
    seed.updatedAt = shownTime(item.updatedAt, words);
    seed.waits = waits;
    seed.aloud = joined({ seed.title, seed.kind, seed.priority.isEmpty() ? QString() : seed.priority + u" priority"_s,
        seed.owner, waits ? u"waits for a decision"_s : QString(), seed.updatedAt });
    return seed;
}

QList<WorkMetricSeed> dashboardMetrics(const WorkConsoleConfig& config, const WorkCounts& counts)
{
    const auto metric = [](const QString& label, int value, const QString& sub = {}) {
        WorkMetricSeed seed;
        seed.label = label;
        seed.value = QString::number(value);
        seed.sub = sub;
        return seed;
    };
    return { metric(config.contextTitle, counts.contexts), metric(u"Open work"_s, counts.openItems),
        metric(u"Agents"_s, counts.agents),
        metric(u"Evidence"_s, counts.evidence,
            counts.waitingDecisions > 0 ? countWords(counts.waitingDecisions, u"approval"_s, u"approvals"_s)
                                        : QString()) };
}

QList<OpsTimelineEvent> timelineEvents(const QList<WorkEvent>& events, const DateWords& words)
{
    struct Placed {
        QString at;
        OpsTimelineEvent event;
    };
    QList<Placed> made;
    QList<Placed> taken;
    for (const WorkEvent& from : events) {
        made.append({ from.at, timelineEvent(from, words) });
        if (from.kind != "decision"_L1 || from.by.isEmpty() || from.status == "proposed"_L1)
            continue;
        OpsTimelineEvent decided = event(from, from.changedAt, words);
        decided.id = u"decided:"_s + from.id;
        decided.icon = u"dialog-ok"_s;
        decided.title
            = u"%1 by %2: %3"_s.arg(capital(shownLine(from.status)), shownLine(from.by), shownLine(from.title));
        decided.detail.clear();
        decided.aloud = joined({ decided.time, decided.title });
        taken.append({ from.changedAt, decided });
    }
    std::ranges::sort(taken, {}, &Placed::at);
    QList<Placed> placed;
    std::ranges::merge(made, taken, std::back_inserter(placed), {}, &Placed::at, &Placed::at);
    QList<OpsTimelineEvent> shown;
    for (const Placed& each : std::as_const(placed))
        shown.append(each.event);
    return shown;
}

QList<OpsTimelineEvent> opsTimeline(const QList<WorkEvent>& events, const DateWords& words)
{
    QList<OpsTimelineEvent> shown;
    for (const auto kind : { "decision"_L1, "evidence"_L1, "message"_L1 }) {
        for (auto from = events.crbegin(); from != events.crend() && shown.size() < digestLength; ++from) {
            if (from->kind == kind)
                shown.append(timelineEvent(*from, words));
        }
    }
    return shown;
}

}
