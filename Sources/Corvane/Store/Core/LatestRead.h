#pragma once

#include "Foundation/BackgroundQueue.h"
#include "Store/Core/SqlConnection.h"

namespace corvane {

class LocalDB;

/// Reads the database on a background thread, which may take seconds. One read runs at a time: a newer one cancels an
/// older one, whose value is never delivered.
class LatestRead {
public:
    using Stopped = std::shared_ptr<const std::atomic<bool>>;

    explicit LatestRead(LocalDB& db); ///< outlives the reads
    ~LatestRead(); ///< cancels a running read and waits for it, briefly

    /// `done` receives the value at a later turn of the event loop; an empty one if the database is not open. `read`
    /// runs on the other thread, on a connection of its own.
    template <typename Value>
    void start(std::function<Value(SqlConnection& db, const Stopped& stopped)> read, std::function<void(Value)> done)
    {
        stop();
        m_stopped = std::make_shared<std::atomic<bool>>(false);
        m_queue.run<Value>(
            [path = path(), read = std::move(read), stopped = m_stopped] {
                if (path.isEmpty() || stopped->load())
                    return Value();
                return read(*SqlConnection::reader(path, stopped), stopped);
            },
            [done = std::move(done), stopped = m_stopped](Value value) {
                if (!stopped->load())
                    done(std::move(value));
            });
    }

    void stop();

private:
    QString path() const; ///< empty if the database is not open

    LocalDB& m_db;
    std::shared_ptr<std::atomic<bool>> m_stopped;
    BackgroundQueue m_queue;
};

}
