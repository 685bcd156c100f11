#pragma once

#include "Foundation/Result.h"

#include <QList>
#include <QString>
#include <optional>

namespace corvane {

/// A process of this machine as it was when it was read.
struct RunningProcess {
    qint64 pid = 0;
    quint64 startTime = 0; ///< in the kernel's ticks; it tells two processes with the same number apart
    qint64 parentPid = 0;
    qint64 residentBytes = 0;
    QString command; ///< the name of its program
    QString arguments; ///< the whole command line, without line breaks
    bool isOfThisUser = false;
    bool hasOwnTerminal = false; ///< another than this program's, or one where this program has none
    bool leadsSession = false; ///< the one that this program runs in, or the desktop's
    QByteArray kernelName {}; ///< as the kernel has it, cut at 15 bytes
};

/// Memory and processes at one moment.
struct ResourceReading {
    QList<RunningProcess> processes; ///< without the kernel's own threads
    quint64 pageSize = 0; ///< bytes
    quint64 compressedPages = 0; ///< of memory that the kernel keeps compressed
    /// For how much of the last ten seconds some program waited for memory, in percent; nothing where the kernel keeps
    /// no such figure.
    std::optional<double> pressure;
};

/// Waits for the machine; runs on any thread. `root` stands before every path of the system; empty: this machine. Of a
/// process that was there `before` under the same name, the command line is not read again.
Result<ResourceReading> readResources(const QString& root = {}, const QList<RunningProcess>& before = {});

/// Asks the process to end. False where it has ended already, also where another one has its number now, or where this
/// program may not ask.
bool askToEnd(qint64 pid, quint64 startTime);

}
