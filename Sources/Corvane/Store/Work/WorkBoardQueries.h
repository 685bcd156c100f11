#pragma once

#include "Store/Work/WorkRecords.h"

#include <QHash>
#include <QStringList>

namespace corvane {

/// Which items of a module a board shows; an empty text leaves nothing out.
struct WorkItemFilter {
    QString module;
    WorkContextId context;
    QString owner = {};
    QString priority = {};
    QString kind = {};
    QString words = {}; ///< in the title or the summary, without case
    QStringList kindSigns = {}; ///< its kind holds one of them; none: any kind
    bool otherKinds = false; ///< turns `kindSigns` round
    QStringList textSigns = {}; ///< its kind, title or summary holds one of them
};

bool isFinishedStatus(const QString& status); ///< done, closed or rejected, without case

enum class WorkItems { Open, Finished };

/// By priority, the last changed first. Summaries are cut after a few hundred characters.
QList<WorkItemRecord> fetchWorkItems(LocalDB& db, const WorkItemFilter& filter, WorkItems which, int limit);

struct WorkStatusCount {
    QString status;
    int count = 0;
};
QList<WorkStatusCount> countWorkItems(LocalDB& db, const WorkItemFilter& filter);

/// The words that a module's items hold, for the choices of the filters; each sorted, without empty ones.
struct WorkItemWords {
    QStringList owners;
    QStringList priorities;
    QStringList kinds;

    bool operator==(const WorkItemWords&) const = default;
};
WorkItemWords workItemWords(LocalDB& db, const QString& module, const WorkContextId& context);

/// How much there is, asked of the tables and not of what is shown.
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

QHash<QString, int> waitingDecisionsByContext(LocalDB& db, const QString& module); ///< those that have any
QStringList titlesOfWaitingDecisions(LocalDB& db, const QString& module, const WorkContextId& context);

/// Something that happened: a decision, evidence or a message.
struct WorkEvent {
    QString kind; ///< "decision", "evidence" or "message"
    QString id; ///< of the row
    QString title;
    QString status; ///< of a decision
    QString by; ///< who spoke, decided, or where it comes from
    QString detail; ///< cut after some thousand characters
    QString at; ///< when it was made
    QString changedAt; ///< of a decision
    QString role; ///< of a message's speaker

    bool operator==(const WorkEvent&) const = default;
};

/// Of a context, or of a module: the newest `limit` of each kind, by time, oldest first.
QList<WorkEvent> fetchWorkEvents(LocalDB& db, const QString& module, const WorkContextId& context, int limit);

/// What is linked to an item: evidence by its id, decisions that review it, and whatever names the id.
QList<WorkEvent> fetchItemEvents(LocalDB& db, const WorkItemRecord& item, int limit);

/// The newest words of a speaker in a module; empty where there are none.
QString lastWordsOf(LocalDB& db, const QString& module, const QString& speaker);

/// A row that a search found.
struct WorkHit {
    QString kind; ///< "context", "item", "decision", "ask" or "project"
    QString id;
    QString module; ///< empty for an ask and a project
    QString contextId;
    QString title;
    QString detail;

    bool operator==(const WorkHit&) const = default;
};

/// At most `limit` of each kind, the last changed first.
QList<WorkHit> findWork(LocalDB& db, const QString& words, int limit);

}
