#include "Engines/EngineLines.h"

#include "Engines/LineGroup.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"

#include <algorithm>
#include <cstdlib>

namespace corvane {

namespace {

constexpr QByteArrayView sentinel = "@@CORVANE@@";
constexpr qint64 turnMs = 8; // half a frame
constexpr Milliseconds waitPeriod { 100 };

// A program that waits for the write lock retries at least every 25 ms in its first 100 ms, and usually finds it free
// between two groups. The pauses of a flood help the unlucky ones.
constexpr qint64 busyMs = 60;
constexpr Milliseconds gap { 10 };

}

QList<QJsonObject> eventsIn(QByteArrayView lines)
{
    QList<QJsonObject> events;
    for (QByteArrayView rest = lines; !rest.isEmpty();) {
        const QByteArrayView line = rest.first(rest.indexOf('\n'));
        rest = rest.sliced(line.size() + 1);
        const qsizetype mark = line.indexOf(sentinel);
        if (mark < 0)
            continue;
        const QByteArrayView text = line.sliced(mark + sentinel.size());
        if (auto event = jsonObject(QByteArray::fromRawData(text.data(), text.size())))
            events.append(*std::move(event));
    }
    return events;
}

std::shared_ptr<EngineStream> EngineLines::open(Receiver receiver)
{
    return std::make_shared<EngineStream>(*this, std::move(receiver));
}

void EngineLines::wake(const std::shared_ptr<EngineStream>& stream)
{
    if (!std::exchange(stream->m_isWaiting, true))
        m_waiting.push_back(stream);
    if (!m_timer)
        wakeAfter(Milliseconds(0));
}

void EngineLines::wakeAfter(Milliseconds pause)
{
    m_timer = m_scheduler.after(pause, [this] { turn(); });
}

void EngineLines::turn()
{
    const Streams streams = m_waiting;
    const qint64 startMs = m_scheduler.nowMs();
    const bool allTaken = take();
    // If the first write had to wait, earlier lines had nothing to write.
    const bool kept = (allTaken || !m_group.hasRows()) && m_group.commit();
    if (!kept)
        m_group.rollBack();
    for (const auto& stream : streams)
        stream->settle(kept);
    std::erase_if(m_waiting, [](const auto& stream) {
        stream->m_isWaiting = stream->hasNext();
        return !stream->m_isWaiting;
    });
    m_timer.reset();
    if (!m_waiting.empty())
        wakeAfter(allTaken && kept ? pauseForOthers(startMs) : waitPeriod);
    if (kept)
        m_group.tell();
    for (const auto& stream : streams)
        stream->tell();
}

Milliseconds EngineLines::pauseForOthers(qint64 startMs)
{
    if (startMs - m_endMs >= gap.count())
        m_busySinceMs = startMs;
    m_endMs = m_scheduler.nowMs();
    return m_endMs - m_busySinceMs < busyMs ? Milliseconds(0) : gap;
}

/// False if the file cannot be written now.
bool EngineLines::take()
{
    const qint64 startMs = m_scheduler.nowMs();
    for (int i = 0; i < eventsPerTurn && std::abs(m_scheduler.nowMs() - startMs) < turnMs; ++i) {
        const auto next = std::ranges::find_if(m_waiting, &EngineStream::hasNext);
        if (next == m_waiting.end())
            return true;
        const std::shared_ptr<EngineStream> stream = *next;
        m_waiting.erase(next);
        if (!stream->takeNext()) {
            m_waiting.push_front(stream);
            return false;
        }
        m_waiting.push_back(stream);
    }
    return true;
}

EngineStream::EngineStream(EngineLines& lines, EngineLines::Receiver receiver)
    : m_lines(lines)
    , m_receiver(std::move(receiver))
{
}

void EngineStream::append(const OutputChunk& chunk)
{
    for (QJsonObject& event : eventsIn(chunk.lines))
        m_events.push_back({ std::move(event), chunk.hold });
    if (hasNext())
        m_lines.wake(shared_from_this());
}

void EngineStream::close(std::function<void()> done)
{
    m_done = std::move(done);
    m_lines.wake(shared_from_this());
}

bool EngineStream::takeNext()
{
    if (!m_receiver.event(m_events[m_taken].object))
        return false;
    ++m_taken;
    return true;
}

void EngineStream::settle(bool kept)
{
    for (; kept && m_taken > 0; --m_taken) {
        if (const auto number = wholeNumber(m_events.front().object, "ack"_L1))
            m_kept = number;
        m_events.pop_front();
    }
    m_taken = 0;
}

void EngineStream::tell()
{
    if (const auto number = std::exchange(m_kept, std::nullopt); number && m_receiver.kept)
        m_receiver.kept(*number);
    if (!m_events.empty() || !m_done)
        return;
    const auto done = std::exchange(m_done, nullptr);
    done();
}

}
