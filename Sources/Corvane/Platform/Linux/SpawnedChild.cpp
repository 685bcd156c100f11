#include "Platform/Linux/SpawnedChild.h"

#include <QFile>
#include <QFileInfo>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <vector>

// glibc 2.36 forgets to declare these as C.
extern "C" {
#include <sys/pidfd.h>
}

namespace corvane {

namespace {

std::unexpected<Error> systemFailure(const QString& subject, int error)
{
    return failure(subject + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(error)));
}

/// The null-terminated list of C strings that exec takes.
class CStrings {
public:
    void append(const QString& text) { m_texts.push_back(QFile::encodeName(text)); }

    char** list()
    {
        m_pointers.clear();
        for (QByteArray& text : m_texts)
            m_pointers.push_back(text.data());
        m_pointers.push_back(nullptr);
        return m_pointers.data();
    }

private:
    std::vector<QByteArray> m_texts;
    std::vector<char*> m_pointers;
};

struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;
};

std::optional<Pipe> makePipe()
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return std::nullopt;
    return Pipe { Descriptor(ends[0]), Descriptor(ends[1]) };
}

struct SpawnActions {
    SpawnActions() { posix_spawn_file_actions_init(&value); }
    ~SpawnActions() { posix_spawn_file_actions_destroy(&value); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;

    posix_spawn_file_actions_t value;
};

struct SpawnAttributes {
    SpawnAttributes()
    {
        posix_spawnattr_init(&value);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&value, &signals);
        sigaddset(&signals, SIGPIPE);
        posix_spawnattr_setsigdefault(&value, &signals);
        posix_spawnattr_setflags(&value, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnAttributes() { posix_spawnattr_destroy(&value); }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    posix_spawnattr_t value;
};

void connectStandardStreams(SpawnActions& actions, const Pipe& input, const Pipe& output)
{
    if (input.readEnd.isOpen())
        posix_spawn_file_actions_adddup2(&actions.value, input.readEnd.number(), STDIN_FILENO);
    else
        posix_spawn_file_actions_addopen(&actions.value, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    if (output.writeEnd.isOpen())
        posix_spawn_file_actions_adddup2(&actions.value, output.writeEnd.number(), STDOUT_FILENO);
    else
        posix_spawn_file_actions_addopen(&actions.value, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions.value, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&actions.value, STDERR_FILENO + 1);
}

void makeNonBlocking(const Descriptor& descriptor)
{
    ::fcntl(descriptor.number(), F_SETFL, ::fcntl(descriptor.number(), F_GETFL) | O_NONBLOCK);
}

}

Result<SpawnedChild> spawnChild(const ProcessSpec& spec)
{
    Pipe input;
    Pipe output;
    if (spec.pipes) {
        std::optional<Pipe> first = makePipe();
        std::optional<Pipe> second = makePipe();
        if (!first || !second)
            return systemFailure(spec.executable, errno);
        input = std::move(*first);
        output = std::move(*second);
    }

    SpawnActions actions;
    connectStandardStreams(actions, input, output);
    if (!spec.workingDirectory.isEmpty())
        posix_spawn_file_actions_addchdir_np(&actions.value, QFile::encodeName(spec.workingDirectory).constData());

    CStrings arguments;
    arguments.append(spec.executable);
    for (const QString& argument : spec.arguments)
        arguments.append(argument);
    CStrings environment;
    for (const QString& variable : spec.environment.toStringList())
        environment.append(variable);

    pid_t pid = 0;
    const SpawnAttributes attributes;
    if (const int error = ::posix_spawn(&pid, QFile::encodeName(spec.executable).constData(), &actions.value,
            &attributes.value, arguments.list(), environment.list())) {
        const bool folderIsMissing = !spec.workingDirectory.isEmpty() && !QFileInfo(spec.workingDirectory).isDir();
        return systemFailure(folderIsMissing ? spec.workingDirectory : spec.executable, error);
    }

    const int handle = ::pidfd_open(pid, 0);
    if (handle < 0) {
        const int error = errno;
        ::kill(pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
        return systemFailure(spec.executable, error);
    }
    if (spec.pipes) {
        makeNonBlocking(input.writeEnd);
        makeNonBlocking(output.readEnd);
    }
    return SpawnedChild { pid, std::make_shared<const Descriptor>(handle), std::move(input.writeEnd),
        std::move(output.readEnd) };
}

void signalChild(const Descriptor& handle, int signal)
{
    ::pidfd_send_signal(handle.number(), signal, nullptr, 0);
}

int reapChild(const Descriptor& handle)
{
    siginfo_t info {};
    ::waitid(P_PIDFD, static_cast<id_t>(handle.number()), &info, WEXITED);
    return info.si_code == CLD_EXITED ? info.si_status : -info.si_status;
}

}
