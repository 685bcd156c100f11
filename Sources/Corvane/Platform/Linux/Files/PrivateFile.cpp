#include "Platform/PrivateFile.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Files/Descriptor.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {

namespace {

bool writeAll(int descriptor, QByteArrayView content)
{
    while (!content.isEmpty()) {
        const ssize_t count = ::write(descriptor, content.data(), size_t(content.size()));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        content = content.sliced(count);
    }
    return true;
}

constexpr int pieceBytes = 1 << 18;

Error errorOf(int number)
{
    if (number == ENOSPC || number == EDQUOT)
        return { u"There is no room left on the disk."_s };
    return { QString::fromLocal8Bit(::strerror(number)) + u'.' };
}

void syncFolder(const QString& folder)
{
    const Descriptor descriptor(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.isOpen())
        ::fsync(descriptor.number());
}

/// Each created folder is synced to disk.
bool makePrivateFolder(const QString& folder)
{
    if (QFileInfo(folder).isDir())
        return true;
    const QString parent = QFileInfo(folder).absolutePath();
    if (!makePrivateFolder(parent) || (::mkdir(QFile::encodeName(folder).constData(), S_IRWXU) != 0 && errno != EEXIST))
        return false;
    syncFolder(parent);
    return true;
}

Result<qint64> copyAll(int from, int to, qint64 limit, const std::function<void(QByteArrayView)>& seen)
{
    QByteArray piece(pieceBytes, Qt::Uninitialized);
    qint64 size = 0;
    for (;;) {
        const ssize_t count = ::read(from, piece.data(), size_t(piece.size()));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return std::unexpected(errorOf(errno));
        if (count == 0)
            break;
        size += count;
        if (limit > 0 && size > limit)
            return failure(u"It is too large."_s);
        const QByteArrayView read(piece.constData(), count);
        if (!writeAll(to, read))
            return std::unexpected(errorOf(errno));
        seen(read);
    }
    return ::fsync(to) == 0 ? Result<qint64>(size) : std::unexpected(errorOf(errno));
}

/// The folder itself comes last, so that an interrupted run is completed by the next one.
void closeToOthers(const std::filesystem::path& folder)
{
    namespace fs = std::filesystem;
    constexpr auto others = fs::perms::group_all | fs::perms::others_all;
    std::error_code error;
    const auto close = [&](const fs::path& path) {
        fs::permissions(path, others, fs::perm_options::remove, error);
        if (error)
            log(u"PrivateFile: %1 stays open to others: %2"_s.arg(
                QString::fromStdString(path), QString::fromStdString(error.message())));
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

Result<qint64> copyPrivateFile(
    const QString& from, const QString& to, qint64 limit, const std::function<void(QByteArrayView piece)>& seen)
{
    // Non-blocking, since it may be a pipe.
    const Descriptor source(::open(QFile::encodeName(from).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!source.isOpen() || ::fstat(source.number(), &status) != 0)
        return std::unexpected(errorOf(errno));
    if (!S_ISREG(status.st_mode))
        return failure(u"It is not a regular file."_s);
    const QString folder = QFileInfo(to).absolutePath();
    const QByteArray target = QFile::encodeName(to);
    if (!makePrivateFolder(folder))
        return std::unexpected(errorOf(errno));
    const Descriptor copy(::open(target.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!copy.isOpen())
        return std::unexpected(errorOf(errno));
    const Result<qint64> size = copyAll(source.number(), copy.number(), limit, seen);
    if (size)
        syncFolder(folder);
    else
        ::unlink(target.constData());
    return size;
}

std::unique_ptr<QFile> openPlainFile(const QString& path)
{
    Descriptor descriptor(::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    auto file = std::make_unique<QFile>();
    if (!descriptor.isOpen() || ::fstat(descriptor.number(), &status) != 0 || !S_ISREG(status.st_mode)
        || !file->open(descriptor.release(), QIODevice::ReadOnly | QIODevice::Unbuffered, QFile::AutoCloseHandle))
        return nullptr;
    return file;
}

Result<std::unique_ptr<QFile>> makePrivateFile(const QString& path)
{
    if (!makePrivateFolder(QFileInfo(path).absolutePath()))
        return std::unexpected(errorOf(errno));
    Descriptor descriptor(::open(
        QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!descriptor.isOpen())
        return std::unexpected(errorOf(errno));
    auto file = std::make_unique<QFile>();
    if (!file->open(descriptor.release(), QIODevice::WriteOnly | QIODevice::Unbuffered, QFile::AutoCloseHandle))
        return failure(file->errorString());
    return file;
}

bool writePrivateFile(const QString& path, const QByteArray& content, Outlives outlives)
{
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
        return false;
    // mkostemp creates the file with mode 0600, so others can never read it.
    QByteArray temporary = QFile::encodeName(path) + ".XXXXXX";
    const int descriptor = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool waits = outlives == Outlives::PowerCut;
    const bool complete = writeAll(descriptor, content) && (!waits || ::fsync(descriptor) == 0);
    const bool closed = ::close(descriptor) == 0;
    if (complete && closed && ::rename(temporary.constData(), QFile::encodeName(path).constData()) == 0) {
        // The rename survives a power cut only once the folder is synced.
        if (waits)
            syncFolder(folder);
        return true;
    }
    ::unlink(temporary.constData());
    return false;
}

PrivateSaveFile::PrivateSaveFile(const QString& path, const QString& unfinished)
    : m_path(path)
    , m_unfinished(unfinished)
{
}

PrivateSaveFile::~PrivateSaveFile()
{
    if (!m_temporary.isEmpty())
        ::unlink(m_temporary.constData());
}

Result<void> PrivateSaveFile::open()
{
    m_temporary = QFile::encodeName(m_unfinished) + "/XXXXXX";
    const int descriptor = ::mkostemp(m_temporary.data(), O_CLOEXEC);
    if (descriptor < 0) {
        m_temporary.clear();
        return std::unexpected(errorOf(errno));
    }
    return m_file.open(descriptor, QIODevice::WriteOnly | QIODevice::Unbuffered, QFile::AutoCloseHandle)
        ? Result<void>()
        : failure(m_file.errorString());
}

Result<void> PrivateSaveFile::commit()
{
    if (::fsync(m_file.handle()) != 0 || ::rename(m_temporary.constData(), QFile::encodeName(m_path).constData()) != 0)
        return std::unexpected(errorOf(errno));
    m_temporary.clear();
    m_file.close();
    syncFolder(QFileInfo(m_path).absolutePath());
    return {};
}

}
