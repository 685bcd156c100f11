#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/ProcessLauncher.h"

#include <QJsonObject>
#include <deque>

namespace corvane {

class EngineStream;
class LineGroup;

/// Delivers the events that engines print, in the order of each engine's lines: at most 64 or 8 ms of them per turn of
/// the event loop, one from each engine in turn, so that a flood blocks neither the window nor other engines. The
/// events of a turn form a group; if it cannot be committed, they stay queued and no engine is read further. Outlives
/// its streams.
class EngineLines {
public:
    /// The references outlive the object.
    EngineLines(Scheduler& scheduler, LineGroup& group)
        : m_scheduler(scheduler)
        , m_group(group)
    {
    }

    struct Receiver {
        /// The object after the sentinel of a line. False if it cannot be stored now: it is delivered again later.
        std::function<bool(const QJsonObject& event)> event;
        /// Everything up to the line whose "ack" has this number is stored.
        std::function<void(qint64 number)> kept = {};
    };

    /// The output of a new engine.
    std::shared_ptr<EngineStream> open(Receiver receiver);

    static constexpr int eventsPerTurn = 64;

private:
    friend class EngineStream;
    using Streams = std::deque<std::shared_ptr<EngineStream>>;
    void wake(const std::shared_ptr<EngineStream>& stream);
    void wakeAfter(Milliseconds pause);
    void turn();
    bool take();
    Milliseconds pauseForOthers(qint64 startMs);

    Scheduler& m_scheduler;
    LineGroup& m_group;
    std::unique_ptr<Timer> m_timer;
    Streams m_waiting;
    qint64 m_busySinceMs = 0; ///< when consecutive groups started
    qint64 m_endMs = 0; ///< of the last group
};

/// The objects after the sentinel in whole lines, in order.
QList<QJsonObject> eventsIn(QByteArrayView lines);

/// The standard output of one engine.
class EngineStream : public std::enable_shared_from_this<EngineStream> {
public:
    EngineStream(EngineLines& lines, EngineLines::Receiver receiver);

    /// The chunk is kept until its events are handled.
    void append(const OutputChunk& chunk);

    /// End of the stream. `done` is called after the last event.
    void close(std::function<void()> done);

private:
    friend class EngineLines;
    struct Event {
        QJsonObject object;
        std::shared_ptr<void> hold;
    };

    bool hasNext() const { return m_taken < m_events.size(); }
    bool takeNext();
    void settle(bool kept);
    void tell();

    EngineLines& m_lines;
    EngineLines::Receiver m_receiver;
    std::function<void()> m_done;
    std::deque<Event> m_events;
    size_t m_taken = 0; ///< by the group that is not committed yet
    std::optional<qint64> m_kept; ///< the newest number to acknowledge
    bool m_isWaiting = false;
};

}
