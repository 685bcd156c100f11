#include "Platform/Interruption.h"

#include <csignal>

namespace corvane {

namespace {

std::atomic<std::atomic<bool>*> interrupted = nullptr;

void interrupt(int)
{
    if (std::atomic<bool>* const flag = interrupted)
        *flag = true;
}

}

Interruption::Interruption(std::atomic<bool>& flag)
{
    interrupted = &flag;
    std::signal(SIGINT, interrupt);
    std::signal(SIGTERM, interrupt);
}

Interruption::~Interruption()
{
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    interrupted = nullptr;
}

}
