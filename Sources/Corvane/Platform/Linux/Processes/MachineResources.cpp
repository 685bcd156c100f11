#include "Platform/MachineResources.h"

#include "Foundation/Literals.h"
#include "Platform/Linux/Files/Descriptor.h"
#include "Platform/Linux/Files/SystemFiles.h"

#include <QDir>
#include <QHash>
#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <future>
#include <span>
#include <sys/stat.h>
#include <vector>

// glibc 2.36 lacks the C linkage of these declarations.
extern "C" {
#include <sys/pidfd.h>
}

namespace corvane {

namespace {

constexpr size_t longestStat = 2048;
constexpr size_t longestCommandLine = 4096; // enough for a row, and for the program's name

constexpr quint64 kernelThread = 0x00200000; // PF_KTHREAD

/// Reads the start of a file below the folder at once.
template <size_t size> QByteArrayView startOf(int folder, const QByteArray& path, std::array<char, size>& buffer)
{
    const Descriptor file(::openat(folder, path.constData(), O_RDONLY | O_CLOEXEC));
    const ssize_t count = file.isOpen() ? ::read(file.number(), buffer.data(), size) : -1;
    return { buffer.data(), std::max<ssize_t>(count, 0) };
}

bool belongsTo(uid_t user, int folder, const QByteArray& path)
{
    struct stat status {};
    return ::fstatat(folder, path.constData(), &status, 0) == 0 && status.st_uid == user;
}

/// "17 (a name (with) brackets) S 4 ...": the name, and the fields after it, starting with the third. Fields after the
/// resident pages are not used.
struct Stat {
    QByteArrayView name;
    std::array<QByteArrayView, 22> fields;

    qint64 number(int field) const { return fields[size_t(field) - 3].toLongLong(); }
    quint64 startTime() const { return fields[19].toULongLong(); }
};

std::optional<Stat> statIn(QByteArrayView text)
{
    const qsizetype open = text.indexOf('(');
    const qsizetype close = text.lastIndexOf(')');
    if (open < 0 || close < open)
        return std::nullopt;
    Stat stat { text.sliced(open + 1, close - open - 1), {} };
    qsizetype from = close + 2;
    for (QByteArrayView& field : stat.fields) {
        const qsizetype space = text.indexOf(' ', from);
        if (space < 0)
            return std::nullopt;
        field = text.sliced(from, space - from);
        from = space + 1;
    }
    return stat;
}

/// The whole name where the kernel cut it at 15 bytes.
QString programName(QByteArrayView kernelName, const QString& arguments)
{
    const QString name = QString::fromUtf8(kernelName);
    const QString first = arguments.section(u' ', 0, 0).section(u'/', -1);
    return first.startsWith(name) ? first : name;
}

QString oneLine(QByteArrayView commandLine)
{
    QString line = QString::fromUtf8(commandLine);
    std::ranges::replace_if(line, [](QChar unit) { return unit.unicode() < 0x20; }, u' ');
    return line.trimmed();
}

/// This program's own process, to compare others with.
struct Own {
    uid_t user = ::getuid();
    qint64 terminal = 0;
    QList<qint64> leaders;
};

/// The desktop's session is led by another process than the one of a terminal that the program was started in.
Own ownPlace(int folder, const QString& root)
{
    Own own;
    std::array<char, longestStat> buffer {};
    if (const auto self = statIn(startOf(folder, "self/stat", buffer))) {
        own.terminal = self->number(7);
        own.leaders.append(self->number(6));
    }
    const QString session = qEnvironmentVariable("XDG_SESSION_ID");
    for (const QByteArray& line : systemFile(root + u"/run/systemd/sessions/"_s + session).split('\n')) {
        if (line.startsWith("LEADER="))
            own.leaders.append(line.sliced(7).toLongLong());
    }
    return own;
}

using KnownProcesses = QHash<qint64, const RunningProcess*>;

std::optional<RunningProcess> processIn(
    int folder, const QByteArray& place, const Own& own, quint64 pageSize, const KnownProcesses& before)
{
    std::array<char, longestStat> statText;
    std::array<char, longestCommandLine> commandLine;
    const auto stat = statIn(startOf(folder, place + "/stat", statText));
    if (!stat || (quint64(stat->number(9)) & kernelThread) != 0)
        return std::nullopt; // or it has exited
    const RunningProcess* const known = before.value(place.toLongLong());
    const bool same = known && known->startTime == stat->startTime() && known->kernelName == stat->name
        && !known->arguments.isEmpty();
    const QString arguments = same ? known->arguments : oneLine(startOf(folder, place + "/cmdline", commandLine));
    const qint64 pages = stat->number(24);
    if (pages == 0 && arguments.isEmpty())
        return std::nullopt; // exited, but not reaped yet
    RunningProcess process;
    process.pid = place.toLongLong();
    process.startTime = stat->startTime();
    process.parentPid = stat->number(4);
    process.residentBytes = pages * qint64(pageSize);
    process.command = same ? known->command : programName(stat->name, arguments);
    process.kernelName = same ? known->kernelName : stat->name.toByteArray();
    process.arguments = arguments;
    process.isOfThisUser = same ? known->isOfThisUser : belongsTo(own.user, folder, place);
    process.hasOwnTerminal = stat->number(7) != 0 && stat->number(7) != own.terminal;
    process.leadsSession = own.leaders.contains(process.pid);
    return process;
}

quint64 kilobytes(const QByteArray& meminfo, const char* key)
{
    const qsizetype at = meminfo.indexOf(QByteArray("\n") + key + ':');
    return at < 0 ? 0
                  : meminfo.sliced(at + qsizetype(std::strlen(key)) + 2).simplified().split(' ').first().toULongLong();
}

/// The content of zswap and zram before compression.
quint64 compressedBytes(const QString& root)
{
    quint64 bytes = kilobytes(systemFile(root + u"/proc/meminfo"_s), "Zswapped") * 1024;
    const QString disks = root + u"/sys/block/"_s;
    for (const QString& disk : QDir(disks).entryList({ u"zram*"_s }, QDir::Dirs | QDir::System))
        bytes += systemFile(disks + disk + u"/mm_stat"_s).simplified().split(' ').first().toULongLong();
    return bytes;
}

std::optional<double> pressureIn(const QByteArray& text)
{
    const qsizetype at = text.indexOf("some avg10=");
    if (at < 0)
        return std::nullopt;
    bool isNumber = false;
    const double percent = text.sliced(at + 11).split(' ').first().toDouble(&isNumber);
    return isNumber ? std::optional(percent) : std::nullopt;
}

}

Result<ResourceReading> readResources(const QString& root, const QList<RunningProcess>& before)
{
    const QByteArray path = QFile::encodeName(root) + "/proc";
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(path.constData()), &::closedir);
    if (!folder)
        return failure(u"The list of processes can't be read: %1."_s.arg(QString::fromLocal8Bit(::strerror(errno))));
    ResourceReading reading;
    reading.pageSize = quint64(::sysconf(_SC_PAGESIZE));
    reading.compressedPages = compressedBytes(root) / reading.pageSize;
    reading.pressure = pressureIn(systemFile(root + u"/proc/pressure/memory"_s));
    const int descriptor = ::dirfd(folder.get());
    const Own own = ownPlace(descriptor, root);
    KnownProcesses known;
    for (const RunningProcess& process : before)
        known.insert(process.pid, &process);
    std::vector<QByteArray> places;
    while (const dirent* entry = ::readdir(folder.get())) {
        if (*entry->d_name >= '1' && *entry->d_name <= '9')
            places.emplace_back(entry->d_name);
    }
    const auto processesIn = [&](std::span<const QByteArray> part) {
        QList<RunningProcess> found;
        for (const QByteArray& place : part) {
            if (const auto process = processIn(descriptor, place, own, reading.pageSize, known))
                found.append(*process);
        }
        return found;
    };
    // System calls dominate the cost, so two threads share them.
    const std::span<const QByteArray> all(places);
    auto rest = std::async(std::launch::async, processesIn, all.subspan(all.size() / 2));
    reading.processes = processesIn(all.first(all.size() / 2));
    reading.processes += rest.get();
    return reading;
}

bool askToEnd(qint64 pid, quint64 startTime)
{
    if (pid <= 0 || pid > std::numeric_limits<pid_t>::max())
        return false;
    // Opened before the start time is compared, so that the signal can only reach that process.
    const Descriptor handle(::pidfd_open(pid_t(pid), 0));
    const QByteArray text = systemFile(u"/proc/%1/stat"_s.arg(pid));
    const auto stat = statIn(text);
    return handle.isOpen() && stat && stat->startTime() == startTime
        && ::pidfd_send_signal(handle.number(), SIGTERM, nullptr, 0) == 0;
}

}
