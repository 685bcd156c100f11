#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/ProcessLauncher.h"

#include <QString>
#include <deque>

namespace corvane {

class EngineStream;

/// Hands on the events that engines print, in the order of each engine's lines: a few at each turn of the loop,
/// fewer where each takes long, and one from each engine in turn, so that a flood blocks neither the window nor another
/// engine. It outlives its streams.
class EngineLines {
public:
    /// While `mustWait` says so nothing is handed on, and no engine is read further.
    explicit EngineLines(Scheduler& scheduler, std::function<bool()> mustWait = {})
        : m_scheduler(scheduler)
        , m_mustWait(std::move(mustWait))
    {
    }

    /// A new engine's output. `head` is what an earlier engine of the account left unterminated; it is joined to
    /// the first chunk. `handle` receives everything behind the sentinel of a line.
    std::shared_ptr<EngineStream> open(const QString& head, std::function<void(const QString& event)> handle);

    static constexpr int eventsPerTurn = 8;

private:
    friend class EngineStream;
    void wake(const std::shared_ptr<EngineStream>& stream);
    void turn();

    Scheduler& m_scheduler;
    const std::function<bool()> m_mustWait;
    std::unique_ptr<Timer> m_timer;
    std::deque<std::shared_ptr<EngineStream>> m_waiting;
};

/// The standard output of one engine.
class EngineStream : public std::enable_shared_from_this<EngineStream> {
public:
    EngineStream(EngineLines& lines, const QString& head, std::function<void(const QString&)> handle);

    /// The chunk is held until its events are handled.
    void append(const OutputChunk& chunk);

    /// Nothing follows. `done` is called after the last event, with the unterminated rest.
    void close(std::function<void(const QString& rest)> done);

private:
    friend class EngineLines;
    struct Event {
        QString text;
        std::shared_ptr<void> hold;
    };

    bool hasWork() const { return !m_events.empty() || m_done; }
    void step();

    EngineLines& m_lines;
    std::function<void(const QString&)> m_handle;
    std::function<void(const QString&)> m_done;
    QString m_rest; ///< never holds a newline
    std::deque<Event> m_events;
    bool m_isWaiting = false;
};

}
