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

/// Observers of what passes between terminal and child. Called on the session's threads.
struct SessionTaps {
    std::function<void(std::string_view)> output; ///< from the child, before it is parsed
    std::function<void(std::string_view, bool hidden)> input; ///< to the child; hidden while it asks for a password
    std::function<void()> changed; ///< the terminal has processed output
    std::function<void(ExitStatus)> exited; ///< always the last call
};

/// A terminal with a child process. One thread reads the child's output while another parses earlier output; a little
/// output with nothing waiting before it is parsed at once, for quick answers to queries.
class Session {
public:
    Session(Size size, const Config& config, SessionTaps taps = {});
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// To be called once. On failure the terminal shows the error in one line.
    std::expected<void, std::string> start(const Command& command);

    /// Locks the terminal. Replies are sent when the lock is released.
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

    /// False if so much unread input is waiting for the child that more would be dropped.
    bool hasRoomFor(size_t bytes);

    void resize(Size size);
    void hangUp();
    bool isRunning() const { return m_running; }
    int process() const { return m_process; }
    /// The foreground program of the shell; empty if that is the shell itself.
    std::string foregroundProgram() const;
    std::string workingDirectory() const; ///< of the shell; empty if unknown
    /// False if `timeout` expires.
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
    void sendReplies(); // requires the terminal's lock
    void wakeReader();
    std::unique_lock<std::mutex> lockTerminal();

    static constexpr size_t maxPending = 1 << 20;
    static constexpr size_t maxBacklog = 4 << 20;

    Terminal m_terminal;
    std::mutex m_terminalMutex;
    std::mutex m_turn; // held while waiting for the terminal, so that output cannot starve other threads
    SessionTaps m_taps;
    std::optional<Pty> m_pty;
    Descriptor m_wake;
    std::thread m_reader;
    std::thread m_parser;
    std::mutex m_mutex; // protects all members below
    std::condition_variable m_arrived;
    std::condition_variable m_drained;
    std::condition_variable m_ended;
    std::string m_pending; // read, not yet parsed
    bool m_parsing = false; // the parser is working on output that was pending
    std::string m_backlog; // input for the child
    size_t m_written = 0; // of the backlog
    bool m_readerDone = false;
    bool m_stopping = false;
    std::atomic<bool> m_running = false;
    std::atomic<int> m_process = -1;
    ExitStatus m_status;
};

}
