#include "Platform/Linux/Processes/PosixToolRunner.h"

#include "Foundation/Arrival.h"
#include "Platform/Linux/Processes/SpawnedChild.h"
#include "Platform/Linux/Processes/Strays.h"
#include "Platform/Linux/Services.h"

#include <QProcessEnvironment>
#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <sys/eventfd.h>
#include <thread>

namespace corvane {

namespace {

constexpr qsizetype errorsLimit = 16 * 1024;

/// The end of a tool's output, where the error usually is, starting at a whole character.
class Errors {
public:
    void append(QByteArrayView bytes)
    {
        m_bytes.append(bytes);
        if (m_bytes.size() > 4 * errorsLimit)
            cut();
    }

    QByteArray take()
    {
        if (m_bytes.size() > errorsLimit)
            cut();
        return std::move(m_bytes);
    }

private:
    void cut()
    {
        m_bytes = m_bytes.last(errorsLimit);
        const auto continues = [](char byte) {
            return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
        };
        m_bytes.remove(0, std::ranges::find_if_not(m_bytes, continues) - m_bytes.cbegin());
    }

    QByteArray m_bytes;
};

/// Reads what is available; closes the descriptor at the end of the stream.
void drain(Descriptor& pipe, const std::function<void(QByteArrayView)>& use)
{
    std::array<char, 16 * 1024> buffer;
    // Limited, so that a writer that never stops does not block other events.
    for (int rounds = 0; rounds < 8; ++rounds) {
        const ssize_t count = ::read(pipe.number(), buffer.data(), buffer.size());
        if (count > 0)
            use(QByteArrayView(buffer.data(), count));
        else if (count == 0 || (errno != EAGAIN && errno != EINTR))
            return pipe.close();
        else
            return;
    }
}

/// The thread of a tool.
ToolEnd follow(SpawnedChild tool, const Descriptor& stop)
{
    Errors errors;
    const auto readBoth = [&] {
        drain(tool.output, [](QByteArrayView) { });
        drain(tool.errors, [&](QByteArrayView bytes) { errors.append(bytes); });
    };
    // The group's number cannot be reused before its leader is reaped.
    const auto leader = static_cast<pid_t>(tool.pid);
    const auto killAll = [&] {
        ::kill(-leader, SIGSTOP);
        killStrays(leader, { &tool.output, &tool.errors });
        ::kill(-leader, SIGKILL);
        signalChild(*tool.handle, SIGKILL); // it may have joined another group
    };
    enum Slot { Handle, Stop, Output, Errors };
    std::array<pollfd, 4> watched { { { tool.handle->number(), POLLIN, 0 }, { stop.number(), POLLIN, 0 },
        { tool.output.number(), POLLIN, 0 }, { tool.errors.number(), POLLIN, 0 } } };
    while ((watched[Handle].revents & POLLIN) == 0) {
        if (::poll(watched.data(), watched.size(), -1) < 0)
            continue;
        if (watched[Stop].revents != 0) {
            killAll();
            watched[Stop].fd = -1;
        }
        readBoth();
        watched[Output].fd = tool.output.number();
        watched[Errors].fd = tool.errors.number();
    }
    ::kill(-leader, SIGKILL);
    readBoth();
    if (tool.output.isOpen() || tool.errors.isOpen())
        killStrays(leader, { &tool.output, &tool.errors });
    return { std::abs(reapChild(*tool.handle)), errors.take() };
}

}

class PosixToolRunner::Run {
public:
    Run(SpawnedChild tool, std::function<void(ToolEnd)> done)
        : m_thread([this, tool = std::move(tool), done = std::move(done)]() mutable {
            done(follow(std::move(tool), m_stop));
        })
    {
    }
    ~Run()
    {
        stop();
        m_thread.join();
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void stop() const { ::eventfd_write(m_stop.number(), 1); }

private:
    const Descriptor m_stop { ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK) };
    std::thread m_thread;
};

PosixToolRunner::PosixToolRunner() = default;

PosixToolRunner::~PosixToolRunner()
{
    for (const auto& entry : std::as_const(m_running))
        entry.run->stop();
    auto running = std::exchange(m_running, {});
    for (Entry& entry : running) {
        entry.run.reset();
        entry.end.arrive(cancelled());
    }
}

QCoro::Task<Result<ToolEnd>> PosixToolRunner::run(
    QString executable, QStringList arguments, QByteArray input, CancelHandle cancel)
{
    if (cancel.isCancelled())
        co_return cancelled();
    Result<SpawnedChild> tool
        = spawnTool({ executable, arguments, {}, QProcessEnvironment::systemEnvironment() }, input);
    if (!tool)
        co_return std::unexpected(tool.error());

    const quint64 id = m_nextId++;
    const Arrival<Result<ToolEnd>> arrival;
    const auto bringHome = [this, id](const ToolEnd& end) {
        QMetaObject::invokeMethod(&m_home, [this, id, end] { finish(id, end); }, Qt::QueuedConnection);
    };
    m_running.insert(id, { std::make_shared<Run>(std::move(*tool), bringHome), arrival });
    const auto watch = cancel.onCancel([weak = std::weak_ptr(m_running[id].run)] {
        if (const auto run = weak.lock())
            run->stop();
    });
    const Result<ToolEnd> end = co_await arrival;
    if (cancel.isCancelled())
        co_return cancelled();
    co_return end;
}

void PosixToolRunner::finish(quint64 id, const ToolEnd& end)
{
    Entry entry = m_running.take(id);
    entry.run.reset();
    entry.end.arrive(end);
}

std::unique_ptr<ToolRunner> makeToolRunner()
{
    return std::make_unique<PosixToolRunner>();
}

}
