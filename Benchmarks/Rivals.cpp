#include "Rivals.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace corvane::bench {

namespace {

class Reporter final : public benchmark::ConsoleReporter {
public:
    Reporter()
        : ConsoleReporter(OO_Tabular)
    {
    }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Aggregate || run.aggregate_name != "median")
                continue;
            const std::string& name = run.run_name.function_name;
            const auto slash = name.find('/');
            m_medians[name.substr(0, slash)][name.substr(slash + 1)] = run.GetAdjustedRealTime();
        }
    }

    void Finalize() override
    {
        std::printf("\n%-16s %10s   %-24s %10s %8s\n", "median, ms", "corvane", "rival", "", "speed");
        for (const auto& [subject, sides] : m_medians) {
            const auto ours = sides.find("corvane");
            if (ours == sides.end())
                continue;
            for (const auto& [side, median] : sides) {
                if (side != "corvane")
                    std::printf("%-16s %10.3f   %-24s %10.3f %8.2f\n", subject.c_str(), ours->second, side.c_str(),
                        median, median / ours->second);
            }
        }
    }

private:
    std::map<std::string, std::map<std::string, double>> m_medians; ///< by subject, then by side
};

}

int runAgainstRivals(int argc, char** argv)
{
    // Both sides alternate, so that a busy moment of the machine affects both.
    std::vector<char*> arguments(argv, argv + argc);
    std::string interleave = "--benchmark_enable_random_interleaving=true";
    std::string repetitions = "--benchmark_repetitions=9";
    arguments.insert(arguments.begin() + 1, { interleave.data(), repetitions.data() });
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;
    Reporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}

}
