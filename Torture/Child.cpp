#include "Child.h"

#include <QDataStream>
#include <QFile>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace corvane::torture {

namespace {

enum class Word { Start, Reap };

int nursery = -1; ///< the socket to the process that starts children

void redirect(int descriptor, const QByteArray& path)
{
    const int file = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::dup2(file, descriptor);
    ::close(file);
}

[[noreturn]] void become(const ChildOrder& order, Host host)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::clearenv();
    for (const QString& variable : order.environment)
        ::putenv(::strdup(variable.toLocal8Bit().constData()));
    redirect(STDOUT_FILENO, "/dev/null");
    redirect(STDERR_FILENO, QFile::encodeName(order.log));
    if (order.program.isEmpty())
        ::_exit(host(order.arguments));
    std::vector<char*> words { ::strdup(QFile::encodeName(order.program).constData()) };
    for (const QString& argument : order.arguments)
        words.push_back(::strdup(argument.toLocal8Bit().constData()));
    words.push_back(nullptr);
    ::execv(words.front(), words.data());
    ::_exit(127);
}

[[noreturn]] void serve(int socket, Host host)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    constexpr int longest = 100'000;
    for (QByteArray piece(longest, '\0');;) {
        const ssize_t size = ::recv(socket, piece.data(), size_t(piece.size()), 0);
        if (size <= 0)
            ::_exit(0);
        QDataStream in(piece.first(size));
        Word word = Word::Start;
        qint32 answer = -1;
        in >> word;
        if (word == Word::Reap) {
            int status = 0;
            in >> answer;
            ::waitpid(answer, &status, 0);
            answer = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        } else {
            ChildOrder order;
            in >> order.program >> order.arguments >> order.environment >> order.log;
            answer = ::fork();
            if (answer == 0) {
                ::close(socket);
                become(order, host);
            }
        }
        ::send(socket, &answer, sizeof answer, 0);
    }
}

qint32 ask(const QByteArray& order)
{
    qint32 answer = -1;
    const bool asked = ::send(nursery, order.constData(), size_t(order.size()), 0) == order.size();
    if (!asked || ::recv(nursery, &answer, sizeof answer, 0) != sizeof answer)
        qFatal("The process that starts the others is gone");
    return answer;
}

template <typename... Values> QByteArray packed(const Values&... values)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    (out << ... << values);
    return bytes;
}

}

void openNursery(Host host)
{
    int sockets[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets) != 0)
        qFatal("No socket can be made");
    const pid_t child = ::fork();
    if (child < 0)
        qFatal("No process can be made");
    ::close(sockets[child == 0 ? 0 : 1]);
    if (child == 0)
        serve(sockets[1], host);
    nursery = sockets[0];
}

void Child::start(const ChildOrder& order)
{
    m_pid = ask(packed(Word::Start, order.program, order.arguments, order.environment, order.log));
    m_handle = m_pid > 0 ? int(::syscall(SYS_pidfd_open, m_pid, 0)) : -1;
    if (m_handle < 0)
        qFatal("No process can be made");
}

bool Child::isRunning() const
{
    pollfd end { m_handle, POLLIN, 0 };
    return m_handle >= 0 && ::poll(&end, 1, 0) == 0;
}

bool Child::waitForEnd(int milliseconds)
{
    if (m_handle < 0)
        return true;
    pollfd end { m_handle, POLLIN, 0 };
    if (::poll(&end, 1, milliseconds) == 0)
        return false;
    m_exitCode = ask(packed(Word::Reap, qint32(m_pid)));
    ::close(std::exchange(m_handle, -1));
    return true;
}

void Child::terminate()
{
    if (m_handle >= 0)
        ::kill(m_pid, SIGTERM);
}

void Child::kill()
{
    if (m_handle >= 0)
        ::kill(m_pid, SIGKILL);
    waitForEnd(-1);
}

}
