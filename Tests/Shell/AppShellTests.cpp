#include "Shell/AppShell.h"

#include "Foundation/UserDefaults.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace corvane {

namespace {

class Navigation : public testing::Test {
protected:
    void open() { shell = std::make_unique<AppShell>(centre, defaults); }
    QString kept() const { return defaults.text(QStringLiteral("nimb.selectedNav")).value_or(QStringLiteral("none")); }
    QString place() const
    {
        return shell->selectedNav() + (shell->settings() ? QStringLiteral("+settings") : QString());
    }

    TemporaryHome home;
    UserDefaults defaults { home.paths().defaultsFile };
    NotificationCentre centre;
    std::unique_ptr<AppShell> shell;
};

QString role(const QAbstractItemModel& model, int row, const char* name)
{
    return model.data(model.index(row, 0), model.roleNames().key(name)).toString();
}

}

TEST_F(Navigation, aFirstStartAndAnUnknownWordOpenTheInbox)
{
    open();
    EXPECT_EQ(place(), "inbox");
    EXPECT_EQ(kept(), "none") << "nothing is written before the user moves";
    defaults.setText(QStringLiteral("nimb.selectedNav"), QStringLiteral("Inbox2"));
    open();
    EXPECT_EQ(place(), "inbox");
}

TEST_F(Navigation, theHubIsRememberedAndTheSettingsAreNot)
{
    open();
    shell->selectHub(QStringLiteral("cx"));
    shell->toggleSettings();
    EXPECT_EQ(place(), "cx+settings");
    EXPECT_EQ(kept(), "cx");
    open();
    EXPECT_EQ(place(), "cx");
}

TEST_F(Navigation, theGearComesBackToTheHubAndAHubLeavesTheSettings)
{
    open();
    shell->selectHub(QStringLiteral("dev"));
    shell->toggleSettings();
    shell->toggleSettings();
    EXPECT_EQ(place(), "dev");
    shell->openSettings();
    shell->openSettings();
    EXPECT_EQ(place(), "dev+settings");
    shell->selectHub(QStringLiteral("dev"));
    EXPECT_EQ(place(), "dev");
    shell->selectHub(QStringLiteral("nowhere"));
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
        { notifications::openConversation, QStringLiteral("ct:WHATSAPP:49"), "inbox" },
        { notifications::openSettings, std::nullopt, "inbox+settings" },
        { notifications::openWorkConsole, QStringLiteral("cx"), "cx" },
        { notifications::openWorkConsole, QStringLiteral("nowhere"), "dev" },
        { notifications::openWorkConsole, std::nullopt, "dev" },
    };
    open();
    for (const Case& each : cases) {
        shell->selectHub(QStringLiteral("gtm"));
        shell->openSettings();
        centre.post(each.name, each.object);
        EXPECT_EQ(place(), each.place);
        EXPECT_EQ(kept(), each.place.section(u'+', 0, 0));
    }
}

TEST_F(Navigation, aConversationIsAskedForOnlyOnceTheInboxIsInFront)
{
    open();
    shell->selectHub(QStringLiteral("ops"));
    QStringList asked;
    QObject::connect(shell.get(), &AppShell::conversationRequested, shell.get(),
        [&](const QString& contactId) { asked.append(contactId + u'@' + place()); });
    centre.post(notifications::openConversation, QStringLiteral("ct:1"));
    centre.post(notifications::openConversation, QStringLiteral("ct:1"));
    centre.post(notifications::openConversation, QString());
    EXPECT_EQ(asked, QStringList({ "ct:1@inbox", "ct:1@inbox" }));
}

TEST_F(Navigation, aShellThatIsGoneHearsNothing)
{
    open();
    shell.reset();
    centre.post(notifications::openWorkConsole, QStringLiteral("cx"));
    EXPECT_EQ(kept(), "none");
}

TEST_F(Navigation, theBarShowsSixHubsAndWhichOneIsChosen)
{
    open();
    TopHubBar& hubs = *shell->hubs();
    const QAbstractItemModelTester tester(&hubs, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QStringList rows;
    for (int row = 0; row < hubs.rowCount(); ++row)
        rows.append(QStringList { role(hubs, row, "raw"), role(hubs, row, "label"), role(hubs, row, "identifier"),
            role(hubs, row, "shortcut"), role(hubs, row, "selected") }
                .join(u' '));
    EXPECT_EQ(rows,
        QStringList({ "lumo Lumo topnav.lumo Ctrl+1 false", "gtm GTM topnav.gtm Ctrl+2 false",
            "cx CX topnav.cx Ctrl+3 false", "ops Ops topnav.ops Ctrl+4 false", "inbox Inbox topnav.inbox Ctrl+5 true",
            "dev Dev topnav.dev Ctrl+6 false" }));

    shell->selectHub(QStringLiteral("lumo"));
    EXPECT_EQ(role(hubs, 0, "selected"), "true");
    EXPECT_EQ(role(hubs, 4, "selected"), "false");
    shell->openSettings();
    EXPECT_EQ(role(hubs, 0, "selected"), "false") << "the settings cover the hub";
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
        EXPECT_EQ(role(hubs, 4, "badge"), badge) << count;
        EXPECT_EQ(role(hubs, 0, "badge"), "");
    }
    EXPECT_EQ(changes.size(), 4) << "a badge that reads the same is not redrawn";
}

}
