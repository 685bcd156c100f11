#include "Platform/MachineResources.h"

#include "Foundation/Literals.h"
#include "Support/Await.h"
#include "Support/Environment.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QFile>
#include <QProcess>
#include <algorithm>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace corvane;

namespace {

std::optional<RunningProcess> find(const ResourceReading& reading, qint64 pid)
{
    const auto found = std::ranges::find(reading.processes, pid, &RunningProcess::pid);
    return found == reading.processes.end() ? std::nullopt : std::optional(*found);
}

}

TEST(MachineResources, aChildIsReadWithItsPlaceAndItsMemory)
{
    QProcess child;
    child.start("bash", { "-c", "exec -a 'a (strange)\nname' sleep 1000" });
    ASSERT_TRUE(child.waitForStarted());
    std::optional<RunningProcess> read;
    EXPECT_TRUE(await([&] {
        read = find(*readResources(), child.processId());
        return read && read->command == "sleep";
    }));
    EXPECT_EQ(read->arguments, "a (strange) name 1000");
    EXPECT_EQ(read->parentPid, ::getpid());
    EXPECT_GT(read->residentBytes, 100'000);
    EXPECT_TRUE(read->isOfThisUser);
    EXPECT_FALSE(read->hasOwnTerminal);

    EXPECT_FALSE(askToEnd(read->pid, read->startTime + 1)) << "the number belongs to another by now";
    EXPECT_EQ(child.state(), QProcess::Running);
    EXPECT_TRUE(askToEnd(read->pid, read->startTime));
    EXPECT_TRUE(child.waitForFinished());
    EXPECT_EQ(child.exitStatus(), QProcess::CrashExit);
    EXPECT_FALSE(askToEnd(read->pid, read->startTime)) << "it has ended";
    EXPECT_FALSE(askToEnd(qint64(1) << 40, 0));
}

TEST(MachineResources, whatTheKernelKeepsCompressedAndHowProgramsWaitAreRead)
{
    TemporaryHome home;
    const QString root = home.path("root");
    EXPECT_FALSE(readResources(root)) << "no /proc";
    home.write("root/proc/meminfo", "MemTotal: 16000000 kB\nZswap: 1000 kB\nZswapped:        4000 kB\n");
    home.write("root/sys/block/zram0/mm_stat", "  8192000 100 200 0 0 0 0 0\n");
    home.write("root/proc/12/stat", "12 (broken");
    home.write("root/proc/13/stat", "13 (kthread) S 2 0 0 0 -1 0 0 0 0 0 0 0 0 0 0 0 0 0 99 0 0 0\n");
    home.write("root/proc/14/stat", "14 (cut-at-fifteen-) S 1 1 1 5 -1 0 0 0 0 0 0 0 0 0 0 0 0 0 77 0 3 0\n");
    home.write("root/proc/14/cmdline", QByteArray("/opt/cut-at-fifteen-letters\0--flag\0", 35));
    const auto reading = readResources(root);
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading->compressedPages, (4'096'000 + 8'192'000) / reading->pageSize);
    EXPECT_FALSE(reading->pressure) << "an older kernel";
    ASSERT_EQ(reading->processes.size(), 1);
    const RunningProcess& process = reading->processes.first();
    EXPECT_EQ(process.command, "cut-at-fifteen-letters");
    EXPECT_EQ(process.arguments, "/opt/cut-at-fifteen-letters --flag");
    EXPECT_EQ(process.startTime, 77U);
    EXPECT_EQ(process.residentBytes, qint64(3 * reading->pageSize));
    EXPECT_TRUE(process.hasOwnTerminal);

    for (const QByteArray& text : { QByteArray("full avg10=1.00\n"), QByteArray("some avg10=? avg60=1\n") }) {
        home.write("root/proc/pressure/memory", text);
        EXPECT_FALSE(readResources(root)->pressure) << text.constData();
    }
    home.write("root/proc/pressure/memory", "some avg10=12.34 avg60=1.00 avg300=0.00 total=1\nfull avg10=1.00\n");
    EXPECT_EQ(readResources(root)->pressure, 12.34);
}

TEST(MachineResources, aProcessIsToldByItsFieldsAndWhatIsKnownIsNotReadAgain)
{
    TemporaryHome home;
    const Environment environment { { "XDG_SESSION_ID", "3" } };
    const QString root = home.path("root");
    const auto put
        = [&](const QByteArray& pid, const QByteArray& name, const QByteArray& session, const QByteArray& tty,
              const QByteArray& start, const QByteArray& pages, const QByteArray& line, int flags = 0) {
              home.write("root/proc/" + pid + "/stat",
                  pid + " (" + name + ") S 1 1 " + session + ' ' + tty + " -1 " + QByteArray::number(flags)
                      + " 0 0 0 0 0 0 0 0 0 0 0 0 " + start + " 0 " + pages + " 0\n");
              home.write("root/proc/" + pid + "/cmdline", line);
          };
    put("20", "corvane", "21", "34816", "5", "1", "corvane");
    ASSERT_TRUE(QFile::link(root + "/proc/20", root + "/proc/self"));
    put("21", "bash", "21", "34816", "5", "2", QByteArray("bash\0-l x\0", 10));
    put("22", "desktop", "22", "0", "5", "2", "desktop");
    put("23", "vim", "23", "34817", "5", "2", "vim");
    put("24", "gone", "24", "0", "5", "0", "");
    put("25", "swapped", "25", "0", "5", "0", "/bin/swapped");
    put("26", "kernel", "26", "0", "5", "2", "", 0x00200000);
    put("99", "nine", "99", "0", "5", "2", "other");
    home.write("root/proc/100", "no folder");
    home.write("root/run/systemd/sessions/3", "UID=1000\nLEADER=22\n");
    home.write("root/run/systemd/sessions/4", "LEADER=23\n");
    const auto told = [&](const QList<RunningProcess>& before) {
        QStringList rows;
        for (const RunningProcess& each : readResources(root, before)->processes)
            rows.append(u"%1 %2 [%3]%4%5"_s.arg(QString::number(each.pid), each.command, each.arguments,
                each.hasOwnTerminal ? u" terminal"_s : u""_s, each.leadsSession ? u" leads"_s : u""_s));
        rows.sort();
        return rows.join('\n');
    };
    const auto reading = readResources(root);
    EXPECT_EQ(told({}),
        "20 corvane [corvane]\n21 bash [bash -l x] leads\n22 desktop [desktop] leads\n23 vim [vim] terminal\n"
        "25 swapped [/bin/swapped]\n99 nine [other]");

    // The same process keeps what was read of it; another one, or one that became another program, is read anew.
    put("21", "bash", "21", "34816", "6", "2", "bash again");
    put("22", "other", "22", "0", "5", "2", "other");
    put("23", "vim", "23", "0", "5", "2", "not read");
    QList<RunningProcess> before = reading->processes;
    std::ranges::find(before, 20, &RunningProcess::pid)->isOfThisUser = false;
    std::ranges::find(before, 25, &RunningProcess::pid)->arguments.clear();
    EXPECT_EQ(told(before),
        "20 corvane [corvane]\n21 bash [bash again] leads\n22 other [other] leads\n23 vim [vim]\n"
        "25 swapped [/bin/swapped]\n99 nine [other]");
    const auto again = readResources(root, before);
    EXPECT_FALSE(find(*again, 20)->isOfThisUser) << "nor is its user";
    EXPECT_TRUE(find(*again, 21)->isOfThisUser);
    EXPECT_EQ(find(*again, 20)->kernelName, "corvane");
    EXPECT_EQ(find(*again, 22)->kernelName, "other");
    EXPECT_EQ(find(*again, 22)->parentPid, 1);
}
