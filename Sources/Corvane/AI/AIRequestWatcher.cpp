#include "AI/AIRequestWatcher.h"

#include "AI/LumoAI.h"
#include "Foundation/Literals.h"
#include "Foundation/Scheduler.h"
#include "Store/Assistant/AIRequestQueries.h"
#include "Store/Core/LocalDB.h"

#include <QCoreApplication>
#include <QUuid>

namespace corvane {

namespace {

constexpr Milliseconds period { 1000 };
constexpr qint64 staleMs = 120'000;
constexpr int batchSize = 5;

QCoro::Task<Result<QString>> generate(LumoAI& ai, AIRequest request, CancelHandle cancel)
{
    if (ai.availableName())
        co_return co_await ai.respond(request.instructions, request.prompt, cancel);
    const auto appeared = ai.availableName();
    co_return failure(appeared ? *appeared + u" unavailable"_s : u"No LumoAI backend available."_s);
}

}

AIRequestWatcher::AIRequestWatcher(LocalDB& db, LumoAI& ai, Scheduler& scheduler)
    : m_db(db)
    , m_ai(ai)
    , m_scheduler(scheduler)
    , m_claimOwner(u"Corvane:%1:%2"_s.arg(QCoreApplication::applicationPid())
              .arg(QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper()))
{
}

AIRequestWatcher::~AIRequestWatcher()
{
    m_life.cancel();
}

void AIRequestWatcher::start()
{
    m_timer = m_scheduler.every(period, [this] { processPending(); });
    // At a start this pass alone checks for stale requests: a second check would expire the ones that were just reset.
    processPending();
}

QCoro::Task<> AIRequestWatcher::processPending()
{
    if (m_isProcessing || !m_db.isSound() || m_db.isHeldElsewhere())
        co_return; // retried at the next tick
    failStaleAIRequests(m_db, staleMs);
    const QList<AIRequest> requests = fetchPendingAIRequests(m_db, batchSize);
    const CancelHandle life = m_life;
    m_isProcessing = true;
    // A model server may have started since the last check, or may not have been checked yet.
    if (!requests.isEmpty() && !m_ai.availableName())
        co_await m_ai.refresh();
    for (const AIRequest& request : requests) {
        if (life.isCancelled())
            co_return;
        if (!claimAIRequest(m_db, request.id, m_claimOwner))
            continue;
        const Result<QString> answer = co_await generate(m_ai, request, life);
        if (life.isCancelled())
            co_return;
        if (answer)
            completeAIRequest(m_db, request.id, *answer);
        else
            failAIRequest(m_db, request.id, answer.error().message);
    }
    m_isProcessing = false;
}

}
