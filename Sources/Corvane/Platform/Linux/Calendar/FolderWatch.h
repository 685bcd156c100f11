#pragma once

#include "Platform/Linux/Files/Descriptor.h"

#include <QHash>
#include <QObject>
#include <QSocketNotifier>
#include <QStringList>
#include <functional>
#include <memory>

namespace corvane {

/// Reports changes in folders: files that are written, created, moved or deleted, and the folders themselves, including
/// ones that do not exist yet.
class FolderWatch {
public:
    explicit FolderWatch(std::function<void()> changed);

    void watch(const QStringList& folders); ///< replaces earlier folders; absolute paths

private:
    void look(const QString& folder, const QString& onlyName);
    void read();

    std::function<void()> m_changed;
    Descriptor m_inotify;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QHash<int, QStringList> m_names; ///< by watch: which names count in the folder; empty: all
};

}
