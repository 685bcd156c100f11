#pragma once

#include "Terminal/Core/Config.h"

#include <expected>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace corvane::terminal {

/// A file descriptor that is closed on destruction.
class Descriptor {
public:
    explicit Descriptor(int number = -1)
        : m_number(number)
    {
    }
    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept
        : m_number(std::exchange(other.m_number, -1))
    {
    }
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    int get() const { return m_number; }
    bool isOpen() const { return m_number >= 0; }
    void close();

private:
    int m_number;
};

/// What to run. An empty program is the user's login shell.
struct Command {
    std::string program;
    std::vector<std::string> arguments;
    /// Added to the environment of this process; TERM and similar variables are set automatically.
    std::vector<std::pair<std::string, std::string>> environment;
    std::string directory {}; ///< empty: that of this process; if it does not exist: the home directory
    std::optional<unsigned> umask {}; ///< unset: that of this process
};

struct ExitStatus {
    bool bySignal = false;
    int code = 0; ///< exit code, or signal number
    friend bool operator==(const ExitStatus&, const ExitStatus&) = default;
};

/// A child process on its own pseudo-terminal. The destructor hangs it up.
class Pty {
public:
    /// On failure, one line that says why the command could not be started.
    static std::expected<Pty, std::string> spawn(const Command& command, Size size);
    ~Pty();
    Pty(Pty&&) noexcept = default;
    Pty& operator=(Pty&&) = delete;

    int descriptor() const { return m_master.get(); } ///< non-blocking
    int processDescriptor() const { return m_process.get(); } ///< readable once the child has ended
    int process() const { return m_pid; }
    void resize(Size size);
    /// Waits for the child, which has ended.
    ExitStatus reap();
    /// Sends SIGHUP, as when a window closes.
    void hangUp();
    /// Hangs up, and kills the child if it has not ended within `grace` milliseconds.
    void end(int grace);

    /// The foreground process group: the shell's own, or that of what it runs. -1 if there is none.
    int foregroundGroup() const;

    /// Echo is off in line mode: the program is asking for a password.
    bool hidesInput() const;

private:
    Pty() = default;
    Descriptor m_master;
    Descriptor m_process;
    int m_pid = -1;
};

/// The shell of the user's account, or /bin/sh.
std::string loginShell();

/// The name and the working directory of a process; empty if unavailable.
std::string programOf(int process);
std::string directoryOf(int process);

}
