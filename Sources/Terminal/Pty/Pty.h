#pragma once

#include "Terminal/Core/Config.h"

#include <expected>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace corvane::terminal {

/// A file descriptor that closes itself.
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

/// What runs in the terminal. An empty program is the user's login shell.
struct Command {
    std::string program;
    std::vector<std::string> arguments;
    /// Set over the environment of this process; TERM and the like come by themselves.
    std::vector<std::pair<std::string, std::string>> environment;
    std::string directory {}; ///< empty: that of this process; one that is not there: the home directory
    std::optional<unsigned> umask {}; ///< none: that of this process
};

struct ExitStatus {
    bool bySignal = false;
    int code = 0; ///< exit code, or number of the signal
    friend bool operator==(const ExitStatus&, const ExitStatus&) = default;
};

/// A child process on a pseudo-terminal of its own. It is hung up when this goes.
class Pty {
public:
    /// The error says in one line why the command could not be started.
    static std::expected<Pty, std::string> spawn(const Command& command, Size size);
    ~Pty();
    Pty(Pty&&) noexcept = default;
    Pty& operator=(Pty&&) = delete;

    int descriptor() const { return m_master.get(); } ///< non-blocking
    int processDescriptor() const { return m_process.get(); } ///< readable once the child has ended
    int process() const { return m_pid; }
    void resize(Size size);
    /// The child has ended; waits for it.
    ExitStatus reap();
    /// SIGHUP, as when a window closes.
    void hangUp();
    /// Hangs up, and kills what has not ended within `grace` milliseconds.
    void end(int grace);

    /// The process group that the terminal's keys go to: the shell's own, or that of what it runs. -1 for none.
    int foregroundGroup() const;

    /// Input is not shown, and taken by lines: a password is being asked for.
    bool hidesInput() const;

private:
    Pty() = default;
    Descriptor m_master;
    Descriptor m_process;
    int m_pid = -1;
};

/// The user's shell: by the account, else /bin/sh.
std::string loginShell();

/// The name and the working directory of a process; empty if the system does not tell.
std::string programOf(int process);
std::string directoryOf(int process);

}
