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

/// Marks a tab in the background when its command ends.
void TerminalEvents::promptMark(terminal::PromptMark kind, int)
{
    if (kind == terminal::PromptMark::End)
        bell();
}

void TerminalEvents::notification(const terminal::Notification& notification)
{
    const std::lock_guard lock(m_lock);
    m_requests.bell = true;
    m_requests.notification = { text(notification.title), text(notification.body) };
}

}
