#include "Desk/CorvaneMenuBarView.h"
#include "Desk/ResourceMonitor.h"
#include "Foundation/Literals.h"
#include "Shell/AppShell.h"
#include "Shell/Notices.h"
#include "Support/Await.h"
#include "UI/PanelWindow.h"
#include "UI/WindowTest.h"

#include <QProcess>

namespace corvane {

namespace {

class ResourcesWindow : public WindowTest {
protected:
    void TearDown() override
    {
        turnTo(nullptr);
        panel.hide();
        WindowTest::TearDown();
    }

    PanelWindow panel { window.engine(), *screens.panel, *screens.notices, clock };
};

}

TEST_F(ResourcesWindow, aProcessIsEndedFromThePanelWithKeysAfterAQuestion)
{
    QProcess shell;
    shell.start(u"bash"_s, { u"-c"_s, u"(exec -a claude sleep 1000) & echo $!; wait"_s });
    ASSERT_TRUE(await([&] { return shell.canReadLine(); }));
    const QString detail = u"Claude · "_s + QString::fromLatin1(shell.readLine()).trimmed();
    showEmptyInbox();
    ResourcesView& resources = *screens.panel->resources();
    panel.toggle({});
    rest();
    turnTo(panel.window());
    click(u"panel.ram"_s);
    rest();
    QString id;
    EXPECT_TRUE(await([&] {
        app.resources().refresh();
        const HoldingListModel* rows = resources.processes();
        for (int i = 0; i < rows->rowCount() && id.isEmpty(); ++i) {
            const auto value = [&](const QByteArray& role) {
                return rows->index(i, 0).data(rows->roleNames().key(role)).toString();
            };
            if (value("detail") == detail)
                id = value("id");
        }
        return !id.isEmpty();
    }));
    rest();
    EXPECT_EQ(findItem(u"ram.empty"_s), nullptr);
    resources.ask(id);
    rest();
    EXPECT_NE(item(u"ram.question"_s), nullptr);
    EXPECT_TRUE(focusWithin(u"ram.cancel"_s));
    press(Qt::Key_Escape);
    EXPECT_EQ(findItem(u"ram.question"_s), nullptr);
    EXPECT_TRUE(panel.isShown());
    resources.ask(id);
    rest();
    click(u"ram.terminate"_s);
    EXPECT_TRUE(await([&] { return shell.state() == QProcess::NotRunning; }));
    rest();
    EXPECT_TRUE(focusWithin(u"ram.processes"_s));
    press(Qt::Key_Escape);
    EXPECT_FALSE(panel.isShown());
}

}
