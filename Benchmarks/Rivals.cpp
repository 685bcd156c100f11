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
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median")
                m_medians[run.run_name.function_name] = run.GetAdjustedRealTime();
        }
    }

    void Finalize() override
    {
        const std::string suffix = "/corvane";
        std::printf("\n%-32s %12s %12s %8s\n", "median, milliseconds", "corvane", "bare", "speed");
        for (const auto& [name, ours] : m_medians) {
            if (!name.ends_with(suffix))
                continue;
            const std::string subject = name.substr(0, name.size() - suffix.size());
            const auto rival = m_medians.find(subject + "/bare");
            if (rival != m_medians.end())
                std::printf("%-32s %12.3f %12.3f %8.2f\n", subject.c_str(), ours, rival->second, rival->second / ours);
        }
    }

private:
    std::map<std::string, double> m_medians;
};

}

int runAgainstRivals(int argc, char** argv)
{
    // Both sides take turns, so that a busy moment of the machine meets both.
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
