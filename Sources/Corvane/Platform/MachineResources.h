#pragma once

#include "Foundation/Result.h"

#include <QList>
#include <QString>
#include <optional>

namespace corvane {

/// A snapshot of a process of this machine.
struct RunningProcess {
    qint64 pid = 0;
    quint64 startTime = 0; ///< in kernel ticks; tells two processes with the same pid apart
    qint64 parentPid = 0;
    qint64 residentBytes = 0;
    QString command; ///< the name of its program
    QString arguments; ///< the whole command line, without line breaks
    bool isOfThisUser = false;
    bool hasOwnTerminal = false; ///< a terminal other than this program's
    bool leadsSession = false; ///< the leader of this program's session, or the desktop's
    QByteArray kernelName {}; ///< as the kernel stores it, truncated to 15 bytes
};

/// Memory and processes at one moment.
struct ResourceReading {
    QList<RunningProcess> processes; ///< without the kernel's own threads
    quint64 pageSize = 0; ///< bytes
    quint64 compressedPages = 0; ///< pages that the kernel has compressed
    /// The percentage of the last ten seconds in which some program waited for memory; nothing if the kernel does not
    /// report it.
    std::optional<double> pressure;
};

/// Blocks; may run on any thread. `root` is prepended to every system path; empty: this machine. The command line of a
/// process in `before` with the same name is not read again.
Result<ResourceReading> readResources(const QString& root = {}, const QList<RunningProcess>& before = {});

/// Asks the process to exit. False if it has exited, also if its pid was reused, or if this program has no permission.
bool askToEnd(qint64 pid, quint64 startTime);

}
