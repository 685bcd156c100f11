#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/ProcessLauncher.h"

#include <QJsonObject>
#include <QList>
#include <deque>

namespace corvane {

/// A child that a test plays: it prints and ends when it is told to.
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
    bool hasRead(const QByteArray&) override { return !isDeaf; }
    bool withdraw(const QByteArray&) override { return false; }
    void terminate() override { terminated = true; }

    void print(const QString& lines); ///< one chunk, of whole lines
    void printEvent(const QJsonObject& event); ///< one line with the sentinel
    void exit(int code = 0);
    QList<QJsonObject> commands() const; ///< every line that was written to it
    bool chunkIsHeld() const { return !m_lastHold.expired(); } ///< of the last chunk

    const ProcessSpec spec;
    QByteArray written;
    QString writeFailure; ///< where set, every write fails with it
    bool isDeaf = false; ///< reads nothing of what was written
    bool terminated = false;

private:
    ProcessLauncher::Handlers m_handlers;
    qint64 m_pid;
    bool m_running = true;
    std::weak_ptr<void> m_lastHold;
};

/// Starts nothing: each launch follows the next entry of a script. One launch more than the script tells, or one
/// less, fails the test.
class FakeLauncher final : public ProcessLauncher {
public:
    struct Launch {
        enum class Kind { Stays, Crashes, Fails, Real };
        Kind kind = Kind::Stays;
        QString reason = {}; ///< why it fails
    };
    static Launch stays() { return {}; }
    static Launch crashes() { return { Launch::Kind::Crashes }; } ///< at the next turn of the loop
    static Launch fails(const QString& reason) { return { Launch::Kind::Fails, reason }; }

    static Launch real() { return { Launch::Kind::Real }; } ///< by `realLauncher`

    explicit FakeLauncher(Scheduler& scheduler)
        : m_scheduler(scheduler)
    {
    }
    ~FakeLauncher() override;

    void expect(const Launch& launch, int times = 1) { m_script.insert(m_script.end(), size_t(times), launch); }
    Result<std::shared_ptr<ChildProcess>> start(const ProcessSpec& spec, Handlers handlers) override;
    int marked(const QString&, Marked) override { return 0; }

    FakeChild& last() const { return *children.last(); }
    void exitTerminated(); ///< every child that was told to end does

    ProcessLauncher* realLauncher = nullptr;
    QList<std::shared_ptr<FakeChild>> children; ///< every played launch that did not fail, in order

private:
    Scheduler& m_scheduler;
    std::deque<Launch> m_script;
    std::deque<std::unique_ptr<Timer>> m_crashes;
};

}
