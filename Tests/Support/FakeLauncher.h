#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/ProcessLauncher.h"

#include <QJsonObject>
#include <QList>
#include <deque>

namespace corvane {

/// A fake child process: it prints and exits when the test tells it to.
class FakeChild final : public ChildProcess {
public:
    FakeChild(const ProcessSpec& childSpec, ProcessLauncher::Handlers handlers, qint64 pid)
        : spec(childSpec)
        , m_handlers(std::move(handlers))
        , m_pid(pid)
    {
    }

    qint64 pid() const override { return m_pid; }
    bool isRunning() const override { return m_running; }
    Result<void> write(const QByteArray& bytes) override;
    bool isInputOpen() const override
    {
        return m_running && !terminated && writeFailure != u"standard input is closed";
    }
    bool hasRead(const QByteArray&) override { return !isDeaf && !isClogged; }
    bool withdraw(const QByteArray& bytes) override;
    void terminate() override { terminated = true; }

    void print(const QString& lines); ///< one chunk of complete lines
    void printEvent(const QJsonObject& event); ///< one line, with the sentinel prefix
    void exit(int code = 0);
    QList<QJsonObject> commands() const; ///< every line written to it, parsed
    bool chunkIsHeld() const { return !m_lastHold.expired(); } ///< whether the receiver still holds the last chunk

    const ProcessSpec spec;
    QByteArray written;
    QString writeFailure; ///< if set, every write fails with it
    bool isDeaf = false; ///< never reads its standard input
    bool isClogged = false; ///< deaf, and what is written still waits before its standard input
    bool terminated = false;

private:
    ProcessLauncher::Handlers m_handlers;
    qint64 m_pid;
    bool m_running = true;
    std::weak_ptr<void> m_lastHold;
};

/// Starts no process itself: each launch takes the next entry of a script. Too many or too few launches fail the test.
class FakeLauncher final : public ProcessLauncher {
public:
    struct Launch {
        enum class Kind { Stays, Crashes, Fails, Real };
        Kind kind = Kind::Stays;
        QString reason = {}; ///< for `Fails`
    };
    static Launch stays() { return {}; }
    static Launch crashes() { return { Launch::Kind::Crashes }; } ///< in the next event loop iteration
    static Launch fails(const QString& reason) { return { Launch::Kind::Fails, reason }; }

    static Launch real() { return { Launch::Kind::Real }; } ///< started by `realLauncher`

    explicit FakeLauncher(Scheduler& scheduler)
        : m_scheduler(scheduler)
    {
    }
    ~FakeLauncher() override;

    void expect(const Launch& launch, int times = 1) { m_script.insert(m_script.end(), size_t(times), launch); }
    Result<std::shared_ptr<ChildProcess>> start(const ProcessSpec& spec, Handlers handlers) override;
    int marked(const QString&, Marked action) override
    {
        markedAs.append(action);
        return remains;
    }

    FakeChild& last() const { return *children.last(); }
    void exitTerminated(); ///< exits every child that was terminated

    ProcessLauncher* realLauncher = nullptr;
    int remains = 0; ///< processes that an earlier run of the program left
    QList<Marked> markedAs; ///< what was asked about them
    QList<std::shared_ptr<FakeChild>> children; ///< one for each fake launch that did not fail, in order

private:
    Scheduler& m_scheduler;
    std::deque<Launch> m_script;
    std::deque<std::unique_ptr<Timer>> m_crashes;
};

}
