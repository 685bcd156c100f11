#include "Desk/ResourcesView.h"

#include "Desk/ResourceMonitor.h"
#include "Foundation/BackgroundQueue.h"
#include "Support/Await.h"
#include "Support/FakeLanguageModel.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"

#include <QSignalSpy>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace corvane;

namespace {

constexpr int base = 1'000'000'000; ///< no process of this machine has so high a number

/// A machine whose /proc the test writes.
class Resources : public testing::Test {
protected:
    Resources()
    {
        view.setMonitor(monitor);
        QObject::connect(&monitor, &ResourceMonitor::changed, &view, [this] { ++readings; });
        lumo.machine.now.physicalMemoryBytes = 16'000'000'000;
    }

    void run(int pid, const QByteArray& name, int pages)
    {
        const QByteArray number = QByteArray::number(pid);
        home.write("root/proc/" + QString::fromLatin1(number) + "/stat",
            number + " (" + name + ") S 2 2 2 0 -1 0 0 0 0 0 0 0 0 0 0 0 0 0 77 0 " + QByteArray::number(pages)
                + " 0\n");
        home.write("root/proc/" + QString::fromLatin1(number) + "/cmdline", name + '\0');
    }

    void read()
    {
        const int before = readings;
        monitor.refresh();
        EXPECT_TRUE(await([&] { return readings > before; }));
    }

    QStringList names()
    {
        QStringList names;
        for (const ProcessItem& item : static_cast<RowListModel<ProcessItem>*>(view.processes())->rows())
            names.append(
                item.name + u' ' + item.detail + u' ' + item.memory + (item.canEnd ? u" can end"_s : QString()));
        return names;
    }

    TemporaryHome home;
    VirtualScheduler clock;
    FakeLumo lumo;
    BackgroundQueue background;
    ResourceMonitor monitor { lumo.machine, background, clock, home.path("root") };
    ResourcesView view;
    int readings = 0;
    const quint64 page = quint64(::sysconf(_SC_PAGESIZE));
};

}

TEST_F(Resources, theTabSaysWhatRunsAndWhenMemoryIsShort)
{
    view.setShown(true);
    EXPECT_TRUE(await([&] { return readings == 1; }));
    EXPECT_EQ(view.memoryText() + view.countsText() + view.warningTitle() + view.warningText(), "");
    EXPECT_FALSE(view.emptyText().isEmpty());
    EXPECT_NE(view.emptyText(), "The processes are being read.") << "there is no /proc";

    const QByteArray total = "MemTotal: 16000000 kB\n";
    home.write("root/proc/meminfo", total);
    run(base + 11, "claude", 3);
    run(base + 12, "codex", 2);
    run(base + 13, "node", 1);
    read();
    EXPECT_EQ(view.emptyText(), "");
    EXPECT_EQ(view.memoryText(), "16.0 GB of memory");
    EXPECT_EQ(view.countsText(), "1 Claude · 1 Codex · 1 Node");
    EXPECT_EQ(view.warningTitle() + view.warningText(), "");
    const auto line = [&](const char* words, quint64 pages) {
        return QString::fromUtf8(words) + u' ' + formatBytes(pages * page) + u" can end"_s;
    };
    EXPECT_EQ(names(),
        QStringList({ line("claude Claude · 1000000011", 3), line("codex Codex · 1000000012", 2),
            line("node Node · 1000000013", 1) }));

    const quint64 many = 800'001 * page;
    home.write("root/proc/meminfo", total + "Zswapped: " + QByteArray::number(many / 1024) + " kB\n");
    lumo.machine.now.physicalMemoryBytes = 8'000'000'000;
    read();
    EXPECT_EQ(view.memoryText(), u"16.0 GB of memory · %1 kept compressed"_s.arg(formatBytes(many)));
    EXPECT_EQ(view.warningTitle(), "RAM pressure high · compressor 800001");
    EXPECT_EQ(view.warningText(), "Builds should wait until compressor drops below 800k pages.");
    home.write("root/proc/pressure/memory", "some avg10=12.60 avg60=1.00 avg300=0.00 total=1\n");
    read();
    EXPECT_EQ(view.warningTitle(), "RAM pressure high · programs waited 13% of the time");
    EXPECT_EQ(view.warningText(), "Builds should wait until it drops below 10%.");
}

TEST_F(Resources, aTabThatIsShownAgainBeginsWithTheLastReading)
{
    home.write("root/proc/meminfo", "MemTotal: 16000000 kB\n");
    run(base + 11, "claude", 3);
    read();
    EXPECT_EQ(names(), QStringList()) << "nobody looks";
    const QSignalSpy changes(&view, &ResourcesView::changed);
    view.setShown(true);
    EXPECT_EQ(names().size(), 1) << "without waiting for the next";
    EXPECT_EQ(changes.size(), 1);
    view.setShown(true);
    EXPECT_EQ(changes.size(), 1);
    EXPECT_TRUE(await([&] { return readings == 2; }));
    EXPECT_EQ(changes.size(), 2);
}

TEST_F(Resources, aProcessThatHasEndedIsNamedAndItsQuestionGoes)
{
    home.write("root/proc/meminfo", "MemTotal: 16000000 kB\n");
    run(1, "init", 9);
    run(base, "claude", 3);
    view.setShown(true);
    EXPECT_TRUE(await([&] { return readings == 1; }));
    const auto rows = static_cast<RowListModel<ProcessItem>*>(view.processes())->rows();
    ASSERT_EQ(rows.size(), 2);
    view.ask(rows[0].id);
    EXPECT_EQ(view.asking(), "") << "it is protected";
    const QSignalSpy changes(&view, &ResourcesView::changed);
    view.ask(rows[1].id);
    EXPECT_EQ(view.asking(), rows[1].id);
    EXPECT_TRUE(view.questionText().startsWith("claude (1000000000) uses "));
    EXPECT_EQ(changes.size(), 1);
    view.terminate();
    EXPECT_EQ(view.notice(), "claude couldn't be ended. It may have ended by itself.");
    EXPECT_EQ(view.asking() + view.questionText(), "");
    EXPECT_EQ(changes.size(), 2);
    EXPECT_TRUE(await([&] { return readings == 2; })) << "the list is read again";
    view.ask(rows[1].id);
    EXPECT_EQ(view.notice(), "");
    EXPECT_TRUE(view.stepBack());
    EXPECT_EQ(view.asking(), "");
    EXPECT_EQ(changes.size(), 5);
    view.ask(rows[1].id);
    view.setShown(false);
    EXPECT_EQ(view.asking(), "") << "a tab that is left asks nothing";

    view.setShown(true);
    EXPECT_TRUE(await([&] { return readings == 3; }));
    view.ask(rows[1].id);
    home.write("root/proc/1000000000/stat", "gone");
    read();
    EXPECT_EQ(view.asking(), "");
    view.terminate();
    EXPECT_EQ(view.notice(), "");
}

TEST(ResourcesWithoutAMonitor, nothingIsReadAndNothingIsShown)
{
    ResourcesView view;
    EXPECT_FALSE(view.hasMonitor());
    view.setShown(true);
    EXPECT_EQ(view.processes()->rowCount(), 0);
    EXPECT_EQ(view.emptyText(), "The processes are being read.");
    view.terminate();
    EXPECT_EQ(view.notice(), "");
}
