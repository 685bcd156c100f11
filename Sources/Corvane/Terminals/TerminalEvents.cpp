#include "Terminals/TerminalEvents.h"

#include <QUrl>
#include <utility>

namespace corvane {

namespace {

QString text(std::string_view bytes)
{
    return QString::fromUtf8(bytes.data(), qsizetype(bytes.size()));
}

}

TerminalRequests TerminalEvents::take()
{
    const std::lock_guard lock(m_lock);
    return std::exchange(m_requests, {});
}

void TerminalEvents::bell()
{
    const std::lock_guard lock(m_lock);
    m_requests.bell = true;
}

void TerminalEvents::titleChanged(std::string_view title)
{
    const std::lock_guard lock(m_lock);
    m_requests.title = text(title);
}

void TerminalEvents::directoryChanged(std::string_view address)
{
    const QString path = QUrl(text(address)).path();
    const std::lock_guard lock(m_lock);
    m_requests.directory = path;
}

void TerminalEvents::clipboardWrite(std::string_view, std::string_view data)
{
    const std::lock_guard lock(m_lock);
    m_requests.clipboard = text(data);
}

/// A tab that is not in front shows that something wants to be seen; more a program does not get.
void TerminalEvents::notification(const terminal::Notification&)
{
    bell();
}

}
