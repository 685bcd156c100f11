#include "Platform/Linux/Processes/SpawnedChild.h"

#include "Foundation/Literals.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <vector>

// glibc 2.36 lacks the C linkage of these declarations.
extern "C" {
#include <sys/pidfd.h>
}

namespace corvane {

namespace {

std::unexpected<Error> systemFailure(const QString& subject, int error)
{
    return failure(subject + u": "_s + QString::fromLocal8Bit(std::strerror(error)));
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

void makeNonBlocking(const Descriptor& descriptor)
{
    ::fcntl(descriptor.number(), F_SETFL, ::fcntl(descriptor.number(), F_GETFL) | O_NONBLOCK);
}

/// A stream of the child: a pipe or socket, or the null device if it is not open.
class Stream {
public:
    enum class Ours { Reads, Writes };

    bool open(Ours ours)
    {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0)
            return false;
        m_own = Descriptor(ends[ours == Ours::Reads ? 0 : 1]);
        m_childs = Descriptor(ends[ours == Ours::Reads ? 1 : 0]);
        makeNonBlocking(m_own);
        return moveUp();
    }

    bool openSocket()
    {
        int ends[2];
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
            return false;
        m_own = Descriptor(ends[0]);
        m_childs = Descriptor(ends[1]);
        makeNonBlocking(m_own);
        return true;
    }

    /// A file in memory: unlike a pipe it accepts any length at once.
    bool openWith(const QByteArray& content)
    {
        m_childs = Descriptor(::memfd_create("input", MFD_CLOEXEC));
        QFile file;
        return m_childs.isOpen() && file.open(m_childs.number(), QIODevice::WriteOnly)
            && file.write(content) == content.size() && file.flush() && ::lseek(m_childs.number(), 0, SEEK_SET) == 0;
    }

    void connect(posix_spawn_file_actions_t& actions, int number) const
    {
        if (m_childs.isOpen())
            posix_spawn_file_actions_adddup2(&actions, m_childs.number(), number);
        else
            posix_spawn_file_actions_addopen(
                &actions, number, "/dev/null", number == STDIN_FILENO ? O_RDONLY : O_WRONLY, 0);
    }

    Descriptor takeOwn() { return std::move(m_own); }

private:
    /// Above the descriptor numbers that the child's ends will get.
    bool moveUp()
    {
        constexpr int aboveAllPlaces = 16;
        m_childs = Descriptor(::fcntl(m_childs.number(), F_DUPFD_CLOEXEC, aboveAllPlaces));
        return m_childs.isOpen();
    }

    Descriptor m_own;
    Descriptor m_childs;
};

struct Streams {
    Stream input;
    Stream output;
    Stream errors;
};

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
        posix_spawnattr_setflags(
            &value, static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP));
    }
    ~SpawnAttributes() { posix_spawnattr_destroy(&value); }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    posix_spawnattr_t value;
};

Result<SpawnedChild> spawn(const ProcessSpec& spec, Streams& streams)
{
    SpawnActions actions;
    for (const int number : { STDIN_FILENO, STDOUT_FILENO })
        Stream().connect(actions.value, number);
    streams.input.connect(actions.value, spec.inputNumber);
    streams.output.connect(actions.value, spec.outputNumber);
    streams.errors.connect(actions.value, STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(
        &actions.value, std::max({ STDERR_FILENO, spec.inputNumber, spec.outputNumber }) + 1);
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
    return SpawnedChild { pid, std::make_shared<const Descriptor>(handle), streams.input.takeOwn(),
        streams.output.takeOwn(), streams.errors.takeOwn() };
}

}

Result<SpawnedChild> spawnChild(const ProcessSpec& spec)
{
    Streams streams;
    if (spec.pipes && !(streams.input.open(Stream::Ours::Writes) && streams.output.open(Stream::Ours::Reads)))
        return systemFailure(spec.executable, errno);
    return spawn(spec, streams);
}

Result<SpawnedChild> spawnTool(const ProcessSpec& spec, const QByteArray& input)
{
    Streams streams;
    if (!streams.input.openWith(input) || !streams.output.open(Stream::Ours::Reads)
        || !streams.errors.open(Stream::Ours::Reads))
        return systemFailure(spec.executable, errno);
    return spawn(spec, streams);
}

Result<SpawnedChild> spawnOverSocket(const ProcessSpec& spec)
{
    Streams streams;
    if (!streams.input.openSocket())
        return systemFailure(spec.executable, errno);
    return spawn(spec, streams);
}

void signalChild(const Descriptor& handle, int signal)
{
    ::pidfd_send_signal(handle.number(), signal, nullptr, 0);
}

int reapChild(const Descriptor& handle)
{
    siginfo_t info {};
    const auto child = static_cast<id_t>(handle.number());
    // The group's number cannot be reused before its leader is reaped.
    if (::waitid(P_PIDFD, child, &info, WEXITED | WNOWAIT) == 0)
        ::kill(-info.si_pid, SIGKILL);
    ::waitid(P_PIDFD, child, &info, WEXITED);
    return info.si_code == CLD_EXITED ? info.si_status : -info.si_status;
}

}
