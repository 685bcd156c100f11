#include "Foundation/Literals.h"
#include "Mirror.h"
#include "Rivals.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace corvane::bench {

namespace {

/// A profile that has passed the first-start wall, with the mirror or empty.
class Profile {
public:
    explicit Profile(bool withMirror)
    {
        QDir(m_folder.path()).mkpath(u"share/Corvane"_s);
        QDir(m_folder.path()).mkpath(u"config/Corvane"_s);
        QFile defaults(m_folder.filePath(u"config/Corvane/defaults.ini"_s));
        if (defaults.open(QIODevice::WriteOnly))
            defaults.write("[General]\nCorvane.continuedWithoutSigningIn=true\n");
        if (withMirror)
            QFile::copy(sharedMirror(QStringLiteral(CORVANE_MIRROR_FOLDER)),
                m_folder.filePath(u"share/Corvane/nimblocal.db"_s));
    }

    /// Starts the program with it, on the display if there is one, otherwise offscreen; returns when the first frame is
    /// on the screen. Includes starting the process.
    bool start(QProcess& program) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"HOME"_s, m_folder.path());
        environment.insert(u"XDG_DATA_HOME"_s, m_folder.filePath(u"share"_s));
        environment.insert(u"XDG_CONFIG_HOME"_s, m_folder.filePath(u"config"_s));
        environment.insert(u"CORVANE_SECRETS"_s, u"file"_s);
        if (!environment.contains(u"DISPLAY"_s) && !environment.contains(u"WAYLAND_DISPLAY"_s))
            environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        program.setProcessEnvironment(environment);
        program.setReadChannel(QProcess::StandardError);
        program.start(QStringLiteral(CORVANE_PROGRAM), QStringList());
        while (program.waitForReadyRead(10'000)) {
            while (program.canReadLine()) {
                if (program.readLine().contains("first frame"))
                    return true;
            }
        }
        return false;
    }

private:
    QTemporaryDir m_folder;
};

double residentMegabytes(qint64 pid)
{
    QFile status(u"/proc/%1/status"_s.arg(pid));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().chopped(3).toDouble() / 1024;
    }
    return 0;
}

void startToFirstFrame(benchmark::State& state, bool withMirror)
{
    const Profile profile(withMirror);
    double resident = 0;
    for ([[maybe_unused]] auto iteration : state) {
        QProcess program;
        if (!profile.start(program)) {
            state.SkipWithError("the program showed nothing");
            return;
        }
        state.PauseTiming();
        resident = residentMegabytes(program.processId());
        program.terminate();
        program.waitForFinished();
        state.ResumeTiming();
    }
    state.counters["resident_MB"] = resident;
}

BENCHMARK_CAPTURE(startToFirstFrame, mirror, true)->Name("start/corvane")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(startToFirstFrame, empty, false)
    ->Name("start/emptyProfile")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}

}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    return corvane::bench::runAgainstRivals(argc, argv);
}
