#pragma once

#include <QTemporaryDir>
#include <memory>

namespace corvane {

class ProfileLock;

/// A private folder for unfinished files, next to `neighbour` on the same filesystem; removed with the object.
/// Leftovers of a killed program are removed when the next one is created.
class WorkFolder {
public:
    explicit WorkFolder(const QString& neighbour);
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    bool isValid() const { return m_folder.isValid() && m_lock; }
    QString path() const { return m_folder.path(); }
    QString filePath(const QString& name) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
    std::unique_ptr<ProfileLock> m_lock; ///< marks it as in use
};

}
