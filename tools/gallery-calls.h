#pragma once

// The pictures of the calls.

#include "Calls/CallRecorder.h"
#include "Shell/Screens.h"
#include "Store/Work/CallWrites.h"

namespace corvane {

using namespace Qt::StringLiterals;

/// `wait` lets some time pass, `save` draws what is on the screen, `panel` what is in the panel.
template <typename Wait, typename Save, typename Panel>
void drawCalls(Screens& screens, LocalDB& db, Wait wait, Save save, Panel panel)
{
    constexpr Milliseconds pause { 400 };
    CallsView& calls = screens.calls;
    const auto open = [&](const QString& title) {
        calls.select(db.scalar(u"SELECT id FROM call_recording WHERE title=? AND deleted_at IS NULL;"_s, { title })
                .value_or(QString()));
        wait(pause);
    };
    const QString niche = u"Call about the niche and the lighting"_s;
    screens.shell.openCalls();
    calls.refresh();
    open(niche);
    save(u"calls-filled"_s);
    calls.setQuery(u"kelvin"_s);
    wait(pause);
    save(u"calls-search"_s);
    calls.setQuery(u"porcelain"_s);
    wait(pause);
    save(u"calls-nothing-found"_s);
    calls.setQuery({});
    open(u"Okafor: second delivery"_s);
    save(u"calls-without-summary"_s);
    open(u"Manual recording"_s);
    save(u"calls-interrupted"_s);
    calls.recording()->start();
    wait(pause);
    save(u"calls-consent"_s);
    calls.recording()->acceptConsent();
    calls.recording()->recorder().setSystemAudioEnabled(true);
    wait(pause);
    calls.recording()->mark();
    save(u"calls-recording"_s);
    screens.panel.setTab(u"calls"_s);
    panel(u"panel-calls"_s);
    calls.recording()->discard();
    screens.panel.setTab(u"now"_s);
    screens.settings.setSection(u"calls"_s);
    screens.shell.openSettings();
    save(u"settings-calls"_s);
    screens.settings.setSection(u"accounts"_s);
    screens.shell.closeSettings();
    db.run(u"UPDATE call_recording SET deleted_at=1;"_s);
    screens.shell.openCalls();
    calls.select({});
    calls.refresh();
    wait(pause);
    save(u"calls-empty"_s);
    db.run(u"UPDATE call_recording SET deleted_at=NULL;"_s);
    screens.shell.closeCalls();
}

}
