#pragma once

#include <QTemporaryDir>
#include <memory>

namespace corvane {

class ProfileLock;

/// A private folder for what is unfinished, on the filesystem of `neighbour`, beside it; removed with the object. What
/// a killed program left there is removed when the next one is made.
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
    std::unique_ptr<ProfileLock> m_lock; ///< says that it is in use
};

}
