#include "Foundation/BackgroundQueue.h"

#include <QObject>
#include <QThreadPool>

namespace corvane {

struct BackgroundQueue::State {
    QThreadPool pool;
    QObject home;
};

BackgroundQueue::BackgroundQueue()
    : m_state(std::make_unique<State>())
{
    m_state->pool.setMaxThreadCount(2);
    m_state->pool.setThreadPriority(QThread::LowPriority);
}

BackgroundQueue::~BackgroundQueue()
{
    m_state->pool.clear();
    m_state->pool.waitForDone();
}

void BackgroundQueue::runErased(std::function<void()> work, std::function<void()> done)
{
    m_state->pool.start([this, work = std::move(work), done = std::move(done)] {
        work();
        QMetaObject::invokeMethod(&m_state->home, done, Qt::QueuedConnection);
    });
}

}
