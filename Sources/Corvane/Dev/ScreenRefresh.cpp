#include "Dev/ScreenRefresh.h"

#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreWatch.h"

namespace corvane {

namespace {

constexpr Milliseconds refreshPeriod { 3000 };
constexpr int ticksBetweenAges = 10;

}

ScreenRefresh::ScreenRefresh(LocalDB& db, Scheduler& scheduler, const std::function<void()>& read, QObject* parent)
    : QObject(parent)
    , m_scheduler(scheduler)
    , m_read(read)
{
    db.watch().on(StoreSubject::Work, this, [this] { m_stale = true; });
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
    if (m_stale || ++m_ticks >= ticksBetweenAges)
        now();
}

void ScreenRefresh::now()
{
    m_stale = false;
    m_ticks = 0;
    m_read();
}

}
