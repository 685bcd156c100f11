#include "Engines/EngineLines.h"

#include <cstdlib>

namespace corvane {

namespace {

constexpr QStringView sentinel = u"@@CORVANE@@";
constexpr qint64 turnMs = 8; // half a frame: each event waits for the disk several times
constexpr Milliseconds waitPeriod { 100 };

}

std::shared_ptr<EngineStream> EngineLines::open(const QString& head, std::function<void(const QString&)> handle)
{
    return std::make_shared<EngineStream>(*this, head, std::move(handle));
}

void EngineLines::wake(const std::shared_ptr<EngineStream>& stream)
{
    if (!stream->m_isWaiting) {
        stream->m_isWaiting = true;
        m_waiting.push_back(stream);
    }
    if (!m_timer)
        m_timer = m_scheduler.after(Milliseconds(0), [this] { turn(); });
}

void EngineLines::turn()
{
    if (m_mustWait && m_mustWait()) {
        m_timer = m_scheduler.after(waitPeriod, [this] { turn(); });
        return;
    }
    const qint64 startMs = m_scheduler.nowMs();
    for (int i = 0; i < eventsPerTurn && !m_waiting.empty(); ++i) {
        const std::shared_ptr<EngineStream> stream = m_waiting.front();
        m_waiting.pop_front();
        stream->m_isWaiting = false;
        stream->step();
        if (stream->hasWork())
            wake(stream);
        if (std::abs(m_scheduler.nowMs() - startMs) >= turnMs)
            break;
    }
    m_timer.reset();
    if (!m_waiting.empty())
        wake(m_waiting.front());
}

EngineStream::EngineStream(EngineLines& lines, const QString& head, std::function<void(const QString&)> handle)
    : m_lines(lines)
    , m_handle(std::move(handle))
    , m_rest(head)
{
}

void EngineStream::append(const OutputChunk& chunk)
{
    // Only the chunk is searched: a line of many chunks is looked at once.
    qsizetype from = 0;
    for (qsizetype end = chunk.text.indexOf(u'\n'); end >= 0; end = chunk.text.indexOf(u'\n', from)) {
        QString line = std::exchange(m_rest, QString());
        line += QStringView(chunk.text).sliced(from, end - from);
        from = end + 1;
        if (const qsizetype mark = line.indexOf(sentinel); mark >= 0)
            m_events.push_back({ line.sliced(mark + sentinel.size()), chunk.hold });
    }
    m_rest += QStringView(chunk.text).sliced(from);
    if (hasWork())
        m_lines.wake(shared_from_this());
}

void EngineStream::close(std::function<void(const QString&)> done)
{
    m_done = std::move(done);
    m_lines.wake(shared_from_this());
}

void EngineStream::step()
{
    if (m_events.empty()) {
        const auto done = std::exchange(m_done, nullptr);
        done(m_rest);
        return;
    }
    const Event event = std::move(m_events.front());
    m_events.pop_front();
    m_handle(event.text);
}

}
