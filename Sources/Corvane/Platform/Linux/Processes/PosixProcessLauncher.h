#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/Linux/Processes/ChildReader.h"
#include "Platform/ProcessLauncher.h"

#include <QHash>

namespace corvane {

class LinuxChild;

/// Starts children with posix_spawn, whose cost does not grow with this process.
class PosixProcessLauncher final : public ProcessLauncher {
public:
    explicit PosixProcessLauncher(Scheduler& scheduler);
    ~PosixProcessLauncher() override;

    Result<std::shared_ptr<ChildProcess>> start(const ProcessSpec& spec, Handlers handlers) override;
    int marked(const QString& variable, Marked action) override;

private:
    struct Entry {
        std::shared_ptr<LinuxChild> child;
        Handlers handlers;
    };

    void deliver(quint64 id, OutputChunk chunk);
    void finish(quint64 id, int code);

    Scheduler& m_scheduler;
    QHash<quint64, Entry> m_running;
    quint64 m_nextId = 0;
    std::unique_ptr<ChildReader> m_reader;
};

}
