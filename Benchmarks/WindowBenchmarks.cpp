#include "Mirror.h"
#include "PlayedProgram.h"

#include "Engines/EngineManager.h"
#include "Inbox/Thread/ThreadView.h"
#include "Store/Core/LocalDB.h"
#include "Store/Messages/IngestQueries.h"

#include <QElapsedTimer>
#include <benchmark/benchmark.h>
#include <malloc.h>

namespace corvane::bench {

namespace {

/// The window over the mirror, where somebody wrote a thousand messages, eight a day.
class Bench {
public:
    Bench()
    {
        LocalDB& db = m_program.app.engine().db();
        const QString conversation = ensureConversation(db, QStringLiteral("WHATSAPP"), QStringLiteral("main"),
            QStringLiteral("a-thousand"), QStringLiteral("Ana"), m_program.scheduler.nowMs());
        db.run("UPDATE unified_message SET conversation_id=?, ts=? - rowid / 1000 * 10800000 WHERE rowid % 1000 = 0;",
            { conversation, m_program.scheduler.nowMs() });
        m_program.screens.content.continueWithoutSigningIn();
        m_program.window.show();
        m_program.screens.inbox.appear();
        paint();
    }

    void open(const QString& contact)
    {
        m_program.screens.inbox.select(contact);
        paint();
    }

    /// Nobody is open, and what an opening leaves for later is done.
    void close()
    {
        open({});
        QElapsedTimer since;
        since.start();
        while (since.elapsed() < 400)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }

    int rows() { return m_program.screens.inbox.thread()->rows()->rowCount(); }

private:
    void paint()
    {
        QCoreApplication::processEvents();
        benchmark::DoNotOptimize(m_program.window.window()->grabWindow());
    }

    PlayedProgram m_program { sharedMirror(QStringLiteral(CORVANE_MIRROR_FOLDER)) };
};

const QString somebody = QStringLiteral("ct:WHATSAPP:a-thousand");

std::unique_ptr<Bench> instance; // goes before the application object, as its window does

Bench& bench()
{
    if (!instance)
        instance = std::make_unique<Bench>();
    return *instance;
}

size_t inUse()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// From nobody to the first of their thread, with the parts of the window that it needs.
void threadInMemory(benchmark::State& state)
{
    for (auto _ : state) {
        bench().close();
        const size_t before = inUse();
        bench().open(somebody);
        state.counters["MB"] = double(inUse() - before) / 1e6;
        state.counters["rows"] = bench().rows();
    }
}

/// From the press on the person to the picture.
void openedContact(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        bench().close();
        state.ResumeTiming();
        bench().open(somebody);
    }
}

BENCHMARK(threadInMemory)->Name("thread of 1000 in the window")->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(openedContact)->Name("contact with 1000 messages/painted")->Unit(benchmark::kMillisecond);

}

}

int main(int argc, char** argv)
{
    return corvane::bench::runWithWindow(argc, argv, corvane::bench::instance);
}
