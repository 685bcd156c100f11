#include "Shell/AppTray.h"

#include "Approvals/ApprovalsStore.h"
#include "Calendar/CalendarServices.h"
#include "Calls/CallServices.h"
#include "Engines/EngineManager.h"
#include "Shell/CorvaneApp.h"
#include "Shell/ProgramCommands.h"
#include "Shell/StoreRecovery.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreHealth.h"

namespace corvane {

namespace {

const QString openWindow = u"openWindow"_s;

// The ids of the menu, in order; the last one is separated.
const QStringList menu { openWindow, u"openApprovals"_s, recordCommand, markCommand, captureCommand, u"openSettings"_s,
    u"quit"_s };

}

AppTray::AppTray(CorvaneApp& app, Tray& tray)
    : m_app(app)
    , m_tray(tray)
    , m_label(app.calendar().store, app.resources(), tray, app.scheduler(), nullptr)
{
    connect(&tray, &Tray::activated, this, [&app](const QPoint& at) {
        if (!app.isQuitting())
            Q_EMIT app.panelRequested(at);
    });
    connect(&tray, &Tray::itemChosen, this, [&app](const QString& id) {
        // A problem of the database is explained in the window.
        app.commands().run(menu.contains(id) ? id : openWindow);
    });
    connect(&app.engine(), &EngineManager::unreadTotalChanged, this,
        [&app, &tray] { tray.setUnread(app.engine().unreadTotal()); });
    connect(&app.approvals(), &ApprovalsStore::changed, this,
        [&app, &tray] { tray.setWaiting(waitingForDecision(app.approvals())); });
    connect(&app.calls().recording, &RecordingView::changed, this, &AppTray::showRecording);
    connect(&app.calls().recording, &RecordingView::ticked, this, &AppTray::showRecording);
    connect(&app.db().health(), &StoreHealth::changed, this, &AppTray::showMenu);
    connect(&app.recovery(), &StoreRecovery::changed, this, &AppTray::showMenu);
    showMenu();
}

void AppTray::showRecording()
{
    const CallRecorder& recorder = m_app.calls().recorder;
    const int minutes = recorder.isRecording() ? int(recorder.elapsed()) / 60 : -1;
    if (std::exchange(m_minutes, minutes) == minutes)
        return;
    m_tray.setRecording(recorder.isRecording());
    showMenu();
}

/// The database's problem comes first, abbreviated for a menu, then the running recording.
void AppTray::showMenu()
{
    QList<Tray::Item> items;
    QList<Tray::Item> ofRecording;
    const CallRecorder& recorder = m_app.calls().recorder;
    for (const QString& id : menu) {
        const Tray::Item item { id, m_app.commands().find(id)->tray };
        const bool isOfCalls = id == recordCommand || id == markCommand;
        if (recorder.isRecording() && isOfCalls)
            ofRecording.append(item);
        else if (id != markCommand)
            items.append(item);
    }
    items.insert(items.size() - 1, Tray::Item());
    if (recorder.isRecording()) {
        ofRecording.first().label = u"Stop Recording (%1 min)"_s.arg(int(recorder.elapsed()) / 60);
        items = ofRecording + QList<Tray::Item> { {} } + items;
    }
    if (const QString trouble = m_app.storeTrouble(); !trouble.isEmpty())
        items = QList<Tray::Item> { { u"trouble"_s, trouble.section(u". "_s, 0, 0) }, {} } + items;
    m_tray.setMenu(items);
}

}
