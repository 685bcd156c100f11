#pragma once

#include "Foundation/Arrival.h"
#include "Platform/ToolRunner.h"

#include <QHash>
#include <QObject>
#include <memory>

namespace corvane {

/// One thread per tool, which reads both of its pipes and waits for its exit.
class PosixToolRunner final : public ToolRunner {
public:
    PosixToolRunner();
    ~PosixToolRunner() override;

    QCoro::Task<Result<ToolEnd>> run(
        QString executable, QStringList arguments, QByteArray input, CancelHandle cancel) override;

private:
    class Run;
    struct Entry {
        std::shared_ptr<Run> run;
        Arrival<Result<ToolEnd>> end;
    };

    void finish(quint64 id, const ToolEnd& end);

    QHash<quint64, Entry> m_running;
    quint64 m_nextId = 0;
    QObject m_home; ///< destroyed first: pending results of the threads are dropped
};

}
