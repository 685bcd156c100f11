#include "Foundation/Literals.h"
#include "Rivals.h"

#include "Browser/ChromiumBrowserController.h"
#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Services.h"
#include "Platform/PortHolders.h"
#include "Platform/ProcessLauncher.h"
#include "UI/Dev/BrowserFrameItem.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QUrl>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <ctime>
#include <malloc.h>
#include <unistd.h>

namespace corvane::bench {

namespace {

/// Moves everywhere, so that each frame is new.
const char* const movingPage = "<title>moving</title><canvas id=c width=1280 height=800></canvas><script>"
                               "const g=c.getContext('2d');let n=0;(function f(){for(let i=0;i<40;++i){g.fillStyle="
                               "`hsl(${(n*7+i*9)%360} 70% 50%)`;g.fillRect((n*5+i*31)%1280,(i*20)%800,60,20)}++n;"
                               "requestAnimationFrame(f)})()</script>";

double cpuSeconds(clockid_t clock)
{
    timespec time {};
    ::clock_gettime(clock, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

/// A browser whose page is shown in a window, for a number of frames.
void frames(benchmark::State& state)
{
    constexpr int count = 100;
    SystemScheduler scheduler;
    QTemporaryDir home;
    const auto launcher = makeProcessLauncher(scheduler);
    const auto holders = makePortHolders();
    BrowserOptions options {
        .line = BrowserOptions::Line::Pipe, .hasSandbox = ::geteuid() != 0, .startLimit = Milliseconds(60'000)
    };
    const AppPaths paths { home.path(), home.path(), home.filePath(u"d.ini"_s), home.path() };
    ChromiumBrowserController browser({ scheduler, *launcher, *holders, paths, options });
    QQuickWindow window;
    window.resize(1280, 800);
    BrowserFrameItem item(window.contentItem());
    item.setSize({ 1280, 800 });
    item.setSurface(browser.surface());
    window.show();
    int shown = 0;
    QElapsedTimer arrival; // of a frame on its way to the screen
    bool isDecoded = false;
    double longest = 0;
    QObject::connect(&browser.page(), &BrowserPage::frame, [&arrival] {
        if (!arrival.isValid())
            arrival.start();
    });
    QObject::connect(browser.surface(), &BrowserSurface::frameChanged, [&] {
        ++shown;
        isDecoded = arrival.isValid();
    });
    QObject::connect(&window, &QQuickWindow::frameSwapped, [&] {
        if (!std::exchange(isDecoded, false))
            return;
        longest = std::max(longest, double(arrival.nsecsElapsed()) / 1e6);
        arrival.invalidate();
    });
    const auto turnUntil = [&](int frame) {
        while (shown < frame && (browser.isRunning() || browser.isConnecting()))
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    };
    QFile page(home.filePath(u"moving.html"_s));
    if (!page.open(QIODevice::WriteOnly) || page.write(movingPage) < 0)
        return state.SkipWithError("the page could not be written");
    page.close();
    browser.open(QUrl::fromLocalFile(page.fileName()).toString());
    turnUntil(10);
    if (!browser.isRunning())
        return state.SkipWithError(qPrintable(browser.lastError()));
    longest = 0;
    double cpu = 0;
    double wall = 0;
    for (auto _ : state) {
        const int before = shown;
        const double started = cpuSeconds(CLOCK_THREAD_CPUTIME_ID);
        QElapsedTimer timer;
        timer.start();
        turnUntil(before + count);
        cpu += cpuSeconds(CLOCK_THREAD_CPUTIME_ID) - started;
        wall += double(timer.nsecsElapsed()) / 1e9;
    }
    state.counters["frames a second"] = count * double(state.iterations()) / wall;
    state.counters["ms from arrival to the screen, at most"] = longest;
    state.counters["main thread, % of a core"] = 100 * cpu / wall;
}

class FedConnection final : public DevToolsConnection {
public:
    using DevToolsConnection::DevToolsConnection;
    using DevToolsConnection::receive;

protected:
    void write(const QByteArray&) override { }
};

QByteArray message(int n)
{
    const QJsonObject argument { { u"value"_s, u"problem %1 with password=secret%1"_s.arg(n) } };
    const QJsonObject kinds[] {
        { { u"method"_s, u"Runtime.consoleAPICalled"_s },
            { u"params"_s, QJsonObject { { u"type"_s, u"error"_s }, { u"args"_s, QJsonArray { argument } } } } },
        { { u"method"_s, u"Network.requestWillBeSent"_s },
            { u"params"_s,
                QJsonObject { { u"requestId"_s, QString::number(n) },
                    { u"request"_s, QJsonObject { { u"url"_s, u"http://x.example/%1"_s.arg(n) } } } } } },
        { { u"method"_s, u"Network.loadingFailed"_s },
            { u"params"_s, QJsonObject { { u"requestId"_s, QString::number(n) } } } }
    };
    return QJsonDocument(kinds[n % 3]).toJson(QJsonDocument::Compact);
}

/// One second of a page that logs endlessly; what is kept of it must not grow.
void messages(benchmark::State& state)
{
    constexpr int count = 10'000;
    SystemScheduler scheduler;
    QTemporaryDir home;
    const auto launcher = makeProcessLauncher(scheduler);
    const auto holders = makePortHolders();
    const AppPaths paths { home.path(), home.path(), home.filePath(u"d.ini"_s), home.path() };
    ChromiumBrowserController browser({ scheduler, *launcher, *holders, paths, {} });
    auto* const connection = new FedConnection;
    browser.adopt(connection);
    QList<QByteArray> all;
    for (int n = 0; n < count; ++n)
        all.append(message(n));
    const auto feed = [&] {
        for (const QByteArray& text : all)
            connection->receive(text);
        benchmark::DoNotOptimize(maskedConsole(browser.page()));
        QCoreApplication::processEvents();
    };
    feed();
    const size_t before = ::mallinfo2().uordblks;
    for (auto _ : state)
        feed();
    state.counters["bytes kept since the first"] = double(::mallinfo2().uordblks) - double(before);
    state.SetItemsProcessed(state.iterations() * count);
}

/// The same texts through Qt's JSON reader alone.
void bareMessages(benchmark::State& state)
{
    constexpr int count = 10'000;
    QList<QByteArray> all;
    for (int n = 0; n < count; ++n)
        all.append(message(n));
    for (auto _ : state) {
        for (const QByteArray& text : all)
            benchmark::DoNotOptimize(QJsonDocument::fromJson(text));
    }
    state.SetItemsProcessed(state.iterations() * count);
}

BENCHMARK(frames)->Name("frames of a moving page")->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(messages)->Name("10,000 messages/corvane")->Unit(benchmark::kMillisecond);
BENCHMARK(bareMessages)->Name("10,000 messages/Qt's JSON reader")->Unit(benchmark::kMillisecond);

}

}

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    const QGuiApplication application(argc, argv);
    return corvane::bench::runAgainstRivals(argc, argv);
}
