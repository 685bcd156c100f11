#include "Shell/AppShell.h"

#include "Foundation/UserDefaults.h"
#include "Support/Print.h"
#include "Support/Rows.h"
#include "Support/TemporaryHome.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace corvane {

namespace {

class Navigation : public testing::Test {
protected:
    void open() { shell = std::make_unique<AppShell>(centre, defaults); }
    QString kept() const { return defaults.text("nimb.selectedNav").value_or("none"); }
    QString place() const { return shell->selectedNav() + (shell->settings() ? "+settings" : QString()); }

    TemporaryHome home;
    UserDefaults defaults { home.paths().defaultsFile };
    NotificationCentre centre;
    std::unique_ptr<AppShell> shell;
};

}

TEST_F(Navigation, aFirstStartAndAnUnknownWordOpenTheInboxAndTheHubIsRemembered)
{
    open();
    EXPECT_EQ(place(), "inbox");
    EXPECT_EQ(kept(), "none") << "nothing is written before the user moves";
    defaults.setText("nimb.selectedNav", "Inbox2");
    open();
    EXPECT_EQ(place(), "inbox");

    shell->selectHub("cx");
    shell->toggleSettings();
    EXPECT_EQ(place(), "cx+settings");
    EXPECT_EQ(kept(), "cx");
    open();
    EXPECT_EQ(place(), "cx");
}

TEST_F(Navigation, theGearComesBackToTheHubAndAHubLeavesTheSettings)
{
    open();
    shell->selectHub("dev");
    shell->toggleSettings();
    shell->toggleSettings();
    EXPECT_EQ(place(), "dev");
    shell->openSettings();
    shell->openSettings();
    EXPECT_EQ(place(), "dev+settings");
    shell->selectHub("dev");
    EXPECT_EQ(place(), "dev");
    shell->selectHub("nowhere");
    EXPECT_EQ(place(), "dev");
}

TEST_F(Navigation, notificationsMoveTheShellEachToItsPlace)
{
    struct Case {
        QString name;
        std::optional<QString> object;
        QString place;
    };
    const QList<Case> cases {
        { notifications::openConversation, "ct:WHATSAPP:49", "inbox" },
        { notifications::openSettings, std::nullopt, "inbox+settings" },
        { notifications::openWorkConsole, "cx", "cx" },
        { notifications::openWorkConsole, "nowhere", "dev" },
        { notifications::openWorkConsole, std::nullopt, "dev" },
    };
    open();
    for (const Case& each : cases) {
        shell->selectHub("gtm");
        shell->openSettings();
        centre.post(each.name, each.object);
        EXPECT_EQ(place(), each.place);
        EXPECT_EQ(kept(), each.place.section(u'+', 0, 0));
    }
}

TEST_F(Navigation, theBarShowsTheHubsAndWhichOneIsChosen)
{
    open();
    TopHubBar& hubs = *shell->hubs();
    const QAbstractItemModelTester tester(&hubs, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QStringList rows;
    for (int row = 0; row < hubs.rowCount(); ++row)
        rows.append(QStringList { column(hubs, "raw")[row], column(hubs, "label")[row], column(hubs, "identifier")[row],
            column(hubs, "shortcut")[row], column(hubs, "selected")[row] }
                .join(u' '));
    EXPECT_EQ(rows,
        QStringList({ "lumo Lumo topnav.lumo Ctrl+1 false", "gtm GTM topnav.gtm Ctrl+2 false",
            "cx CX topnav.cx Ctrl+3 false", "ops Ops topnav.ops Ctrl+4 false", "inbox Inbox topnav.inbox Ctrl+5 true",
            "dev Dev topnav.dev Ctrl+6 false", "calendar Calendar topnav.calendar Ctrl+7 false",
            "today Today topnav.today Ctrl+8 false" }));

    shell->selectHub("lumo");
    EXPECT_EQ(column(hubs, "selected")[0], "true");
    EXPECT_EQ(column(hubs, "selected")[4], "false");
    shell->openSettings();
    EXPECT_EQ(column(hubs, "selected")[0], "false") << "the settings cover the hub";
}

TEST_F(Navigation, theUnreadBadgeStopsAtNinetyNine)
{
    open();
    TopHubBar& hubs = *shell->hubs();
    QSignalSpy changes(&hubs, &QAbstractItemModel::dataChanged);
    const QList<std::pair<int, QString>> cases { { 1, "1" }, { 99, "99" }, { 100, "99+" }, { 5000, "99+" }, { 0, "" },
        { -3, "" } };
    for (const auto& [count, badge] : cases) {
        hubs.setUnreadTotal(count);
        EXPECT_EQ(column(hubs, "badge")[4], badge) << count;
        EXPECT_EQ(column(hubs, "badge")[0], "");
    }
    EXPECT_EQ(changes.size(), 4) << "a badge that reads the same is not redrawn";
}

}
