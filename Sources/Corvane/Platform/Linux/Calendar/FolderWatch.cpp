#include "Platform/Linux/Calendar/FolderWatch.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <array>
#include <cerrno>
#include <cstring>
#include <sys/inotify.h>

namespace corvane {

namespace {

constexpr uint32_t events = IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ATTRIB
    | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

}

FolderWatch::FolderWatch(std::function<void()> changed)
    : m_changed(std::move(changed))
{
}

void FolderWatch::watch(const QStringList& folders)
{
    // A folder that disappears and returns is a new one, so every call checks again.
    m_notifier.reset();
    m_inotify = Descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    m_names.clear();
    if (!m_inotify.isOpen()) {
        log(u"FolderWatch: changes will not be noticed: %1"_s.arg(QString::fromUtf8(strerror(errno))));
        return;
    }
    for (const QString& folder : folders) {
        if (QFileInfo(folder).isDir()) {
            look(folder, {});
            continue;
        }
        // Watches the nearest existing parent for its creation.
        QString missing = QDir::cleanPath(folder);
        QString above = QFileInfo(missing).path();
        while (!QFileInfo(above).isDir() && above != QFileInfo(above).path()) {
            missing = above;
            above = QFileInfo(above).path();
        }
        look(above, QFileInfo(missing).fileName());
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_inotify.number(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { read(); });
}

void FolderWatch::look(const QString& folder, const QString& onlyName)
{
    const int watch = ::inotify_add_watch(m_inotify.number(), QFile::encodeName(folder).constData(), events);
    if (watch < 0) {
        log(u"FolderWatch: %1: %2"_s.arg(folder, QString::fromUtf8(strerror(errno))));
        return;
    }
    const auto known = m_names.find(watch);
    if (onlyName.isEmpty())
        m_names.insert(watch, {});
    else if (known == m_names.end())
        m_names.insert(watch, { onlyName });
    else if (!known->isEmpty())
        known->append(onlyName);
}

void FolderWatch::read()
{
    bool counts = false;
    alignas(inotify_event) std::array<char, 16 * 1024> buffer;
    for (;;) {
        const ssize_t length = ::read(m_inotify.number(), buffer.data(), buffer.size());
        if (length <= 0)
            break;
        for (ssize_t at = 0; at < length;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
            at += ssize_t(sizeof(inotify_event)) + event->len;
            const QStringList names = m_names.value(event->wd);
            counts = counts || names.isEmpty() || event->len == 0
                || names.contains(QFile::decodeName(static_cast<const char*>(event->name)));
        }
    }
    if (counts)
        m_changed();
}

}
