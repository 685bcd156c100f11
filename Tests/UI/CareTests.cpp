#include "Care/Backup/BackupKeeper.h"
#include "Care/Doctor/DoctorView.h"
#include "Engines/AccountStore.h"
#include "Foundation/Literals.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "Support/Await.h"
#include "UI/WindowTest.h"

namespace corvane {

namespace {

class CareWindow : public WindowTest { };

}

TEST_F(CareWindow, aPersonBacksUpLooksWhatIsWrongAndReadsTheHelp)
{
    showInbox();
    settings.setSection(u"care"_s);
    shell.openSettings();
    rest();
    click(u"care.backUp"_s);
    EXPECT_NE(findItem(u"care.backup.cancel"_s), nullptr);
    ASSERT_TRUE(await([this] { return !app.backups().busy(); }));
    rest();
    EXPECT_EQ(findItem(u"care.backup.cancel"_s), nullptr);
    EXPECT_EQ(keptBackups(app.backups().folder()).size(), 1);

    home.write(u"share/Corvane/accounts.json"_s, "[{"_ba);
    click(u"care.check"_s);
    ASSERT_TRUE(await([this] { return !screens.doctor->busy(); }));
    rest();
    EXPECT_EQ(screens.doctor->findings().first().stateText(), u"Broken"_s);
    EXPECT_NE(findItem(u"care.check"_s), nullptr);
    picture();

    press(Qt::Key_F1);
    rest();
    click(u"help.3"_s);
    EXPECT_TRUE(item(u"help.text"_s)->property("text").toString().contains(u"The desktop's keyring"_s));
}

}
