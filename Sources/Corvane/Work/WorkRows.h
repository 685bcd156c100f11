#pragma once

#include "Store/Work/WorkBoardQueries.h"
#include "Work/WorkConsoleConfig.h"

#include <QObject>

namespace corvane {

class DateWords;

/// A context in the rail.
class WorkContextSeed {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString group MEMBER group)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString subtitle MEMBER subtitle)
    Q_PROPERTY(QString meta MEMBER meta)
    Q_PROPERTY(bool waits MEMBER waits)
    Q_PROPERTY(bool live MEMBER live)
    Q_PROPERTY(QString aloud MEMBER aloud)
public:
    QString id;
    QString group;
    QString title;
    QString subtitle;
    QString meta; ///< "3 open"
    bool waits = false; ///< for the user's decision
    bool live = false; ///< an agent is working in it
    QString aloud;

    static constexpr const char* role = "context";
    const QString& key() const { return id; }
    bool operator==(const WorkContextSeed&) const = default;
};

/// An item on a board.
class WorkItemSeed {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString kind MEMBER kind)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString status MEMBER status)
    Q_PROPERTY(QString priority MEMBER priority)
    Q_PROPERTY(QString owner MEMBER owner)
    Q_PROPERTY(QString summary MEMBER summary)
    Q_PROPERTY(QString updatedAt MEMBER updatedAt)
    Q_PROPERTY(bool waits MEMBER waits)
    Q_PROPERTY(QString aloud MEMBER aloud)
public:
    QString id;
    QString kind;
    QString title;
    QString status;
    QString priority; ///< empty for the usual priority
    QString owner;
    QString summary;
    QString updatedAt; ///< in words
    bool waits = false; ///< a decision about it is pending
    QString aloud;

    static constexpr const char* role = "item";
    const QString& key() const { return id; }
    bool operator==(const WorkItemSeed&) const = default;
};

/// A figure about the workspace.
class WorkMetricSeed {
    Q_GADGET
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString value MEMBER value)
    Q_PROPERTY(QString sub MEMBER sub)
public:
    QString label;
    QString value;
    QString sub; ///< empty for none

    bool operator==(const WorkMetricSeed&) const = default;
};

/// An event on a timeline.
class OpsTimelineEvent {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(QString time MEMBER time)
    Q_PROPERTY(QString day MEMBER day)
    Q_PROPERTY(QString icon MEMBER icon)
    Q_PROPERTY(QString aloud MEMBER aloud)
    Q_PROPERTY(QString capture MEMBER capture)
public:
    QString id; ///< "decision:{id}", "evidence:{id}", "message:{id}", or "decided:{id}"
    QString label; ///< decision, evidence or message
    QString title;
    QString detail;
    QString time;
    QString day;
    QString icon;
    QString aloud;
    QString capture; ///< path of saved browser evidence; else empty

    static constexpr const char* role = "event";
    const QString& key() const { return id; }
    bool operator==(const OpsTimelineEvent&) const = default;
};

/// Someone else's text on one line, safe to show next to other text.
QString shownLine(const QString& text);
QString shownText(const QString& text); ///< on several lines, limited in length

QString shownTime(const QString& isoTime, const DateWords& words); ///< empty if it is not a time

WorkContextSeed contextSeed(const WorkConsoleConfig& config, const WorkContextRow& context, int waitingDecisions);
WorkItemSeed itemSeed(const WorkItemRecord& item, bool waits, const DateWords& words);

/// Four figures: contexts, open work, agents and evidence.
QList<WorkMetricSeed> dashboardMetrics(const WorkConsoleConfig& config, const WorkCounts& counts);

/// A story's events in order; a decided decision appears twice.
QList<OpsTimelineEvent> timelineEvents(const QList<WorkEvent>& events, const DateWords& words);

/// The digest of a module: decisions, then evidence, then messages, each newest first, 25 in total.
QList<OpsTimelineEvent> opsTimeline(const QList<WorkEvent>& events, const DateWords& words);

QString factLine(const QStringList& facts); ///< the non-empty ones, separated by dots

}
