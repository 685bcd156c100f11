// Runs fault-injection tests against the program for a given time and prints the results. tools/torture builds and
// starts it.

#include "Child.h"
#include "Hosted.h"
#include "Ordeal.h"

#include "Foundation/Literals.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QTextStream>
#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::torture;

namespace {

const std::vector<OrdealKind> kinds {
    { "ingest", "kill -9 while messages are stored", 1, ingestKills },
    { "delivery", "kill -9 while drafts are sent", 1, deliveryKills },
    { "undo", "kill -9 while verdicts can be undone", 1, undoKills },
    { "search", "kill -9 while the search index is built", 1, searchKills },
    { "backup", "kill -9 of a backup beside the program", 1, backupKills },
    { "disk", "a disk that is full for a while", 30, smallDisk },
    { "lock", "another program holds the database", 30, heldDatabase },
    { "full", "the disk is full at a write", 10, fullDiskAtEachWrite },
    { "power", "power cut at a write", 10, powerCuts },
    { "first", "power cut at a write of the first start", 10, powerCutsAtFirstStart },
};

struct Running {
    const OrdealKind& kind;
    std::unique_ptr<Ordeal> ordeal;
    Tally tally {};
    qint64 ms = 0;
};

bool writeFile(const char* path, const QByteArray& text)
{
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    const bool written = file >= 0 && ::write(file, text.constData(), size_t(text.size())) == text.size();
    ::close(file);
    return written;
}

/// Creates separate network and mount namespaces: Corvane clears its tool server's port, and a small disk is mounted.
bool leaveTheMachineAlone()
{
    constexpr int own = CLONE_NEWNS | CLONE_NEWNET;
    const QByteArray user = QByteArray::number(::getuid());
    const QByteArray group = QByteArray::number(::getgid());
    if (::unshare(own) != 0
        && (::unshare(own | CLONE_NEWUSER) != 0 || !writeFile("/proc/self/setgroups", "deny")
            || !writeFile("/proc/self/uid_map", "0 " + user + " 1")
            || !writeFile("/proc/self/gid_map", "0 " + group + " 1")))
        return false;
    return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

void print(const std::vector<Running>& all)
{
    QTextStream out(stdout);
    out << u"%1 %2 %3 %4 %5 %6 %7\n"_s.arg(u""_s, -42)
               .arg(u"runs"_s, 6)
               .arg(u"acked"_s, 8)
               .arg(u"lost"_s, 5)
               .arg(u"twice"_s, 6)
               .arg(u"faults"_s, 7)
               .arg(u"seconds"_s, 8);
    for (const Running& each : all) {
        const Tally& tally = each.tally;
        out << u"%1 %2 %3 %4 %5 %6 %7\n"_s.arg(QString::fromLatin1(each.kind.title), -42)
                   .arg(tally.runs, 6)
                   .arg(tally.acknowledged, 8)
                   .arg(tally.lost, 5)
                   .arg(tally.twice, 6)
                   .arg(tally.faults.size(), 7)
                   .arg(double(each.ms) / 1000, 8, 'f', 1);
        for (const QString& fault : tally.faults.first(std::min<qsizetype>(3, tally.faults.size())))
            out << "    " << fault << '\n';
    }
}

/// Runs rounds until the time or the number of rounds is reached.
int run(const QString& program, const QStringList& only, int rounds, int minutes, quint32 seed)
{
    std::vector<Running> all;
    for (const OrdealKind& kind : kinds) {
        if (only.isEmpty() || only.contains(QString::fromLatin1(kind.id)))
            all.push_back({ kind, kind.make(program) });
    }
    Random random(seed);
    const QDeadlineTimer end(std::chrono::minutes { minutes });
    QElapsedTimer timer;
    const auto timed = [&timer](Running& each, const auto& work) {
        timer.start();
        work();
        each.ms += timer.elapsed();
    };
    for (int round = 0; minutes > 0 ? !end.hasExpired() : round < rounds; ++round) {
        for (Running& each : all) {
            if (round % each.kind.every == 0)
                timed(each, [&] { each.ordeal->round(each.tally, random); });
        }
    }
    for (Running& each : all)
        timed(each, [&] { each.ordeal->finish(each.tally); });
    print(all);
    const bool clean = std::ranges::all_of(all, [](const Running& each) { return each.tally.isClean(); });
    return clean ? 0 : 1;
}

}

int main(int argc, char** argv)
{
    if (!leaveTheMachineAlone()) {
        qCritical("This needs namespaces of its own, and the system allows none.");
        return 2;
    }
    openNursery(runHosted);
    const QCoreApplication application(argc, argv);
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& message) {
        if (type != QtInfoMsg) // the store logs each injected fault at this level
            std::fprintf(stderr, "%s\n", qPrintable(message));
    });
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption program(
        u"program"_s, u"Corvane; else the same without a window, hosted here, which starts sooner."_s, u"PATH"_s);
    const QCommandLineOption minutes(u"minutes"_s, u"How long."_s, u"N"_s);
    const QCommandLineOption rounds(u"rounds"_s, u"How many rounds instead."_s, u"N"_s, u"1"_s);
    const QCommandLineOption only(u"only"_s, u"Some of them: ingest, disk and so on."_s, u"NAME,NAME"_s);
    const QCommandLineOption seed(u"seed"_s, u"For the moments of the kills."_s, u"N"_s, u"1"_s);
    const QCommandLineOption soaks(u"soak"_s, u"Ten messages a second instead, for so many minutes."_s, u"N"_s);
    parser.addOptions({ program, minutes, rounds, only, seed, soaks });
    parser.process(application);
    if (parser.isSet(soaks))
        return soak(parser.value(program), parser.value(soaks).toInt()) ? 0 : 1;
    return run(parser.value(program), parser.value(only).split(u',', Qt::SkipEmptyParts), parser.value(rounds).toInt(),
        parser.value(minutes).toInt(), parser.value(seed).toUInt());
}
