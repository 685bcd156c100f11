#include "Terminal/Pty/Pty.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <pwd.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

extern char** environ;

namespace corvane::terminal {

namespace {

winsize windowSize(Size size)
{
    winsize window {};
    window.ws_col = static_cast<unsigned short>(size.columns);
    window.ws_row = static_cast<unsigned short>(size.rows);
    window.ws_xpixel = static_cast<unsigned short>(size.columns * size.cellWidth);
    window.ws_ypixel = static_cast<unsigned short>(size.rows * size.cellHeight);
    return window;
}

std::string homeDirectory()
{
    if (const char* home = std::getenv("HOME"); home && *home)
        return home;
    const passwd* const account = getpwuid(getuid());
    return account ? account->pw_dir : "/";
}

/// The environment of this process with the command's changes.
std::vector<std::string> environmentOf(const Command& command)
{
    std::vector<std::pair<std::string, std::string>> changes { { "TERM", "xterm-256color" },
        { "COLORTERM", "truecolor" }, { "TERM_PROGRAM", "Corvane" } };
    changes.insert(changes.end(), command.environment.begin(), command.environment.end());
    std::vector<std::string> entries;
    const auto isChanged = [&](std::string_view name) {
        for (const auto& change : changes) {
            if (change.first == name)
                return true;
        }
        // The child must not inherit the size of another terminal.
        return name == "COLUMNS" || name == "LINES" || name == "TERMCAP" || name == "WINDOWID";
    };
    for (char** entry = environ; *entry; ++entry) {
        const std::string_view text = *entry;
        if (!isChanged(text.substr(0, text.find('='))))
            entries.emplace_back(text);
    }
    for (size_t i = 0; i < changes.size(); ++i) {
        bool isLast = true;
        for (size_t later = i + 1; later < changes.size(); ++later)
            isLast &= changes[later].first != changes[i].first;
        if (isLast)
            entries.push_back(changes[i].first + '=' + changes[i].second);
    }
    return entries;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// Runs in the child: only async-signal-safe calls between fork and exec.
[[noreturn]] void runChild(int slave, int report, const char* program, char* const* arguments, char* const* environment,
    const char* directory, const char* home, const unsigned* mask)
{
    setsid();
    ioctl(slave, TIOCSCTTY, 0);
    for (int standard = 0; standard < 3; ++standard)
        dup2(slave, standard);
    if (slave > 2)
        close(slave);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    for (int number = 1; number < NSIG; ++number)
        signal(number, SIG_DFL);
    if (directory && chdir(directory) != 0 && chdir(home) != 0)
        static_cast<void>(!chdir("/"));
    if (mask)
        umask(mode_t(*mask));
    environ = const_cast<char**>(environment);
    execvp(program, arguments);
    const int error = errno;
    static_cast<void>(!write(report, &error, sizeof error));
    _exit(127);
}

}

Descriptor::~Descriptor()
{
    close();
}

void Descriptor::close()
{
    if (m_number >= 0)
        ::close(std::exchange(m_number, -1));
}

std::string loginShell()
{
    const passwd* const account = getpwuid(getuid());
    if (account && account->pw_shell && *account->pw_shell)
        return account->pw_shell;
    return "/bin/sh";
}

std::string programOf(int process)
{
    std::string name;
    std::getline(std::ifstream("/proc/" + std::to_string(process) + "/comm"), name);
    return name;
}

std::string directoryOf(int process)
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/cwd", error).string();
}

std::expected<Pty, std::string> Pty::spawn(const Command& command, Size size)
{
    const auto failure = [](const std::string& what, int error) {
        return std::unexpected(what + ": " + std::strerror(error));
    };
    Pty pty;
    pty.m_master = Descriptor(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    char name[128];
    if (!pty.m_master.isOpen() || grantpt(pty.descriptor()) != 0 || unlockpt(pty.descriptor()) != 0
        || ptsname_r(pty.descriptor(), name, sizeof name) != 0)
        return failure("No terminal could be opened", errno);
    const Descriptor slave(open(name, O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!slave.isOpen())
        return failure("No terminal could be opened", errno);
    termios settings;
    if (tcgetattr(slave.get(), &settings) == 0) {
        settings.c_iflag |= IUTF8;
        tcsetattr(slave.get(), TCSANOW, &settings);
    }
    const winsize window = windowSize(size);
    ioctl(slave.get(), TIOCSWINSZ, &window);

    const bool isShell = command.program.empty();
    const std::string program = isShell ? loginShell() : command.program;
    std::vector<std::string> arguments { program };
    arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
    if (isShell && command.arguments.empty())
        arguments.front() = "-" + program.substr(program.rfind('/') + 1); // marks a login shell
    std::vector<std::string> environment = environmentOf(command);
    const std::vector<char*> argumentPointers = pointersTo(arguments);
    const std::vector<char*> environmentPointers = pointersTo(environment);
    const std::string home = homeDirectory();
    int report[2];
    if (pipe2(report, O_CLOEXEC) != 0)
        return failure("No process could be started", errno);
    const Descriptor reportRead(report[0]);
    Descriptor reportWrite(report[1]);
    pty.m_pid = fork();
    if (pty.m_pid < 0)
        return failure("No process could be started", errno);
    if (pty.m_pid == 0) {
        runChild(slave.get(), reportWrite.get(), program.c_str(), argumentPointers.data(), environmentPointers.data(),
            command.directory.empty() ? nullptr : command.directory.c_str(), home.c_str(),
            command.umask ? &*command.umask : nullptr);
    }
    reportWrite.close();
    int error = 0;
    if (read(reportRead.get(), &error, sizeof error) == sizeof error) {
        pty.reap();
        return failure(program, error);
    }
    pty.m_process = Descriptor(int(syscall(SYS_pidfd_open, pty.m_pid, 0)));
    return pty;
}

Pty::~Pty()
{
    if (m_pid <= 0 || !m_master.isOpen())
        return;
    hangUp();
    m_master.close();
    int status = 0;
    waitpid(m_pid, &status, WNOHANG);
}

void Pty::resize(Size size)
{
    const winsize window = windowSize(size);
    ioctl(descriptor(), TIOCSWINSZ, &window);
}

ExitStatus Pty::reap()
{
    int status = 0;
    while (waitpid(m_pid, &status, 0) < 0 && errno == EINTR) { }
    m_pid = -1;
    if (WIFSIGNALED(status))
        return { true, WTERMSIG(status) };
    return { false, WEXITSTATUS(status) };
}

void Pty::hangUp()
{
    // Read once: another thread may reap the child, which sets it to -1.
    if (const int child = m_pid; child > 0)
        kill(-child, SIGHUP);
}

void Pty::end(int grace)
{
    hangUp();
    pollfd waiting { m_process.get(), POLLIN, 0 };
    if (poll(&waiting, 1, grace) == 0 && m_pid > 0)
        kill(-m_pid, SIGKILL);
}

int Pty::foregroundGroup() const
{
    return tcgetpgrp(descriptor());
}

bool Pty::hidesInput() const
{
    termios settings;
    return tcgetattr(descriptor(), &settings) == 0 && !(settings.c_lflag & ECHO) && (settings.c_lflag & ICANON);
}

}
