#include "Platform/Linux/Processes/ChildInput.h"

#include "Foundation/Literals.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace corvane {

namespace {

constexpr qsizetype waitingLimit = 4 * 1024 * 1024;

}

ChildInput::ChildInput(Descriptor pipe)
    : m_pipe(std::move(pipe))
{
    if (!m_pipe.isOpen())
        return;
    m_room = std::make_unique<QSocketNotifier>(m_pipe.number(), QSocketNotifier::Write);
    m_room->setEnabled(false);
    QObject::connect(m_room.get(), &QSocketNotifier::activated, m_room.get(), [this] { flush(); });
}

Result<void> ChildInput::write(const QByteArray& bytes)
{
    if (!m_pipe.isOpen())
        return failure(u"standard input is closed"_s);
    if (bytes.size() > waitingLimit - m_waitingSize)
        return failure(u"standard input is full"_s);
    m_waiting.push_back(bytes);
    m_waitingSize += bytes.size();
    flush();
    if (m_pipe.isOpen())
        return {};
    withdraw(bytes);
    return failure(u"standard input is closed"_s);
}

void ChildInput::flush()
{
    while (!m_waiting.empty()) {
        const QByteArray& next = m_waiting.front();
        const ssize_t count
            = ::write(m_pipe.number(), next.constData() + m_begun, static_cast<size_t>(next.size() - m_begun));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && errno != EAGAIN)
            return markEnded();
        if (count < 0)
            break;
        m_begun += count;
        m_waitingSize -= count;
        if (m_begun < next.size())
            continue;
        m_written.push_back(std::move(m_waiting.front()));
        m_waiting.pop_front();
        m_begun = 0;
    }
    forgetRead();
    m_room->setEnabled(!m_waiting.empty());
}

int ChildInput::unreadBytes() const
{
    const Descriptor& pipe = m_pipe.isOpen() ? m_pipe : m_closedPipe;
    int count = 0;
    return pipe.isOpen() && ::ioctl(pipe.number(), FIONREAD, &count) == 0 ? count : 0;
}

void ChildInput::forgetRead()
{
    if (m_isReaderGone)
        return;
    qsizetype unread = unreadBytes() - m_begun;
    auto firstUnread = m_written.end();
    while (unread > 0 && firstUnread != m_written.begin())
        unread -= (--firstUnread)->size();
    m_written.erase(m_written.begin(), firstUnread);
}

bool ChildInput::hasRead(const QByteArray& bytes)
{
    forgetRead();
    return std::ranges::find(m_written, bytes) == m_written.end()
        && std::ranges::find(m_waiting, bytes) == m_waiting.end();
}

bool ChildInput::withdraw(const QByteArray& bytes)
{
    const bool firstIsOnItsWay = m_begun > 0 && !m_isReaderGone;
    const auto waiting = std::find(m_waiting.begin() + firstIsOnItsWay, m_waiting.end(), bytes);
    if (waiting != m_waiting.end()) {
        m_waitingSize -= bytes.size();
        m_waiting.erase(waiting);
        return true;
    }
    const auto written = m_isReaderGone ? std::ranges::find(m_written, bytes) : m_written.end();
    if (written == m_written.end())
        return false;
    m_written.erase(written);
    return true;
}

void ChildInput::close()
{
    if (!m_pipe.isOpen())
        return;
    m_room->setEnabled(false);
    // A read end does not keep the pipe open for the child, and nothing more is written.
    const QByteArray path = "/proc/self/fd/" + QByteArray::number(m_pipe.number());
    m_closedPipe = Descriptor(::open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    m_pipe.close();
}

void ChildInput::markEnded()
{
    close();
    forgetRead();
    m_isReaderGone = true;
    m_closedPipe.close();
}

}
