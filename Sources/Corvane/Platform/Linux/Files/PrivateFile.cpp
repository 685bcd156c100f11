#include "Platform/PrivateFile.h"

#include "Foundation/Log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {

namespace {

bool writeAll(int descriptor, const QByteArray& content)
{
    qsizetype written = 0;
    while (written < content.size()) {
        const ssize_t count = ::write(descriptor, content.constData() + written, size_t(content.size() - written));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        written += count;
    }
    return true;
}

/// The folder itself comes last: until then a start that was cut short is made good by the next one.
void closeToOthers(const std::filesystem::path& folder)
{
    namespace fs = std::filesystem;
    constexpr auto others = fs::perms::group_all | fs::perms::others_all;
    std::error_code error;
    const auto close = [&](const fs::path& path) {
        fs::permissions(path, others, fs::perm_options::remove, error);
        if (error)
            log(QStringLiteral("PrivateFile: %1 stays open to others: %2")
                    .arg(QString::fromStdString(path), QString::fromStdString(error.message())));
    };
    if ((fs::status(folder, error).permissions() & others) == fs::perms::none)
        return;
    for (auto entry = fs::recursive_directory_iterator(folder, error); entry != fs::recursive_directory_iterator();
        entry.increment(error)) {
        if (!entry->is_symlink())
            close(*entry);
    }
    close(folder);
}

}

mode_t keepFilesPrivate(const QStringList& folders)
{
    const mode_t before = ::umask(S_IRWXG | S_IRWXO);
    for (const QString& folder : folders) {
        QDir().mkpath(folder);
        closeToOthers(QFile::encodeName(folder).toStdString());
    }
    return before;
}

bool writePrivateFile(const QString& path, const QByteArray& content, Outlives outlives)
{
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
        return false;
    // mkostemp gives mode 0600 of its own accord, so that no moment exists in which others could read.
    QByteArray temporary = QFile::encodeName(path) + ".XXXXXX";
    const int descriptor = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool waits = outlives == Outlives::PowerCut;
    const bool complete = writeAll(descriptor, content) && (!waits || ::fsync(descriptor) == 0);
    const bool closed = ::close(descriptor) == 0;
    if (complete && closed && ::rename(temporary.constData(), QFile::encodeName(path).constData()) == 0) {
        // The rename itself survives a power cut only once the folder is on the disk.
        const int folderDescriptor
            = waits ? ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
        if (folderDescriptor >= 0) {
            ::fsync(folderDescriptor);
            ::close(folderDescriptor);
        }
        return true;
    }
    ::unlink(temporary.constData());
    return false;
}

}
