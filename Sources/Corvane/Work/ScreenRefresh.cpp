#include "Work/ScreenRefresh.h"

#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreWatch.h"

namespace corvane {

namespace {

constexpr Milliseconds refreshPeriod { 3000 };
constexpr int ticksBetweenAges = 20;
constexpr int ticksBetweenReads = 1200; // a day may have ended

}

ScreenRefresh::ScreenRefresh(
    LocalDB& db, Scheduler& scheduler, std::function<void()> read, std::function<void()> age, QObject* parent)
    : QObject(parent)
    , m_scheduler(scheduler)
    , m_read(std::move(read))
    , m_age(std::move(age))
{
    db.watch().on(StoreSubject::Work, this, [this] { setStale(); });
}

void ScreenRefresh::setShown(bool shown)
{
    if (this->shown() == shown)
        return;
    m_timer = shown ? m_scheduler.every(refreshPeriod, [this] { tick(); }) : nullptr;
    if (shown)
        now();
}

void ScreenRefresh::tick()
{
    ++m_ticks;
    if (m_stale || m_ticks >= ticksBetweenReads)
        now();
    else if (m_ticks % ticksBetweenAges == 0)
        m_age();
}

void ScreenRefresh::now()
{
    m_stale = false;
    m_ticks = 0;
    m_read();
}

}
