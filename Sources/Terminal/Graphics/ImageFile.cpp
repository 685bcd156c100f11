#include "Terminal/Graphics/ImageFile.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane::terminal {

namespace {

struct OpenFile {
    int number;
    ~OpenFile()
    {
        if (number >= 0)
            close(number);
    }
};

std::string realPath(const std::string& path)
{
    const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
    return real ? real.get() : "";
}

bool liesInTemporaryFolder(const std::string& path)
{
    std::vector<std::string> folders { "/tmp", "/dev/shm" };
    if (const char* own = std::getenv("TMPDIR"); own && *own == '/')
        folders.emplace_back(own);
    return std::ranges::any_of(folders, [&](const std::string& folder) {
        const std::string real = realPath(folder);
        return !real.empty() && path.starts_with(real + '/');
    });
}

/// Pseudo file systems contain more than plain files.
bool isForbidden(const std::string& path)
{
    return path.starts_with("/proc/") || path.starts_with("/sys/")
        || (path.starts_with("/dev/") && !path.starts_with("/dev/shm/"));
}

std::expected<std::vector<uint8_t>, std::string> readFrom(int file, size_t offset, size_t size, size_t most)
{
    struct stat status;
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode))
        return std::unexpected("EBADF:not a regular file");
    const auto total = size_t(std::max<off_t>(0, status.st_size));
    if (offset > total)
        return std::unexpected("EINVAL:the offset lies past the end");
    const size_t count = size ? std::min(size, total - offset) : total - offset;
    if (count > most)
        return std::unexpected("EFBIG:too large");
    std::vector<uint8_t> bytes(count);
    for (size_t done = 0; done < count;) {
        const ssize_t part = pread(file, bytes.data() + done, count - done, off_t(offset + done));
        if (part < 0 && errno == EINTR)
            continue;
        if (part <= 0)
            return std::unexpected("EIO:cannot be read");
        done += size_t(part);
    }
    return bytes;
}

}

std::expected<std::vector<uint8_t>, std::string> readImageSource(
    ImageSource source, std::string_view name, size_t offset, size_t size, size_t most)
{
    const std::string path(name);
    if (path.empty() || path.size() >= PATH_MAX || path.find('\0') != std::string::npos)
        return std::unexpected("EINVAL:bad name");
    if (source == ImageSource::SharedMemory) {
        const OpenFile memory { shm_open(path.c_str(), O_RDONLY | O_CLOEXEC, 0) };
        if (memory.number < 0)
            return std::unexpected("EBADF:no such shared memory");
        auto bytes = readFrom(memory.number, offset, size, most);
        shm_unlink(path.c_str());
        return bytes;
    }
    const std::string real = realPath(path);
    if (real.empty())
        return std::unexpected("ENOENT:no such file");
    if (isForbidden(real))
        return std::unexpected("EPERM:not a file for images");
    const bool temporary = source == ImageSource::TemporaryFile;
    // A link out of a temporary folder may have been created by another user.
    if ((temporary || liesInTemporaryFolder(path)) && !liesInTemporaryFolder(real))
        return std::unexpected("EPERM:leads out of the temporary folder");
    const OpenFile file { open(real.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY) };
    if (file.number < 0)
        return std::unexpected("ENOENT:cannot be opened");
    auto bytes = readFrom(file.number, offset, size, most);
    struct stat status;
    if (temporary && real.find("tty-graphics-protocol") != std::string::npos && fstat(file.number, &status) == 0
        && S_ISREG(status.st_mode) && status.st_uid == geteuid())
        unlink(real.c_str());
    return bytes;
}

}
