// A program writes 100 MB to a terminal: to a process that only reads it, through the session alone, with the
// transcript, and in a window. Also measures key latency and drawing.

#include "Foundation/Literals.h"
#include "Foundation/SystemScheduler.h"
#include "UI/Terminals/TerminalItem.h"
#include "UI/Terminals/TerminalTextNode.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace corvane::bench {

namespace {

constexpr qint64 megabytes = 100;

/// Plain lines, or lines with as many colours as compilers and listings use.
QString fileOf(const QTemporaryDir& folder, bool colored)
{
    const QString path = folder.filePath(colored ? u"colored"_s : u"plain"_s);
    if (QFile::exists(path))
        return path;
    QByteArray lines;
    for (int i = 0; lines.size() < 1 << 20; ++i) {
        const QByteArray number = QByteArray::number(i);
        lines += colored ? "\x1b[3" + QByteArray::number(i % 8) + "mwarning\x1b[0m: line " + number
                         : "The quick brown fox jumps over the lazy dog, line " + number;
        lines += '\n';
    }
    lines.truncate(1 << 20);
    QFile file(path);
    static_cast<void>(file.open(QIODevice::WriteOnly));
    for (qint64 i = 0; i < megabytes; ++i)
        file.write(lines);
    return path;
}

const QTemporaryDir& folder()
{
    static const QTemporaryDir folder;
    return folder;
}

terminal::Command printing(const QString& path)
{
    return { "/bin/cat", { path.toStdString() }, {}, {}, {} };
}

void report(benchmark::State& state)
{
    state.SetBytesProcessed(state.iterations() * (megabytes << 20));
}

/// The limit of the system's pseudo-terminal.
void readAlone(benchmark::State& state)
{
    const QString path = fileOf(folder(), state.range(0));
    std::vector<char> buffer(64 * 1024);
    for (auto _ : state) {
        auto pty = terminal::Pty::spawn(printing(path), { 200, 50, 8, 17 });
        pollfd waiting { pty->descriptor(), POLLIN, 0 };
        ssize_t count = 1;
        while (count > 0 || (count < 0 && errno == EAGAIN)) {
            poll(&waiting, 1, -1);
            count = read(pty->descriptor(), buffer.data(), buffer.size());
        }
        pty->reap();
    }
    report(state);
}

void sessionAlone(benchmark::State& state)
{
    const QString path = fileOf(folder(), state.range(0));
    for (auto _ : state) {
        terminal::Session session({ 200, 50, 8, 17 }, {});
        static_cast<void>(session.start(printing(path)));
        session.waitForExit(std::chrono::minutes(5));
    }
    report(state);
}

void withTranscript(benchmark::State& state)
{
    const QString path = fileOf(folder(), state.range(0));
    SystemScheduler scheduler;
    for (auto _ : state) {
        LumoTerminalSession session({ .title = u"cat"_s, .command = printing(path) }, scheduler);
        session.view({ 200, 50, 8, 17 });
        session.terminal()->waitForExit(std::chrono::minutes(5));
        benchmark::DoNotOptimize(session.transcript().snapshot(24'000));
    }
    report(state);
}

struct Shown {
    Shown()
    {
        window.resize(200 * 8 + 4, 50 * 17 + 4);
        item.setParentItem(window.contentItem());
        item.setSize(window.size());
        window.show();
    }

    QQuickWindow window;
    TerminalItem item;
};

/// From a key to the frame that shows the system's echo.
void keyToFrame(benchmark::State& state)
{
    SystemScheduler scheduler;
    Shown shown;
    TerminalItem& item = shown.item;
    LumoTerminalSession session({ .title = u"cat"_s, .command = { "/bin/cat", {}, {}, {}, {} } }, scheduler);
    item.setSession(&session);
    bool isDrawn = false;
    QObject::connect(&shown.window, &QQuickWindow::frameSwapped, [&isDrawn] { isDrawn = true; });
    const auto awaitFrame = [&isDrawn] {
        isDrawn = false;
        while (!isDrawn)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    };
    awaitFrame();
    for (auto _ : state) {
        const QVariant before = item.inputMethodQuery(Qt::ImCursorRectangle);
        QKeyEvent key(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, u"x"_s);
        QCoreApplication::sendEvent(&item, &key);
        while (item.inputMethodQuery(Qt::ImCursorRectangle) == before)
            awaitFrame();
    }
    item.setSession(nullptr);
}

void inWindow(benchmark::State& state)
{
    const QString path = fileOf(folder(), state.range(0));
    SystemScheduler scheduler;
    Shown shown;
    QQuickWindow& window = shown.window;
    TerminalItem& item = shown.item;
    QElapsedTimer frame;
    double total = 0;
    double longest = 0;
    int frames = 0;
    QObject::connect(&window, &QQuickWindow::afterAnimating, [&] { frame.start(); });
    QObject::connect(&window, &QQuickWindow::frameSwapped, [&] {
        const double spent = double(frame.nsecsElapsed()) / 1e6;
        total += spent;
        longest = std::max(longest, spent);
        ++frames;
    });
    for (auto _ : state) {
        LumoTerminalSession session({ .title = u"cat"_s, .command = printing(path) }, scheduler);
        item.setSession(&session);
        while (!session.exitStatus())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        item.setSession(nullptr);
    }
    report(state);
    state.counters["frames"] = double(frames) / double(state.iterations());
    state.counters["frame_ms"] = total / std::max(1, frames);
    state.counters["longest_ms"] = longest;
}

/// Every row of 200x50 in 24-bit colours, redrawn as images or as quads for a GPU.
void repaint(benchmark::State& state)
{
    TerminalPainter painter(terminalFontFamily(), 14);
    terminal::Terminal terminal({ 200, 50, 8, 17 });
    std::string text;
    for (int i = 0; i < 200 * 50; ++i)
        text += "\x1b[38;2;" + std::to_string(i % 256) + ";200;90m\x1b[48;2;20;" + std::to_string(i / 64) + ";60m"
            + char('a' + i % 26);
    terminal.feed(text);
    terminal::Snapshot snapshot;
    terminal.snapshot(0, snapshot);
    const TerminalLook look = TerminalLook::of(snapshot);
    const bool asQuads = state.range(0);
    TerminalTextMaterial material;
    for (auto _ : state) {
        for (const terminal::ShownRow& row : snapshot.rows) {
            if (asQuads)
                benchmark::DoNotOptimize(TerminalTextNode(material, *painter.quads(row, 200, look), 1));
            else
                benchmark::DoNotOptimize(painter.row(row, 200, look));
        }
    }
}

void wholeSnapshot(benchmark::State& state)
{
    terminal::Terminal terminal({ 200, 50, 8, 17 });
    terminal.feed(std::string(200 * 50, 'x'));
    terminal::Snapshot snapshot;
    for (auto _ : state) {
        if (state.range(0))
            snapshot.rows.clear();
        terminal.snapshot(0, snapshot);
    }
}

}

BENCHMARK(readAlone)->ArgName("colored")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(sessionAlone)->ArgName("colored")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(withTranscript)->ArgName("colored")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(inWindow)->ArgName("colored")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(keyToFrame)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(repaint)->ArgName("quads")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(wholeSnapshot)->ArgName("changed")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

}

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
