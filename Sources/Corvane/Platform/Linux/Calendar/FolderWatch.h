#pragma once

#include "Platform/Linux/Files/Descriptor.h"

#include <QHash>
#include <QObject>
#include <QSocketNotifier>
#include <QStringList>
#include <functional>
#include <memory>

namespace corvane {

/// Tells when something changes in folders: files that are written, also in place, that come or go, and the folders
/// themselves, also ones that are not there yet.
class FolderWatch {
public:
    explicit FolderWatch(std::function<void()> changed);

    void watch(const QStringList& folders); ///< in place of those before; absolute paths

private:
    void look(const QString& folder, const QString& onlyName);
    void read();

    std::function<void()> m_changed;
    Descriptor m_inotify;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QHash<int, QStringList> m_names; ///< by watch: what counts in the folder; none: everything
};

}
