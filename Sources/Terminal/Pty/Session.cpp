#include "Terminal/Pty/Session.h"

#include <cerrno>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace corvane::terminal {

namespace {

constexpr size_t little = 2048; ///< output of up to this size is parsed as soon as it is read

}

Session::Session(Size size, const Config& config, SessionTaps taps)
    : m_terminal(size, config)
    , m_taps(std::move(taps))
    , m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
}

Session::~Session()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    hangUp();
    wakeReader();
    m_drained.notify_all();
    if (m_reader.joinable())
        m_reader.join();
    m_arrived.notify_all();
    if (m_parser.joinable())
        m_parser.join();
}

std::expected<void, std::string> Session::start(const Command& command)
{
    auto pty = Pty::spawn(command, m_terminal.size());
    if (!pty) {
        const std::lock_guard lock(m_terminalMutex);
        m_terminal.feed(pty.error());
        return std::unexpected(pty.error());
    }
    m_pty.emplace(std::move(*pty));
    m_process = m_pty->process();
    m_running = true;
    m_reader = std::thread([this] { readLoop(); });
    m_parser = std::thread([this] { parseLoop(); });
    return {};
}

Session::Access::~Access()
{
    m_session.sendReplies();
}

std::unique_lock<std::mutex> Session::lockTerminal()
{
    const std::lock_guard turn(m_turn);
    return std::unique_lock(m_terminalMutex);
}

void Session::sendReplies()
{
    const std::string_view replies = m_terminal.replies();
    if (replies.empty())
        return;
    if (m_taps.input)
        m_taps.input(replies, m_pty && m_pty->hidesInput());
    bool isLeft = false;
    if (hasRoomFor(replies.size())) {
        const std::lock_guard lock(m_mutex);
        m_backlog.erase(0, std::exchange(m_written, 0));
        m_backlog.append(replies);
        // Writes directly as much as the child accepts, without waking the reader.
        writePiece();
        isLeft = !m_backlog.empty();
    }
    m_terminal.consumeReplies(replies.size());
    if (isLeft)
        wakeReader();
}

bool Session::hasRoomFor(size_t bytes)
{
    const std::lock_guard lock(m_mutex);
    return m_running && m_backlog.size() - m_written + bytes <= maxBacklog;
}

void Session::wakeReader()
{
    const uint64_t one = 1;
    static_cast<void>(!write(m_wake.get(), &one, sizeof one));
}

void Session::resize(Size size)
{
    {
        const Access access(*this);
        access->resize(size);
    }
    if (m_pty)
        m_pty->resize(size.clamped());
}

void Session::hangUp()
{
    if (m_running)
        m_pty->hangUp();
}

std::string Session::foregroundProgram() const
{
    if (!m_running)
        return {};
    const int group = m_pty->foregroundGroup();
    return group > 0 && group != m_process ? programOf(group) : std::string();
}

std::string Session::workingDirectory() const
{
    return m_running ? directoryOf(m_process) : std::string();
}

bool Session::waitForExit(std::chrono::milliseconds timeout)
{
    std::unique_lock lock(m_mutex);
    return m_ended.wait_for(lock, timeout, [this] { return !m_running; });
}

/// Reads until the buffer is full, so that large output is passed on in pieces that are large, but small enough to be
/// parsed while the next one is read. False at the end of the output.
bool Session::takeOutput()
{
    constexpr size_t piece = 16 * 1024;
    char buffer[piece];
    size_t filled = 0;
    bool open = true;
    while (filled < piece) {
        const ssize_t count = read(m_pty->descriptor(), buffer + filled, piece - filled);
        if (count > 0) {
            filled += size_t(count);
            if (size_t(count) <= little)
                break; // usually nothing is left
            continue;
        }
        if (count < 0 && errno == EINTR)
            continue;
        open = count < 0 && errno == EAGAIN;
        break;
    }
    if (filled > 0) {
        const std::string_view output(buffer, filled);
        if (m_taps.output)
            m_taps.output(output);
        if (parseAtOnce(output))
            return open;
        std::unique_lock lock(m_mutex);
        m_drained.wait(lock, [this] { return m_pending.size() < maxPending || m_stopping; });
        m_pending.append(output);
        lock.unlock();
        m_arrived.notify_one();
    }
    return open;
}

/// False if there is much output, or if earlier output is still waiting for the parser.
bool Session::parseAtOnce(std::string_view output)
{
    {
        const std::lock_guard lock(m_mutex);
        if (output.size() > little || m_parsing || !m_pending.empty())
            return false;
    }
    parse(output);
    if (m_taps.changed)
        m_taps.changed();
    return true;
}

/// False if the child is not reading. Requires m_mutex.
bool Session::writePiece()
{
    const ssize_t count = write(m_pty->descriptor(), m_backlog.data() + m_written, m_backlog.size() - m_written);
    if (count <= 0)
        return count < 0 && errno == EINTR;
    m_written += size_t(count);
    if (m_written == m_backlog.size()) {
        m_backlog.clear();
        m_written = 0;
    }
    return true;
}

void Session::writeBacklog()
{
    const std::lock_guard lock(m_mutex);
    while (!m_backlog.empty() && writePiece()) { }
}

void Session::readLoop()
{
    bool open = true;
    while (open) {
        bool writes = false;
        {
            const std::lock_guard lock(m_mutex);
            if (m_stopping)
                break;
            writes = !m_backlog.empty();
        }
        pollfd waiting[] = { { m_pty->descriptor(), short(POLLIN | (writes ? POLLOUT : 0)), 0 },
            { m_wake.get(), POLLIN, 0 }, { m_pty->processDescriptor(), POLLIN, 0 } };
        if (poll(waiting, std::size(waiting), -1) < 0 && errno != EINTR)
            break;
        if (waiting[1].revents & POLLIN) {
            uint64_t count;
            static_cast<void>(!read(m_wake.get(), &count, sizeof count));
        }
        writeBacklog();
        const bool childEnded = waiting[2].revents & POLLIN;
        if (waiting[0].revents & (POLLIN | POLLHUP | POLLERR))
            open = takeOutput();
        // Processes that the child left behind may keep the terminal open; the child's own output has arrived by now.
        else if (childEnded)
            open = false;
    }
    const std::lock_guard lock(m_mutex);
    m_readerDone = true;
    m_arrived.notify_one();
}

void Session::parse(std::string_view output)
{
    const std::unique_lock lock = lockTerminal();
    m_terminal.feed(output);
    sendReplies();
}

void Session::parseLoop()
{
    std::string batch;
    while (true) {
        {
            std::unique_lock lock(m_mutex);
            m_parsing = false;
            m_arrived.wait(lock, [this] { return !m_pending.empty() || m_readerDone; });
            if (m_pending.empty())
                break;
            batch.clear();
            std::swap(batch, m_pending);
            m_parsing = true;
        }
        m_drained.notify_one();
        // Others can lock the terminal between pieces.
        constexpr size_t piece = 64 * 1024;
        for (size_t at = 0; at < batch.size(); at += piece)
            parse(std::string_view(batch).substr(at, piece));
        if (m_taps.changed)
            m_taps.changed();
    }
    const bool stopped = [this] {
        const std::lock_guard lock(m_mutex);
        return m_stopping;
    }();
    constexpr int grace = 300;
    if (stopped)
        m_pty->end(grace);
    const ExitStatus status = m_pty->reap();
    {
        const std::lock_guard lock(m_mutex);
        m_status = status;
        m_running = false;
    }
    m_ended.notify_all();
    if (m_taps.exited)
        m_taps.exited(status);
}

}
