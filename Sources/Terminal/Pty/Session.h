#pragma once

#include "Terminal/Core/Terminal.h"
#include "Terminal/Pty/Pty.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace corvane::terminal {

/// What passes between the terminal and the child. Called on the session's threads.
struct SessionTaps {
    std::function<void(std::string_view)> output; ///< from the child, before it is parsed
    std::function<void(std::string_view, bool hidden)> input; ///< to the child; hidden while it asks for a password
    std::function<void()> changed; ///< the terminal took something in
    std::function<void(ExitStatus)> exited; ///< the last call of all
};

/// A terminal with a child in it. One thread drains the child's output while another parses what came before; a
/// little output that nothing is ahead of is parsed at once, so that a question is answered soon.
class Session {
public:
    Session(Size size, const Config& config, SessionTaps taps = {});
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Once. On failure the terminal shows the error in one line.
    std::expected<void, std::string> start(const Command& command);

    /// The terminal, for as long as the lock is held. What it wants written is sent when it is let go.
    class Access {
    public:
        explicit Access(Session& session)
            : m_session(session)
            , m_lock(session.lockTerminal())
        {
        }
        ~Access();
        Terminal* operator->() const { return &m_session.m_terminal; }
        Terminal& operator*() const { return m_session.m_terminal; }

    private:
        Session& m_session;
        std::unique_lock<std::mutex> m_lock;
    };
    Access terminal() { return Access(*this); }

    /// False where the child has not read so much of what was sent that more of it would be dropped.
    bool hasRoomFor(size_t bytes);

    void resize(Size size);
    void hangUp();
    bool isRunning() const { return m_running; }
    int process() const { return m_process; }
    /// The program that runs in the foreground of the shell; empty if that is the shell itself.
    std::string foregroundProgram() const;
    std::string workingDirectory() const; ///< of the shell; empty if it cannot be told
    /// False after `timeout`.
    bool waitForExit(std::chrono::milliseconds timeout);
    ExitStatus exitStatus() const { return m_status; }

private:
    void readLoop();
    void parseLoop();
    bool takeOutput();
    void parse(std::string_view output);
    bool parseAtOnce(std::string_view output);
    bool writePiece();
    void writeBacklog();
    void sendReplies(); // with the terminal locked
    void wakeReader();
    std::unique_lock<std::mutex> lockTerminal();

    static constexpr size_t maxPending = 1 << 20;
    static constexpr size_t maxBacklog = 4 << 20;

    Terminal m_terminal;
    std::mutex m_terminalMutex;
    std::mutex m_turn; // held while waiting for the terminal, so that a flood leaves others their turn
    SessionTaps m_taps;
    std::optional<Pty> m_pty;
    Descriptor m_wake;
    std::thread m_reader;
    std::thread m_parser;
    std::mutex m_mutex; // of all below
    std::condition_variable m_arrived;
    std::condition_variable m_drained;
    std::condition_variable m_ended;
    std::string m_pending; // read, not yet parsed
    bool m_parsing = false; // the parser has taken what was pending
    std::string m_backlog; // for the child
    size_t m_written = 0; // of the backlog
    bool m_readerDone = false;
    bool m_stopping = false;
    std::atomic<bool> m_running = false;
    std::atomic<int> m_process = -1;
    ExitStatus m_status;
};

}
