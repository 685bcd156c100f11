#include "Store/Core/StoreHealth.h"

#include <algorithm>
#include <sqlite3.h>

namespace corvane {

namespace {

constexpr Milliseconds firstPause { 250 };
constexpr Milliseconds longestPause { 4000 };
constexpr qint64 relapseMs = 10'000; // a fault that returns so soon was never fixed

bool needsAnotherFile(StoreFault fault)
{
    return fault == StoreFault::Damaged || fault == StoreFault::NotADatabase;
}

}

StoreFault storeFault(int resultCode)
{
    if (resultCode == SQLITE_IOERR_NOMEM)
        return StoreFault::None;
    switch (resultCode & 0xff) {
    case SQLITE_FULL:
        return StoreFault::Full;
    case SQLITE_READONLY:
    case SQLITE_PERM:
        return StoreFault::ReadOnly;
    case SQLITE_CORRUPT:
        return StoreFault::Damaged;
    case SQLITE_NOTADB:
        return StoreFault::NotADatabase;
    case SQLITE_IOERR:
    case SQLITE_CANTOPEN:
        return StoreFault::InputOutput;
    default:
        return StoreFault::None;
    }
}

bool mayPass(int resultCode)
{
    const int kind = resultCode & 0xff;
    return storeFault(resultCode) != StoreFault::None || kind == SQLITE_BUSY || kind == SQLITE_LOCKED
        || kind == SQLITE_NOMEM || kind == SQLITE_IOERR || kind == SQLITE_INTERRUPT || kind == SQLITE_PROTOCOL;
}

StoreHealth::StoreHealth(Scheduler& scheduler, std::function<bool()> tryWrite)
    : m_scheduler(scheduler)
    , m_tryWrite(std::move(tryWrite))
    , m_pause(firstPause)
{
}

StoreHealth::~StoreHealth() = default;

void StoreHealth::note(int resultCode)
{
    const StoreFault found = storeFault(resultCode);
    if (found == StoreFault::None || needsAnotherFile(m_fault))
        return;
    if (m_fault == StoreFault::None && m_scheduler.nowMs() - m_healedMs > relapseMs)
        m_pause = firstPause;
    set(found);
    if (needsAnotherFile(found))
        m_attempt.reset();
    else if (!m_attempt)
        tryLater();
}

void StoreHealth::forget()
{
    m_attempt.reset();
    set(StoreFault::None);
}

void StoreHealth::set(StoreFault fault)
{
    if (std::exchange(m_fault, fault) != fault)
        m_tell = m_scheduler.after(Milliseconds(0), [this] { Q_EMIT changed(); });
}

void StoreHealth::tryLater()
{
    m_attempt = m_scheduler.after(m_pause, [this] { tryNow(); });
    m_pause = std::min(2 * m_pause, longestPause);
}

void StoreHealth::tryNow()
{
    const bool written = m_tryWrite();
    if (needsAnotherFile(m_fault))
        return;
    if (!written)
        return tryLater();
    m_attempt.reset();
    m_healedMs = m_scheduler.nowMs();
    set(StoreFault::None);
}

}
