#include "Platform/TerminationSignals.h"

#include <QSocketNotifier>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace corvane {

namespace {

// A signal handler may only write to this pipe.
int wakePipe[2] = { -1, -1 };

void wake(int signalNumber)
{
    const char byte = static_cast<char>(signalNumber);
    [[maybe_unused]] const ssize_t written = ::write(wakePipe[1], &byte, 1);
}

void handle(int signalNumber, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(signalNumber, &action, nullptr);
}

}

TerminationSignals::TerminationSignals(QObject* parent)
    : QObject(parent)
{
    if (::pipe2(wakePipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_notifier = new QSocketNotifier(wakePipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        while (::read(wakePipe[0], &byte, 1) == 1)
            Q_EMIT requested(byte);
    });
    handle(SIGTERM, wake);
    handle(SIGINT, wake);
}

TerminationSignals::~TerminationSignals()
{
    handle(SIGTERM, SIG_DFL);
    handle(SIGINT, SIG_DFL);
    delete m_notifier;
    for (int& end : wakePipe) {
        if (end != -1)
            ::close(end);
        end = -1;
    }
}

}
