#pragma once

#include "Platform/MachineResources.h"

namespace corvane {

/// A process in the list.
struct ResourceProcessRow {
    qint64 pid = 0;
    quint64 startTime = 0;
    qint64 residentBytes = 0;
    QString command;
    QString arguments;
    bool isProtected = false; ///< cannot be ended from here

    QString name() const { return command; }
    QString memoryLabel() const;
    QString role() const; ///< such as "Claude"; "app" for unknown ones

    bool operator==(const ResourceProcessRow&) const = default;
};

/// Memory and relevant processes at one moment.
struct ResourceSnapshot {
    quint64 physicalMemoryBytes = 0;
    quint64 compressorPages = 0;
    quint64 compressorBytes = 0;
    quint64 pageSize = 0;
    std::optional<double> pressure; ///< see `ResourceReading`
    QList<ResourceProcessRow> topProcesses; ///< the largest first
    int localClaudeCount = 0;
    int codexCount = 0;
    int nodeCount = 0;
    qint64 updatedAtMs = 0; ///< 0: not read yet

    bool operator==(const ResourceSnapshot&) const = default;
};

/// Evaluates a reading. Keeps the largest processes, and all agents, engines and browsers of any size.
ResourceSnapshot snapshotOf(const ResourceReading& reading, qint64 ownPid);

/// Whether memory is too low for a build.
bool isShort(const ResourceSnapshot& snapshot);

QString formatBytes(quint64 bytes); ///< "1.5 GB"

}
