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

/// A profile of its own that passes the wall, with the mirror in it or with nothing.
class Profile {
public:
    explicit Profile(bool withMirror)
    {
        QDir(m_folder.path()).mkpath(QStringLiteral("share/Corvane"));
        QDir(m_folder.path()).mkpath(QStringLiteral("config/Corvane"));
        QFile defaults(m_folder.filePath(QStringLiteral("config/Corvane/defaults.ini")));
        if (defaults.open(QIODevice::WriteOnly))
            defaults.write("[General]\nCorvane.continuedWithoutSigningIn=true\n");
        if (withMirror)
            QFile::copy(sharedMirror(QStringLiteral(CORVANE_MIRROR_FOLDER)),
                m_folder.filePath(QStringLiteral("share/Corvane/nimblocal.db")));
    }

    /// Starts the program in it, on the display that is there, or else offscreen; returns once the first frame is
    /// on the screen. The start includes the process itself.
    bool start(QProcess& program) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), m_folder.path());
        environment.insert(QStringLiteral("XDG_DATA_HOME"), m_folder.filePath(QStringLiteral("share")));
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_folder.filePath(QStringLiteral("config")));
        environment.insert(QStringLiteral("CORVANE_SECRETS"), QStringLiteral("file"));
        if (!environment.contains(QStringLiteral("DISPLAY"))
            && !environment.contains(QStringLiteral("WAYLAND_DISPLAY")))
            environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
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
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
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
