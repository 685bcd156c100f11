#include "Platform/MachineResources.h"

#include "Support/Await.h"
#include "Support/TemporaryHome.h"

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

    home.write("root/proc/pressure/memory", "some avg10=12.34 avg60=1.00 avg300=0.00 total=1\nfull avg10=1.00\n");
    EXPECT_EQ(readResources(root)->pressure, 12.34);
}
