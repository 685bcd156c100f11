#pragma once

#include "Foundation/Cancellation.h"

#include <QString>
#include <memory>
#include <qcoro/qcorotask.h>

namespace corvane {

class LocalDB;
class LumoAI;
class Scheduler;
class Timer;

/// Answers the requests of other processes in the table `ai_requests`: each request is claimed, generated, and its
/// answer or error written to the same row. One request at a time.
class AIRequestWatcher {
public:
    /// All references outlive the watcher.
    AIRequestWatcher(LocalDB& db, LumoAI& ai, Scheduler& scheduler);

    /// Cancels a running generation. Its row stays claimed and becomes pending again once the claim is two minutes old.
    ~AIRequestWatcher();

    AIRequestWatcher(const AIRequestWatcher&) = delete;
    AIRequestWatcher& operator=(const AIRequestWatcher&) = delete;

    void start(); ///< now and every second; a second call has no effect

private:
    QCoro::Task<> processPending();

    LocalDB& m_db;
    LumoAI& m_ai;
    Scheduler& m_scheduler;
    const QString m_claimOwner; ///< identifies in the row which run of which process claimed it
    const CancelHandle m_life;
    std::unique_ptr<Timer> m_timer;
    bool m_isProcessing = false;
};

}
