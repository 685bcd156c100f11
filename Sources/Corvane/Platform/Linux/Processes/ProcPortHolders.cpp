#include "Platform/Linux/Processes/ProcPortHolders.h"

#include "Foundation/Literals.h"
#include "Platform/Linux/Files/SystemFiles.h"
#include "Platform/Linux/Services.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <csignal>
#include <filesystem>
#include <unistd.h>

namespace corvane {

namespace {

/// The inodes of the sockets that listen on the port, from a table such as /proc/net/tcp.
QSet<QByteArray> listeningSockets(const QByteArray& table, quint16 port)
{
    constexpr auto listening = "0A";
    enum Column { LocalAddress = 1, State = 3, Inode = 9 };
    QSet<QByteArray> inodes;
    for (const QByteArray& line : table.split('\n')) {
        const QList<QByteArray> columns = line.simplified().split(' ');
        if (columns.size() <= Inode || columns[State] != listening)
            continue;
        const QByteArray& address = columns[LocalAddress];
        bool isNumber = false;
        const uint linePort = address.mid(address.lastIndexOf(':') + 1).toUInt(&isNumber, 16);
        if (isNumber && linePort == port)
            inodes.insert(columns[Inode]);
    }
    return inodes;
}

bool holdsOneOf(const QSet<QByteArray>& inodes, const QString& processFolder)
{
    std::error_code error;
    const std::filesystem::path folder(QFile::encodeName(processFolder + u"/fd"_s).toStdString());
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
        entry.increment(error)) {
        std::error_code vanished;
        const QByteArray target
            = QByteArray::fromStdString(std::filesystem::read_symlink(entry->path(), vanished).string());
        if (target.startsWith("socket:[") && inodes.contains(target.sliced(8).chopped(1)))
            return true;
    }
    return false;
}

/// The effective user of the process; nothing if it has exited.
std::optional<quint32> effectiveUser(const QString& processFolder)
{
    for (const QByteArray& line : systemFile(processFolder + u"/status"_s).split('\n')) {
        if (!line.startsWith("Uid:"))
            continue;
        bool isNumber = false;
        const quint32 user = line.simplified().split(' ').value(2).toUInt(&isNumber);
        return isNumber ? std::optional(user) : std::nullopt;
    }
    return std::nullopt;
}

}

ProcPortHolders::ProcPortHolders(const QString& procFolder)
    : m_procFolder(procFolder)
{
}

QList<PortHolder> ProcPortHolders::listeningOn(quint16 port)
{
    QSet<QByteArray> inodes = listeningSockets(systemFile(m_procFolder + u"/net/tcp"_s), port);
    inodes += listeningSockets(systemFile(m_procFolder + u"/net/tcp6"_s), port);
    QList<PortHolder> holders;
    if (inodes.isEmpty())
        return holders;
    for (const QString& name : QDir(m_procFolder).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        bool isProcess = false;
        const qint64 pid = name.toLongLong(&isProcess);
        const QString folder = m_procFolder + u'/' + name;
        if (!isProcess || !holdsOneOf(inodes, folder))
            continue;
        if (const std::optional<quint32> user = effectiveUser(folder))
            holders.append({ pid, *user });
    }
    return holders;
}

quint32 ProcPortHolders::ownUserId()
{
    return ::geteuid();
}

qint64 ProcPortHolders::ownProcessId()
{
    return ::getpid();
}

void ProcPortHolders::terminate(qint64 pid)
{
    // 0 and negative numbers address process groups.
    if (pid > 1)
        ::kill(static_cast<pid_t>(pid), SIGTERM);
}

std::unique_ptr<PortHolders> makePortHolders()
{
    return std::make_unique<ProcPortHolders>();
}

}
