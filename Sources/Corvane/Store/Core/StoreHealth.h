#pragma once

#include "Foundation/Scheduler.h"

#include <QObject>

namespace corvane {

/// Why the database cannot be written.
enum class StoreFault {
    None,
    Full, ///< the disk is full
    ReadOnly, ///< the file is read-only
    Damaged, ///< the file is corrupt
    NotADatabase, ///< the file is not a database
    InputOutput, ///< an I/O error, or the file cannot be opened
};

/// What an SQLite result code says about the file; None for success, locks and faulty statements.
StoreFault storeFault(int resultCode);

/// Whether the same statement may succeed later: the file, a lock or memory failed, not the statement.
bool mayPass(int resultCode);

/// Whether the database can be written, learned from the results of all statements. While it cannot, a write is tried
/// at growing intervals; a corrupt file recovers only by being replaced.
class StoreHealth : public QObject {
    Q_OBJECT
public:
    /// `tryWrite` writes to the file and undoes it; true if that worked. The scheduler outlives the object.
    StoreHealth(Scheduler& scheduler, std::function<bool()> tryWrite);
    ~StoreHealth() override;

    StoreFault fault() const { return m_fault; }

    /// The result of a statement; only failures matter. May be called while a statement runs.
    void note(int resultCode);

    /// The file was replaced: forgets what was known of the old one.
    void forget();

Q_SIGNALS:
    void changed(); ///< from the event loop, never during a statement

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
