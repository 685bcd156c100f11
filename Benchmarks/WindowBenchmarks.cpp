#include "Foundation/Literals.h"
#include "Inbox/InboxView.h"
#include "Mirror.h"
#include "PlayedProgram.h"

#include "Engines/EngineManager.h"
#include "Engines/EngineSpec.h"
#include "Inbox/Thread/ThreadView.h"
#include "Shell/ContentView.h"
#include "Store/Core/LocalDB.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/PlayedLauncher.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QQuickWindow>
#include <QTimer>
#include <benchmark/benchmark.h>
#include <ctime>
#include <malloc.h>

namespace corvane::bench {

namespace {

/// The window over the mirror, in which one person wrote a thousand messages, eight a day.
class Bench {
public:
    Bench()
    {
        LocalDB& db = m_program.app.engine().db();
        const QString conversation
            = ensureConversation(db, u"WHATSAPP"_s, u"main"_s, u"a-thousand"_s, u"Ana"_s, m_program.scheduler.nowMs());
        db.run("UPDATE unified_message SET conversation_id=?, ts=? - rowid / 1000 * 10800000 WHERE rowid % 1000 = 0;",
            { conversation, m_program.scheduler.nowMs() });
        m_handles = db.rows("SELECT external_id FROM unified_conversation WHERE channel='WHATSAPP' AND "
                            "account_id='main' ORDER BY last_ts DESC LIMIT 2000;",
            {}, [](const SqlRow& row) { return row.text(0); });
        QDir().mkpath(engineDir(m_program.paths));
        Account account;
        account.id = QUuid::createUuid();
        account.slug = u"main"_s;
        m_program.app.engine().start(account);
        m_program.screens.content->continueWithoutSigningIn();
        m_program.window.show();
        QQuickWindow* window = m_program.window.window();
        QObject::connect(window, &QQuickWindow::beforeSynchronizing, window, [this] { m_painting -= threadMs(); });
        QObject::connect(window, &QQuickWindow::frameSwapped, window, [this] { m_painting += threadMs(); });
        m_program.screens.inbox->appear();
        paint();
    }

    void open(const QString& contact)
    {
        m_program.screens.inbox->person()->select(contact);
        paint();
    }

    /// No one is open, and deferred work of opening is done.
    void close()
    {
        open({});
        QElapsedTimer since;
        since.start();
        while (since.elapsed() < 400)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }

    /// Shows or hides the window and waits until the list is idle.
    void setShown(bool shown)
    {
        shown ? m_program.window.show() : m_program.window.hide();
        rest();
    }

    /// Live messages to known people, one after the other from the newest down, as an engine prints them; returns when
    /// they are stored and, if the window is visible, on the screen.
    void receive(int count)
    {
        QString chunk;
        for (int i = 0; i < count; ++i) {
            ++m_messages;
            chunk += u"@@CORVANE@@{\"type\":\"message\",\"convExternalId\":\"%1\",\"providerMsgId\":\"W%2\","
                     "\"direction\":\"IN\",\"body\":\"See you tomorrow\",\"ts\":%3}\n"_s
                         .arg(m_handles.at(m_messages * 7919 % m_handles.size()))
                         .arg(m_messages)
                         .arg(m_program.scheduler.nowMs());
        }
        EngineManager& engines = m_program.app.engine();
        const qint64 target = engines.inboxRevision() + count;
        m_engine->print(chunk.toUtf8());
        while (engines.inboxRevision() < target)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    /// Until new messages are shown and counted.
    void rest()
    {
        QEventLoop loop; // processEvents with a time limit would spin
        QTimer::singleShot(1500, &loop, &QEventLoop::quit);
        loop.exec();
    }

    /// Processor time for rendering in this thread, in milliseconds. The software renderer paints here; with a graphics
    /// card most of it moves to another thread.
    double painting() const { return m_painting; }

    int rows() { return m_program.screens.inbox->person()->thread()->rows()->rowCount(); }

private:
    static double threadMs()
    {
        timespec spent;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &spent);
        return double(spent.tv_sec) * 1e3 + double(spent.tv_nsec) / 1e6;
    }

    void paint()
    {
        QCoreApplication::processEvents();
        benchmark::DoNotOptimize(m_program.window.window()->grabWindow());
    }

    PlayedLauncher* m_engine = new PlayedLauncher;
    PlayedProgram m_program { sharedMirror(QStringLiteral(CORVANE_MIRROR_FOLDER)),
        std::unique_ptr<ProcessLauncher>(m_engine) };
    QStringList m_handles;
    int m_messages = 0;
    double m_painting = 0;
};

const QString somebody = u"ct:WHATSAPP:a-thousand"_s;

std::unique_ptr<Bench> instance; // destroyed before the application object, as its window requires

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

/// From no one to the first person's thread, including creating that part of the window.
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

/// From the click on the person to the picture.
void openedContact(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        bench().close();
        state.ResumeTiming();
        bench().open(somebody);
    }
}

/// A number of messages to people in the list, and a second and a half for all that follows: rows, counts and
/// rendering. Measures the processor time of the main thread, without waits for the disk; zero messages show the
/// window's base cost.
void messages(benchmark::State& state, int count)
{
    bench().close();
    bench().setShown(true);
    const double before = bench().painting();
    for (auto _ : state) {
        if (count > 0)
            bench().receive(count);
        bench().rest();
    }
    state.counters["painting, ms"] = (bench().painting() - before) / double(state.iterations());
}

/// A burst of live messages, with and without a visible window.
void burst(benchmark::State& state, bool shown)
{
    bench().close();
    bench().setShown(shown);
    for (auto _ : state)
        bench().receive(500);
    state.SetItemsProcessed(state.iterations() * 500);
    bench().setShown(true);
}

BENCHMARK_CAPTURE(messages, none, 0)->Name("window open, no message")->Unit(benchmark::kMillisecond)->Iterations(4);
BENCHMARK_CAPTURE(messages, one, 1)->Name("window open, one message")->Unit(benchmark::kMillisecond)->Iterations(4);
BENCHMARK_CAPTURE(burst, shown, true)
    ->Name("500 messages/corvane")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();
BENCHMARK_CAPTURE(burst, hidden, false)
    ->Name("500 messages/headless")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();
BENCHMARK(threadInMemory)->Name("thread of 1000 in the window")->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(openedContact)->Name("contact with 1000 messages/painted")->Unit(benchmark::kMillisecond);

}

}

int main(int argc, char** argv)
{
    return corvane::bench::runWithWindow(argc, argv, corvane::bench::instance);
}
