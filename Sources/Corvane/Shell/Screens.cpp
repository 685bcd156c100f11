#include "Shell/Screens.h"

#include "Engines/EngineManager.h"
#include "Shell/CorvaneApp.h"
#include "Web/SessionStore.h"

namespace corvane {

Screens::Screens(CorvaneApp& app)
    : appearance(app.desktop(), app.defaults())
    , content(app.session(), app.defaults())
    , wall(app.session(), content)
    , shell(app.notifications(), app.defaults())
    , profile(app.session(), shell, app.engine().db(), app.notifications())
    , inbox({ app.engine(), app.store(), app.defaults(), app.notifications(), app.scheduler(), app.microphone(),
          app.paths() })
    , settings(
          { app.store(), app.engine(), app.session(), app.keychain(), app.defaults(), app.scheduler(), app.paths() })
{
    const auto showUnread = [this, &app] {
        shell.hubs()->setUnreadTotal(app.engine().unreadTotal());
    };
    QObject::connect(&app.engine(), &EngineManager::unreadTotalChanged, &shell, showUnread);
    showUnread();
    QObject::connect(&shell, &AppShell::conversationRequested, &inbox, &InboxView::select);
}

}
