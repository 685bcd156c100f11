#include "Calendar/CalendarView.h"
#include "Foundation/Literals.h"
#include "PlayedProgram.h"

#include "Calendar/CalendarServices.h"
#include "Platform/AppPaths.h"
#include "Platform/CalendarSource.h"
#include "Platform/Linux/Services.h"
#include "Shell/AppShell.h"
#include "Shell/ContentView.h"

#include <QDateTime>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace corvane::bench {

namespace {

constexpr int files = 5000;
constexpr int series = 500; ///< of these, recur every week without end
constexpr qint64 dayMs = 86'400'000;

/// An hour in the year around now, or in each week from then on.
void writeEvent(const QString& folder, int number, const QString& title)
{
    const QDateTime start = QDateTime::currentDateTime().addDays(number % 730 - 365).addSecs(number % 9 * 3600);
    QFile file(folder + u"/%1.ics"_s.arg(number));
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//bench//EN\r\nBEGIN:VEVENT\r\nUID:"
        + QByteArray::number(number) + "@bench.example\r\nDTSTAMP:20260101T000000Z\r\nDTSTART;TZID=Europe/Berlin:"
        + start.toString(u"yyyyMMdd'T'HHmmss"_s).toLatin1() + "\r\nDURATION:PT1H\r\n"
        + (number < series ? "RRULE:FREQ=WEEKLY\r\n" : "") + "SUMMARY:" + title.toUtf8()
        + "\r\nLOCATION:Room 1\r\nDESCRIPTION:What is talked about\\, and by whom.\r\nORGANIZER;CN=Ana "
          "Ruiz:mailto:ana@bench.example\r\nATTENDEE;CN=Bo:mailto:bo@bench.example\r\nEND:VEVENT\r\n"
          "END:VCALENDAR\r\n");
}

void writeEvents(const QString& folder)
{
    QDir().mkpath(folder);
    for (int i = 0; i < files; ++i)
        writeEvent(folder, i, u"Event %1"_s.arg(i));
}

/// A calendar of 5,000 files in its own home.
class Folder {
public:
    Folder()
        : m_nowMs(QDateTime::currentMSecsSinceEpoch())
        , m_folder(m_home.filePath(u"share/calendars/work"_s))
    {
        writeEvents(m_folder);
        QDir().mkpath(m_home.filePath(u"config/khal"_s));
        QFile config(m_home.filePath(u"config/khal/config"_s));
        if (config.open(QIODevice::WriteOnly))
            config.write("[calendars]\n[[work]]\npath = " + m_folder.toUtf8()
                + "\n[locale]\ndateformat = %Y-%m-%d\nlongdateformat = %Y-%m-%d\ndatetimeformat = %Y-%m-%d %H:%M\n"
                  "longdatetimeformat = %Y-%m-%d %H:%M\ntimeformat = %H:%M\n");
    }

    AppPaths paths() const { return { m_home.path(), m_home.filePath(u"share/Corvane"_s), {}, {} }; }

    CalendarReading read(CalendarSource& source) const
    {
        return source.read({}, m_nowMs - dayMs, m_nowMs + 60 * dayMs);
    }

    void changeOne() { writeEvent(m_folder, files / 2, u"Changed %1"_s.arg(++m_changes)); }

    bool khal()
    {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"HOME"_s, m_home.path());
        environment.insert(u"XDG_DATA_HOME"_s, m_home.filePath(u"khal"_s));
        environment.insert(u"XDG_CONFIG_HOME"_s, m_home.filePath(u"config"_s));
        environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
        program.setProcessEnvironment(environment);
        program.start(u"khal"_s, { u"list"_s, u"today"_s, u"60d"_s });
        return program.waitForFinished(600'000) && program.exitCode() == 0;
    }
    void forgetKhal() { QDir(m_home.filePath(u"khal"_s)).removeRecursively(); }

private:
    const qint64 m_nowMs;
    const QTemporaryDir m_home;
    const QString m_folder;
    int m_changes = 0;
};

/// The window over the same calendar, on its page.
class Bench {
public:
    Bench()
    {
        writeEvents(m_program.folder.filePath(u"calendars/work"_s));
        CalendarStore& store = m_program.app.calendar().store;
        store.requestAccess();
        while (store.events().isEmpty())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        m_program.screens.content->continueWithoutSigningIn();
        m_program.window.show();
        m_program.screens.shell->selectHub(u"calendar"_s);
        paint();
    }

    CalendarView& calendar() { return *m_program.screens.calendar; }
    void paint() { benchmark::DoNotOptimize(m_program.window.window()->grabWindow()); }

private:
    PlayedProgram m_program;
};

std::unique_ptr<Bench> instance; // destroyed before the application object, as its window requires

Bench& bench()
{
    if (!instance)
        instance = std::make_unique<Bench>();
    return *instance;
}

/// The next week, and back: layout and tiles.
void nextWeek(benchmark::State& state)
{
    CalendarView& calendar = bench().calendar();
    calendar.today();
    for (int step = 1; auto _ : state) {
        calendar.step(step);
        step = -step;
        state.counters["events"] = double(calendar.tiles()->layout().blocks.size());
    }
}
BENCHMARK(nextWeek)->Name("calendar week/corvane")->Unit(benchmark::kMillisecond);

/// The same including drawing, in memory.
void nextWeekDrawn(benchmark::State& state)
{
    bench().calendar().today();
    for (int step = 1; auto _ : state) {
        bench().calendar().step(step);
        step = -step;
        bench().paint();
    }
}
BENCHMARK(nextWeekDrawn)->Name("calendar week drawn/corvane")->Unit(benchmark::kMillisecond);

void sameWeekDrawn(benchmark::State& state)
{
    for (auto _ : state)
        bench().paint();
}
BENCHMARK(sameWeekDrawn)->Name("calendar week drawn/again")->Unit(benchmark::kMillisecond);

Folder& folder()
{
    static Folder made;
    return made;
}

void firstReading(benchmark::State& state)
{
    for (auto _ : state) {
        const auto source = makeCalendarSource(folder().paths());
        const CalendarReading reading = folder().read(*source);
        state.counters["events"] = double(reading.entries.size());
    }
}
BENCHMARK(firstReading)->Name("calendar first/corvane")->Unit(benchmark::kMillisecond);

/// Weeks a year ahead, one after the other, as when paging.
void weekOutside(benchmark::State& state)
{
    constexpr qint64 weekMs = 7 * dayMs;
    const auto source = makeCalendarSource(folder().paths());
    folder().read(*source);
    qint64 fromMs = QDateTime::currentMSecsSinceEpoch() + 52 * weekMs;
    for (auto _ : state) {
        const CalendarReading reading = source->readKnown({}, fromMs, fromMs + weekMs);
        state.counters["events"] = double(reading.entries.size());
        fromMs += weekMs;
    }
}
BENCHMARK(weekOutside)->Name("calendar week outside the mirror/corvane")->Unit(benchmark::kMillisecond);

void oneFileChanged(benchmark::State& state)
{
    const auto source = makeCalendarSource(folder().paths());
    folder().read(*source);
    for (auto _ : state) {
        state.PauseTiming();
        folder().changeOne();
        state.ResumeTiming();
        benchmark::DoNotOptimize(folder().read(*source));
    }
}
BENCHMARK(oneFileChanged)->Name("calendar file/corvane")->Unit(benchmark::kMillisecond);

void firstReadingByKhal(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        folder().forgetKhal();
        state.ResumeTiming();
        if (!folder().khal())
            return state.SkipWithError("khal does not run");
    }
}
BENCHMARK(firstReadingByKhal)
    ->Name("calendar first/khal")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1)
    ->Repetitions(2);

void oneFileChangedByKhal(benchmark::State& state)
{
    folder().khal();
    for (auto _ : state) {
        state.PauseTiming();
        folder().changeOne();
        state.ResumeTiming();
        if (!folder().khal())
            return state.SkipWithError("khal does not run");
    }
}
BENCHMARK(oneFileChangedByKhal)
    ->Name("calendar file/khal")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1)
    ->Repetitions(2);

}

}

int main(int argc, char** argv)
{
    return corvane::bench::runWithWindow(argc, argv, corvane::bench::instance);
}
