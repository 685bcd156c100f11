#include "Ordeal.h"
#include "Profile.h"

#include "Foundation/Literals.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

namespace corvane::torture {

namespace {

constexpr int messagesPerSecond = 10;

/// In KiB, from /proc: VmRSS is all resident memory, RssAnon the part not backed by files.
qint64 memory(qint64 process, const QByteArray& kind)
{
    QFile status(u"/proc/%1/status"_s.arg(process));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(kind + ':'))
            return line.simplified().split(' ').value(1).toLongLong();
    }
    return 0;
}

qsizetype descriptors(qint64 process)
{
    return QDir(u"/proc/%1/fd"_s.arg(process)).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

}

bool soak(const QString& program, int minutes)
{
    constexpr int msPerMinute = 60'000;
    constexpr double mostKiBPerHour = 1024;
    constexpr int history = 60'000; // messages that fill SQLite's caches, which hold 16 MiB
    constexpr int historySeconds = 1800;
    const int half = minutes / 2;
    Profile profile(program);
    QTextStream out(stdout);
    profile.start(
        { history + minutes * msPerMinute / 1000 * messagesPerSecond, 1000 / messagesPerSecond, 40, history });
    if (!waitFor([&] { return profile.books().acknowledged() >= history; }, historySeconds)) {
        out << "The history is not stored.\n";
        return false;
    }
    out << u"%1 %2 %3 %4 %5\n"_s.arg(u"minute"_s, 8)
               .arg(u"messages"_s, 10)
               .arg(u"memory KiB"_s, 12)
               .arg(u"private KiB"_s, 12)
               .arg(u"descriptors"_s, 12);
    qint64 settled = 0;
    qint64 all = 0;
    for (int minute = 1; minute <= minutes; ++minute) {
        pause(msPerMinute);
        if (!profile.isRunning()) {
            out << "The program ended.\n";
            return false;
        }
        all = memory(profile.processId(), "VmRSS"_ba);
        if (minute == half)
            settled = all;
        out << u"%1 %2 %3 %4 %5\n"_s.arg(minute, 8)
                   .arg(profile.books().acknowledged(), 10)
                   .arg(all, 12)
                   .arg(memory(profile.processId(), "RssAnon"_ba), 12)
                   .arg(descriptors(profile.processId()), 12)
            << Qt::flush;
    }
    const double hours = (minutes - half) / 60.0;
    const double growth = double(all - settled) / hours;
    out << u"In its second half it grew by %1 KiB an hour.\n"_s.arg(growth, 0, 'f', 0);
    return profile.stop() && growth <= mostKiBPerHour;
}

}
