#pragma once

#include "Foundation/Scheduler.h"

#include <QObject>

namespace corvane {

/// Why the database takes no writes.
enum class StoreFault {
    None,
    Full, ///< the disk has no room left
    ReadOnly, ///< the file may be read but not written
    Damaged, ///< the file contradicts itself
    NotADatabase, ///< the file is something else
    InputOutput, ///< the disk does not obey, or the file cannot be opened
};

/// What a result code of SQLite says about the file; None for success, locks and faulty statements.
StoreFault storeFault(int resultCode);

/// Whether the same statement may succeed later: what failed is the file, a lock or the memory, not the statement.
bool mayPass(int resultCode);

/// Whether the database can be written, learnt from the results of all statements. While it cannot, a write is
/// tried every now and then, at growing pauses; a damaged file heals only by being replaced.
class StoreHealth : public QObject {
    Q_OBJECT
public:
    /// `tryWrite` writes to the file and takes it back; true where that worked. The scheduler outlives the object.
    StoreHealth(Scheduler& scheduler, std::function<bool()> tryWrite);
    ~StoreHealth() override;

    StoreFault fault() const { return m_fault; }

    /// The result of a statement; only a fault counts. May be called while a statement runs.
    void note(int resultCode);

    /// Another file lies at the path: what was known of the old one no longer holds.
    void forget();

Q_SIGNALS:
    void changed(); ///< from the event loop, never out of a statement

private:
    void set(StoreFault fault);
    void tryLater();
    void tryNow();

    Scheduler& m_scheduler;
    const std::function<bool()> m_tryWrite;
    StoreFault m_fault = StoreFault::None;
    Milliseconds m_pause;
    qint64 m_healedMs = 0;
    std::unique_ptr<Timer> m_attempt;
    std::unique_ptr<Timer> m_tell;
};

}
