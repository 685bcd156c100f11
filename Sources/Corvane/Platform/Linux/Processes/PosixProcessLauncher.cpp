#include "Platform/Linux/Processes/PosixProcessLauncher.h"

#include "Platform/Linux/Processes/ChildInput.h"
#include "Platform/Linux/Processes/SpawnedChild.h"
#include "Platform/Linux/Processes/Strays.h"
#include "Platform/Linux/Services.h"

#include <QDeadlineTimer>
#include <QFile>
#include <csignal>
#include <fcntl.h>
#include <poll.h>

namespace corvane {

namespace {

constexpr Milliseconds terminationLimit(5000);
constexpr Milliseconds killLimit(1000);

/// A pipe whose reader is gone must fail the write, not end this process; and an ended child must wait to be reaped.
void settleSignals()
{
    ::signal(SIGPIPE, SIG_IGN);
    ::signal(SIGCHLD, SIG_DFL);
}

/// If this process was started without a standard stream, no pipe must get its number.
void fillStandardStreams()
{
    for (;;) {
        Descriptor next(::open("/dev/null", O_RDWR | O_CLOEXEC));
        if (!next.isOpen() || next.number() > STDERR_FILENO)
            return;
        static_cast<void>(next.release());
    }
}

bool hasEnded(const Descriptor& handle, const QDeadlineTimer& deadline)
{
    pollfd request { handle.number(), POLLIN, 0 };
    int count = 0;
    do {
        count = ::poll(&request, 1, static_cast<int>(deadline.remainingTime()));
    } while (count < 0 && errno == EINTR);
    return count == 1;
}

}

class LinuxChild final : public ChildProcess {
public:
    LinuxChild(Scheduler& scheduler, qint64 pid, std::shared_ptr<const Descriptor> handle, Descriptor input)
        : m_scheduler(scheduler)
        , m_pid(pid)
        , m_handle(std::move(handle))
        , m_input(std::move(input))
    {
    }

    qint64 pid() const override { return m_pid; }
    bool isRunning() const override { return m_isRunning; }
    Result<void> write(const QByteArray& bytes) override { return m_input.write(bytes); }
    bool isInputOpen() const override { return m_input.isOpen(); }
    bool hasRead(const QByteArray& bytes) override { return m_input.hasRead(bytes); }
    bool withdraw(const QByteArray& bytes) override { return m_input.withdraw(bytes); }

    void terminate() override
    {
        if (!m_isRunning || m_killTimer)
            return;
        m_input.close();
        signalChild(*m_handle, SIGTERM);
        m_killDeadline.setRemainingTime(terminationLimit);
        m_killTimer = m_scheduler.after(terminationLimit, [this] { signalChild(*m_handle, SIGKILL); });
    }

    const Descriptor& handle() const { return *m_handle; }
    const QDeadlineTimer& killDeadline() const { return m_killDeadline; } ///< after `terminate`

    /// The process has exited, or the launcher is destroyed; remaining references do nothing.
    void markEnded()
    {
        m_isRunning = false;
        m_killTimer.reset();
        m_input.markEnded();
    }

private:
    Scheduler& m_scheduler;
    const qint64 m_pid;
    const std::shared_ptr<const Descriptor> m_handle;
    ChildInput m_input;
    std::unique_ptr<Timer> m_killTimer;
    QDeadlineTimer m_killDeadline;
    bool m_isRunning = true;
};

PosixProcessLauncher::PosixProcessLauncher(Scheduler& scheduler)
    : m_scheduler(scheduler)
{
    settleSignals();
    fillStandardStreams();
    m_reader = std::make_unique<ChildReader>(ChildReader::Receiver {
        [this](quint64 id, OutputChunk chunk) { deliver(id, std::move(chunk)); },
        [this](quint64 id, int code) { finish(id, code); },
    });
}

PosixProcessLauncher::~PosixProcessLauncher()
{
    // The read ends are closed first: a child blocked on a full pipe could not react to the request.
    m_reader.reset();
    for (const Entry& entry : std::as_const(m_running))
        entry.child->terminate();
    for (const Entry& entry : std::as_const(m_running)) {
        if (!hasEnded(entry.child->handle(), entry.child->killDeadline()))
            signalChild(entry.child->handle(), SIGKILL);
    }
    const QDeadlineTimer deadline(killLimit);
    for (const Entry& entry : std::as_const(m_running)) {
        if (hasEnded(entry.child->handle(), deadline))
            reapChild(entry.child->handle());
        entry.child->markEnded();
    }
}

Result<std::shared_ptr<ChildProcess>> PosixProcessLauncher::start(const ProcessSpec& spec, Handlers handlers)
{
    Result<SpawnedChild> spawned = spawnChild(spec);
    if (!spawned)
        return std::unexpected(spawned.error());
    const auto child
        = std::make_shared<LinuxChild>(m_scheduler, spawned->pid, spawned->handle, std::move(spawned->input));
    const quint64 id = m_nextId++;
    m_running.insert(id, { child, std::move(handlers) });
    m_reader->add(id, std::move(spawned->output), std::move(spawned->handle), spec.lineEnd);
    return child;
}

int PosixProcessLauncher::marked(const QString& variable, Marked action)
{
    const int signal = action == Marked::Count ? 0 : action == Marked::Ask ? SIGTERM : SIGKILL;
    return signalMarked(QFile::encodeName(variable), signal);
}

void PosixProcessLauncher::deliver(quint64 id, OutputChunk chunk)
{
    // A copy: the handler may start another child, or destroy the launcher.
    const auto output = m_running.value(id).handlers.output;
    if (output)
        output(std::move(chunk));
}

void PosixProcessLauncher::finish(quint64 id, int code)
{
    const Entry entry = m_running.take(id);
    entry.child->markEnded();
    if (entry.handlers.exited)
        entry.handlers.exited(code);
}

std::unique_ptr<ProcessLauncher> makeProcessLauncher(Scheduler& scheduler)
{
    return std::make_unique<PosixProcessLauncher>(scheduler);
}

}
