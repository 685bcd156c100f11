#include "Rivals.h"

#include "Platform/MachineResources.h"
#include "Platform/ProcessTable.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>
#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvane::bench {

namespace {

/// Idle processes, as many as on a busy machine.
class Crowd {
public:
    Crowd()
    {
        for (pid_t& pid : m_pids) {
            pid = ::fork();
            if (pid == 0) {
                ::prctl(PR_SET_PDEATHSIG, SIGKILL);
                ::pause();
                ::_exit(0);
            }
        }
    }
    ~Crowd()
    {
        for (const pid_t pid : m_pids) {
            if (pid > 0 && ::kill(pid, SIGKILL) == 0)
                ::waitpid(pid, nullptr, 0);
        }
    }
    Crowd(const Crowd&) = delete;
    Crowd& operator=(const Crowd&) = delete;

private:
    std::array<pid_t, 500> m_pids {};
};

void reading(benchmark::State& state)
{
    const Crowd crowd;
    for (auto _ : state) {
        if (readResources()->processes.size() < 500)
            state.SkipWithError("processes are missing");
    }
}

/// One after the other, as the monitor does.
void readingAgain(benchmark::State& state)
{
    const Crowd crowd;
    QList<RunningProcess> before = readResources()->processes;
    for (auto _ : state)
        before = readResources({}, before)->processes;
}

void listing(benchmark::State& state)
{
    const Crowd crowd;
    for (auto _ : state)
        benchmark::DoNotOptimize(processTable());
}

BENCHMARK(reading)->Name("processes(500)/corvane")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(readingAgain)->Name("processes(500) again/corvane")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(listing)->Name("processes(500)/ps")->Unit(benchmark::kMillisecond)->UseRealTime();

}

}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return corvane::bench::runAgainstRivals(argc, argv);
}
