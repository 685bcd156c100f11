#include "Inbox/Thread/ThreadReading.h"

namespace corvane {

namespace {

constexpr Milliseconds restTime { 1000 };

}

ThreadReading::ThreadReading(Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_scheduler(scheduler)
{
}

void ThreadReading::begin()
{
    m_open = true;
    m_newestInSight = true;
    m_rested = false;
    m_rest.reset();
    update();
}

void ThreadReading::end()
{
    m_open = false;
    update();
}

void ThreadReading::setOnScreen(bool onScreen)
{
    m_onScreen = onScreen;
    update();
}

void ThreadReading::setNewestInSight(bool inSight)
{
    m_newestInSight = inSight;
    update();
}

void ThreadReading::touch()
{
    m_rested = true;
    update();
}

void ThreadReading::update()
{
    if (!isSeen()) {
        m_rest.reset();
    } else if (m_rested) {
        m_rest.reset();
        Q_EMIT read();
    } else if (!m_rest) {
        m_rest = m_scheduler.after(restTime, [this] { touch(); });
    }
}

}
