#include "Platform/Linux/ChildInput.h"

#include <cerrno>
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
        return failure(QStringLiteral("standard input is closed"));
    if (bytes.size() > waitingLimit - m_waiting.size())
        return failure(QStringLiteral("standard input is full"));
    m_waiting += bytes;
    flush();
    if (!m_pipe.isOpen())
        return failure(QStringLiteral("standard input is closed"));
    return {};
}

void ChildInput::flush()
{
    qsizetype written = 0;
    while (written < m_waiting.size()) {
        const ssize_t count = ::write(
            m_pipe.number(), m_waiting.constData() + written, static_cast<size_t>(m_waiting.size() - written));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && errno != EAGAIN)
            return close();
        if (count < 0)
            break;
        written += count;
    }
    m_waiting.remove(0, written);
    m_room->setEnabled(!m_waiting.isEmpty());
}

void ChildInput::close()
{
    if (m_room)
        m_room->setEnabled(false);
    m_waiting.clear();
    m_pipe.close();
}

}
