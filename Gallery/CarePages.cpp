#include "Care/Doctor/DoctorView.h"
#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Pages.h"

#include "Care/Backup/BackupKeeper.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"

namespace corvane {

void drawCare(Gallery& gallery)
{
    Screens& screens = gallery.screens();
    screens.shell->openSettings();
    screens.settings->setSection(u"care"_s);
    gallery.save(u"settings-care"_s, { Look::Light, Look::DarkSmall });
    BackupKeeper& backups = gallery.app().backups();
    backups.backUpNow();
    screens.doctor->check();
    gallery.save(u"settings-care-busy"_s, { Look::Light });
    while (backups.busy() || screens.doctor->busy())
        gallery.wait(Milliseconds(100));
    gallery.save(u"settings-care-checked"_s, { Look::Light, Look::Dark });
    screens.settings->setSection(u"accounts"_s);
    screens.shell->closeSettings();
}

}
