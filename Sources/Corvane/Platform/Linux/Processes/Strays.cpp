#include "Platform/Linux/Processes/Strays.h"

#include "Foundation/Literals.h"
#include "Platform/Linux/Files/SystemFiles.h"

#include <QDir>
#include <algorithm>
#include <csignal>
#include <optional>
#include <set>
#include <sys/stat.h>

// glibc 2.36 lacks the C linkage of these declarations.
extern "C" {
#include <sys/pidfd.h>
}

namespace corvane {

namespace {

using Identity = std::pair<dev_t, ino_t>;

Identity identity(const struct stat& file)
{
    return { file.st_dev, file.st_ino };
}

std::set<Identity> identities(const std::array<const Descriptor*, 2>& pipes)
{
    std::set<Identity> result;
    for (const Descriptor* pipe : pipes) {
        struct stat file {};
        if (pipe->isOpen() && ::fstat(pipe->number(), &file) == 0)
            result.insert(identity(file));
    }
    return result;
}

QString folderOf(pid_t pid)
{
    return u"/proc/%1"_s.arg(pid);
}

std::set<pid_t> processes()
{
    std::set<pid_t> result;
    for (const QString& name : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
        bool isProcess = false;
        const pid_t pid = name.toInt(&isProcess);
        if (isProcess)
            result.insert(pid);
    }
    return result;
}

/// "17 (a name (with) brackets) S 4 ...": the number behind the state.
pid_t parentOf(pid_t pid)
{
    const QByteArray status = systemFile(folderOf(pid) + u"/stat"_s);
    return status.sliced(status.lastIndexOf(')') + 1).simplified().split(' ').value(1).toInt();
}

/// Both ends of a pipe are one file; the permissions of a descriptor's link tell them apart.
bool writesTo(pid_t pid, const std::set<Identity>& pipes)
{
    const QString folder = folderOf(pid) + u"/fd"_s;
    const QStringList descriptors = QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    return std::ranges::any_of(descriptors, [&](const QString& descriptor) {
        const QByteArray path = QFile::encodeName(folder + u'/' + descriptor);
        struct stat link {};
        struct stat file {};
        return ::lstat(path.constData(), &link) == 0 && (link.st_mode & S_IWUSR) != 0
            && ::stat(path.constData(), &file) == 0 && pipes.contains(identity(file));
    });
}

}

void killStrays(pid_t root, const std::array<const Descriptor*, 2>& pipes)
{
    const std::set<Identity> ends = identities(pipes);
    std::set<pid_t> strays { root };
    // Each process is stopped as soon as it is found, so that it cannot start others.
    for (bool isComplete = false; !isComplete;) {
        isComplete = true;
        for (const pid_t pid : processes()) {
            if (pid == ::getpid() || strays.contains(pid))
                continue;
            if (!strays.contains(parentOf(pid)) && (ends.empty() || !writesTo(pid, ends)))
                continue;
            ::kill(pid, SIGSTOP);
            strays.insert(pid);
            isComplete = false;
        }
    }
    strays.erase(root);
    for (const pid_t pid : strays)
        ::kill(pid, SIGKILL);
}

int signalMarked(const QByteArray& variable, int signal)
{
    int count = 0;
    for (const pid_t pid : processes()) {
        // Opened before the environment is read, so that the signal reaches the same process.
        const Descriptor handle(pid == ::getpid() ? -1 : ::pidfd_open(pid, 0));
        if (!handle.isOpen())
            continue;
        if (!systemFile(folderOf(pid) + u"/environ"_s).split('\0').contains(variable))
            continue;
        ::pidfd_send_signal(handle.number(), signal, nullptr, 0);
        ++count;
    }
    return count;
}

}
