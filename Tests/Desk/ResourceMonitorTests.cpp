#include "Desk/ResourceMonitor.h"
#include "Foundation/Literals.h"

#include "Desk/ResourcesView.h"
#include "Foundation/BackgroundQueue.h"
#include "Platform/AppPaths.h"
#include "Platform/Linux/Services.h"
#include "Platform/MachineFacts.h"
#include "Support/Await.h"
#include "Support/VirtualScheduler.h"

#include <QProcess>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace corvane;

namespace {

RunningProcess process(qint64 pid, const QString& command, const QString& arguments, qint64 megabytes = 1)
{
    RunningProcess result;
    result.pid = pid;
    result.residentBytes = megabytes << 20;
    result.command = command;
    result.arguments = arguments;
    result.isOfThisUser = true;
    return result;
}

QString roleOf(const QString& command, const QString& arguments)
{
    return ResourceProcessRow { 1, 1, 1, command, arguments }.role();
}

class Monitor : public testing::Test {
protected:
    /// Waits for the next reading.
    void waitForReading()
    {
        const qint64 before = monitor.snapshot().updatedAtMs;
        EXPECT_TRUE(await([&] { return monitor.snapshot().updatedAtMs > before; }));
    }

    VirtualScheduler clock;
    BackgroundQueue background;
    const AppPaths paths = AppPaths::fromEnvironment();
    const std::unique_ptr<MachineFacts> facts = makeMachineFacts(paths);
    ResourceMonitor monitor { *facts, background, clock };
};

}

TEST(ResourceSnapshots, aRoleIsToldByTheProgramAndNotByWhatItHasOpen)
{
    EXPECT_EQ(roleOf("corvane", "/usr/bin/corvane"), "Corvane");
    EXPECT_EQ(
        roleOf("node", "/usr/bin/node --max-old-space-size=384 /home/ana/whatsapp/src/main.ts"), "WhatsApp engine");
    EXPECT_EQ(roleOf("node", "node /home/ana/.npm/bin/codex chat"), "Codex");
    EXPECT_EQ(roleOf("claude", "claude"), "Claude");
    EXPECT_EQ(roleOf("node", "node server.js claude"), "Node");
    EXPECT_EQ(roleOf("chrome", "/opt/google/chrome/chrome --type=renderer"), "Chrome");
    EXPECT_EQ(roleOf("vim", "vim claude.md"), "app");
    EXPECT_EQ(roleOf("", ""), "app");
}

TEST(ResourceSnapshots, theLargestAreKeptAndEveryAgentEngineAndBrowser)
{
    ResourceReading reading;
    for (int i = 0; i < 40; ++i)
        reading.processes.append(process(100 + i, "editor", "editor", 1000 + i));
    reading.processes.append(process(200, "claude", "claude", 1));
    reading.processes.append(process(201, "node", "node engine.ts", 2));
    reading.processes.append(process(202, "chromium", "/usr/bin/chromium", 3));
    reading.processes.append(process(203, "chromium", "/usr/bin/chromium --type=renderer", 3));
    const ResourceSnapshot snapshot = snapshotOf(reading, 1);
    ASSERT_EQ(snapshot.topProcesses.size(), 24);
    EXPECT_EQ(snapshot.topProcesses.first().pid, 139);
    EXPECT_EQ(snapshot.topProcesses.last().pid, 200);
    EXPECT_EQ(snapshot.topProcesses.at(21).pid, 202);
    EXPECT_EQ(snapshot.localClaudeCount, 1);
    EXPECT_EQ(snapshot.nodeCount, 1);

    EXPECT_FALSE(isShort(snapshot));
    reading.compressedPages = 800'001;
    EXPECT_TRUE(isShort(snapshotOf(reading, 1)));
    reading.pressure = 10;
    EXPECT_FALSE(isShort(snapshotOf(reading, 1))) << "the kernel's own figure stands alone";
    reading.pressure = 10.1;
    EXPECT_TRUE(isShort(snapshotOf(reading, 1)));
}

TEST(ResourceSnapshots, whatMustNotEndIsProtected)
{
    ResourceReading reading;
    const auto add = [&](qint64 pid, const auto& change) {
        reading.processes.append(process(pid, "thing", "thing"));
        change(reading.processes.last());
    };
    constexpr qint64 own = 50;
    add(1, [](auto&) { });
    add(own, [](auto&) { });
    add(60, [](auto& engine) { engine.parentPid = own; });
    add(61, [](auto& other) { other.isOfThisUser = false; });
    add(62, [](auto& leader) { leader.leadsSession = true; });
    add(63, [](auto& display) { display.command = "Xwayland"; });
    add(70, [](auto& shell) {
        shell.parentPid = own;
        shell.hasOwnTerminal = true;
    });
    add(71, [](auto&) { });
    QList<qint64> free;
    for (const ResourceProcessRow& row : snapshotOf(reading, own).topProcesses) {
        if (!row.isProtected)
            free.append(row.pid);
    }
    EXPECT_EQ(free, (QList<qint64> { 70, 71 }));
}

TEST_F(Monitor, aSecondStartLeavesOneTimerAndAReadingRunsAlone)
{
    monitor.start();
    monitor.start();
    EXPECT_EQ(clock.pendingTimers(), 1);
    int readings = 0;
    QObject::connect(&monitor, &ResourceMonitor::changed, &monitor, [&] { ++readings; });
    monitor.refresh();
    waitForReading();
    EXPECT_EQ(readings, 1);
    clock.advance(seconds(8));
    waitForReading();
    EXPECT_EQ(readings, 2);
    EXPECT_GT(monitor.snapshot().physicalMemoryBytes, 0U);
    EXPECT_EQ(monitor.lastError(), "");
}

TEST_F(Monitor, aProcessEndsOnlyAfterTheQuestionAndLeavesTheList)
{
    // Direct children of this program are protected, but not their children.
    QProcess shell;
    shell.start("bash", { "-c", "(exec -a claude sleep 1000) & echo $!; wait" });
    ASSERT_TRUE(await([&] { return shell.canReadLine(); }));
    const QString number = QString::fromLatin1(shell.readLine()).trimmed();
    ResourcesView view;
    view.setMonitor(monitor);
    EXPECT_EQ(view.emptyText(), "The processes are being read.");
    view.setShown(true);
    const auto find = [&] {
        for (const ProcessItem& item : static_cast<RowListModel<ProcessItem>*>(view.processes())->rows()) {
            if (item.detail == "Claude · " + number)
                return item;
        }
        return ProcessItem();
    };
    const auto isListed = [&] {
        monitor.refresh();
        return !find().id.isEmpty();
    };
    ASSERT_TRUE(await(isListed));
    bool isRead = false;
    QObject::connect(&monitor, &ResourceMonitor::changed, &monitor, [&] { isRead = true; });
    EXPECT_TRUE(await([&] { return isRead; })) << "the reading that the last look began";
    EXPECT_EQ(view.emptyText(), "");
    view.terminate();
    const QString id = find().id;
    view.ask(id);
    EXPECT_TRUE(view.stepBack());
    view.terminate();
    EXPECT_EQ(shell.state(), QProcess::Running) << "nothing was asked, or it was taken back";
    view.ask(u"1:0"_s);
    EXPECT_EQ(view.asking(), "");

    view.ask(id);
    EXPECT_TRUE(view.questionText().startsWith("sleep (" + number + ") uses "));
    view.terminate();
    EXPECT_EQ(view.notice(), "");
    EXPECT_TRUE(shell.waitForFinished());
    clock.advance(Milliseconds(800));
    EXPECT_TRUE(await([&] { return find().id.isEmpty(); })) << "without another refresh";
    const ResourceProcessRow ended { number.toLongLong(), id.section(u':', 1).toULongLong(), 1, {}, {} };
    EXPECT_FALSE(monitor.terminate(ended));
    view.setShown(false);
    EXPECT_FALSE(view.stepBack());
}
