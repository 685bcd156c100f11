#include "Rivals.h"

#include "AI/LumoDraftPrompt.h"
#include "AI/UngroundedFacts.h"

#include <benchmark/benchmark.h>

namespace corvane::bench {

namespace {

struct Input {
    LumoDraftCRMContext context;
    QList<UnifiedMsgRow> messages;
};

/// Everything that a prompt takes, and as long as it takes it: 80 messages, 8 notes and 12 identities.
Input fullInput(const QString& word)
{
    Input input { { QStringLiteral("ct:EMAIL:ana@example.com"), QStringLiteral("Ana Petrović"),
                      { QStringLiteral("EMAIL"), QStringLiteral("WHATSAPP") }, {}, {} },
        {} };
    for (int at = 0; at < 12; ++at) {
        input.context.identities.append({ QStringLiteral("EMAIL"), QStringLiteral("ana%1@example.com").arg(at),
            QStringLiteral("ana%1@example.com").arg(at), QStringLiteral("49170123%1").arg(at) });
    }
    for (int at = 0; at < 8; ++at)
        input.context.recentNotes.append({ QStringLiteral("note:%1").arg(at), word.repeated(100), 1'772'000'000'000 });
    for (int at = 0; at < 80; ++at) {
        UnifiedMsgRow row;
        row.id = QStringLiteral("wa:msg:%1").arg(at);
        row.direction = QStringLiteral("IN");
        row.platform = QStringLiteral("WHATSAPP");
        row.body = word.repeated(160);
        row.ts = 1'772'000'000'000 + at * 60'000;
        input.messages.append(row);
    }
    return input;
}

void replyPrompt(benchmark::State& state, const QString& word)
{
    const Input input = fullInput(word);
    for (auto _ : state)
        benchmark::DoNotOptimize(makeDraftReplyPrompt(input.context, input.messages, QStringLiteral("friendly")));
}

void factsOfADraft(benchmark::State& state)
{
    const Input input = fullInput(QStringLiteral("word "));
    const QString context = makeDraftReplyPrompt(input.context, input.messages, QString()).prompt;
    const QString draft
        = QStringLiteral("Hi Ana, the 14 panels arrive on March 3 at 9 am, Petra calls you. ").repeated(5);
    for (auto _ : state)
        benchmark::DoNotOptimize(ungroundedFacts(draft, context));
}

BENCHMARK_CAPTURE(replyPrompt, plain, QStringLiteral("word "))
    ->Name("prompt of 80 messages, 8 notes, 12 identities")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(replyPrompt, beyondLatin, QStringLiteral("слово "))
    ->Name("the same in Cyrillic")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(factsOfADraft)->Name("facts of a draft against that prompt")->Unit(benchmark::kMillisecond);

}

}

int main(int argc, char** argv)
{
    return corvane::bench::runAgainstRivals(argc, argv);
}
