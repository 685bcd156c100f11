#include "MirrorBench.h"
#include "Rivals.h"

#include "Store/InboxQueries.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

namespace corvane::bench {

namespace {

MirrorBench& bench()
{
    static MirrorBench instance;
    return instance;
}

void fetchContactsByStore(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(fetchContacts(bench().store(), InboxFilter::All, {}, 300));
}

void fetchContactsBare(benchmark::State& state)
{
    for (auto _ : state) {
        BareStatement statement(bench().bare(), bench().contactsStatement());
        for (bool row = statement.step("local", "", "", qint64(300)); row; row = statement.step()) {
            for (int column = 0; column < 10; ++column)
                benchmark::DoNotOptimize(sqlite3_column_text(statement.get(), column));
        }
    }
}

BENCHMARK(fetchContactsByStore)->Name("fetchContacts/corvane")->Unit(benchmark::kMillisecond);
BENCHMARK(fetchContactsBare)->Name("fetchContacts/bare")->Unit(benchmark::kMillisecond);

}

}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    corvane::bench::bench(); // made before the clock runs
    return corvane::bench::runAgainstRivals(argc, argv);
}
