#include "Calls/CallsView.h"
#include "Desk/CorvaneMenuBarView.h"
#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Pages.h"

#include "Calls/CallRecorder.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "Store/Core/LocalDB.h"
#include "Store/Work/CallWrites.h"

namespace corvane {

void drawCalls(Gallery& gallery)
{
    constexpr Milliseconds pause { 400 };
    const std::initializer_list<Look> looks { Look::Light, Look::Dark, Look::LightSmall };
    CallsView& calls = *gallery.screens().calls;
    const auto open = [&](const QString& title) {
        calls.select(gallery.db()
                .scalar(u"SELECT id FROM call_recording WHERE title=? AND deleted_at IS NULL;"_s, { title })
                .value_or(QString()));
        gallery.wait(pause);
    };
    const QString niche = u"Call about the niche and the lighting"_s;
    gallery.screens().shell->openCalls();
    calls.refresh();
    open(niche);
    gallery.save(u"calls-filled"_s, looks);
    calls.setQuery(u"kelvin"_s);
    gallery.wait(pause);
    gallery.save(u"calls-search"_s, looks);
    calls.setQuery(u"porcelain"_s);
    gallery.wait(pause);
    gallery.save(u"calls-nothing-found"_s, looks);
    calls.setQuery({});
    open(u"Okafor: second delivery"_s);
    gallery.save(u"calls-without-summary"_s, looks);
    open(u"Manual recording"_s);
    gallery.save(u"calls-interrupted"_s, looks);
    calls.recording()->start();
    gallery.wait(pause);
    gallery.save(u"calls-consent"_s, looks);
    calls.recording()->acceptConsent();
    calls.recording()->recorder().setSystemAudioEnabled(true);
    gallery.wait(pause);
    calls.recording()->mark();
    gallery.save(u"calls-recording"_s, looks);
    gallery.screens().panel->setTab(u"calls"_s);
    gallery.savePanel(u"panel-calls"_s);
    calls.recording()->discard();
    gallery.screens().panel->setTab(u"now"_s);
    gallery.screens().settings->setSection(u"calls"_s);
    gallery.screens().shell->openSettings();
    CallSettings& settings = gallery.screens().callSettings;
    settings.setAutoRecord(true);
    gallery.wait(pause);
    gallery.save(u"settings-calls"_s, looks);
    settings.setAutoRecord(false);
    gallery.screens().settings->setSection(u"accounts"_s);
    gallery.screens().shell->closeSettings();
    gallery.db().run(u"UPDATE call_recording SET deleted_at=1;"_s);
    gallery.screens().shell->openCalls();
    calls.select({});
    calls.refresh();
    gallery.wait(pause);
    gallery.save(u"calls-empty"_s, looks);
    gallery.db().run(u"UPDATE call_recording SET deleted_at=NULL;"_s);
    gallery.screens().shell->closeCalls();
}

}
