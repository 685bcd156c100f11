#pragma once

#include "Store/Work/WorkRecords.h"

#include <QHash>
#include <QStringList>

namespace corvane {

/// Which items of a module a board shows; empty values do not filter.
struct WorkItemFilter {
    QString module;
    WorkContextId context;
    QString owner = {};
    QString priority = {};
    QString kind = {};
    QString words = {}; ///< in the title or the summary, ignoring case
    QStringList kindSigns = {}; ///< its kind contains one of them; none: any kind
    bool otherKinds = false; ///< inverts `kindSigns`
    QStringList textSigns = {}; ///< its kind, title or summary contains one of them
};

bool isFinishedStatus(const QString& status); ///< done, closed or rejected, ignoring case

enum class WorkItems { Open, Finished };

/// By priority, last changed first. Summaries are cut after a few hundred characters.
QList<WorkItemRecord> fetchWorkItems(LocalDB& db, const WorkItemFilter& filter, WorkItems which, int limit);

struct WorkStatusCount {
    QString status;
    int count = 0;
};
QList<WorkStatusCount> countWorkItems(LocalDB& db, const WorkItemFilter& filter);

/// The values that a module's items have, as choices for the filters; sorted, without empty ones.
struct WorkItemWords {
    QStringList owners;
    QStringList priorities;
    QStringList kinds;

    bool operator==(const WorkItemWords&) const = default;
};
WorkItemWords workItemWords(LocalDB& db, const QString& module, const WorkContextId& context);

/// Totals of the tables, independent of what is shown.
struct WorkCounts {
    int contexts = 0;
    int openItems = 0; ///< neither done nor closed nor rejected
    int agents = 0;
    int evidence = 0;
    int waitingDecisions = 0;
    int proposedMemory = 0;

    bool operator==(const WorkCounts&) const = default;
};
WorkCounts countWork(LocalDB& db, const QString& module, const WorkContextId& context);

QHash<QString, int> waitingDecisionsByContext(LocalDB& db, const QString& module); ///< only contexts that have any
/// In the order of `fetchWorkDecisions`.
QList<WorkDecisionRecord> fetchWaitingDecisions(
    LocalDB& db, const QString& module, const WorkContextId& context, int limit);
QStringList titlesOfWaitingDecisions(LocalDB& db, const QString& module, const WorkContextId& context);

/// An event: a decision, evidence or a message.
struct WorkEvent {
    QString kind; ///< "decision", "evidence" or "message"
    QString id; ///< of the row
    QString title;
    QString status; ///< of a decision
    QString by; ///< the speaker, the decider, or the source
    QString detail; ///< cut after some thousand characters
    QString at; ///< when it was made
    QString changedAt; ///< of a decision
    QString role; ///< of a message's speaker; of evidence its kind
    QString uri; ///< of evidence: where it is

    bool operator==(const WorkEvent&) const = default;
};

/// Of a context, or of a module: the newest `limit` of each kind, oldest first.
QList<WorkEvent> fetchWorkEvents(LocalDB& db, const QString& module, const WorkContextId& context, int limit);

/// What is linked to an item: evidence by its id, decisions that review it, and anything that mentions the id.
QList<WorkEvent> fetchItemEvents(LocalDB& db, const WorkItemRecord& item, int limit);

/// The last message of a speaker in a module; empty if there is none.
QString lastWordsOf(LocalDB& db, const QString& module, const QString& speaker);

}
