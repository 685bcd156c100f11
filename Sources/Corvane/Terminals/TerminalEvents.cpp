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

void TerminalEvents::pointerShape(std::string_view shape)
{
    const std::lock_guard lock(m_lock);
    m_requests.pointer = text(shape);
}

void TerminalEvents::progress(terminal::ProgressState state, int percent)
{
    const std::lock_guard lock(m_lock);
    m_requests.progress = { state, percent };
}

void TerminalEvents::imageToDecode(uint32_t image, int width, int height, std::span<const uint8_t> file)
{
    constexpr qsizetype most = 64 << 20;
    const std::lock_guard lock(m_lock);
    qsizetype waiting = qsizetype(file.size());
    for (const TerminalRequests::Picture& picture : std::as_const(m_requests.pictures))
        waiting += picture.file.size();
    if (waiting <= most)
        m_requests.pictures.append(TerminalRequests::Picture { image, QSize(width, height),
            QByteArray(reinterpret_cast<const char*>(file.data()), qsizetype(file.size())) });
}

}
