#include "Shell/ContentView.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Web/SessionStore.h"

namespace corvane {

namespace {

const QString continuedKey = u"Corvane.continuedWithoutSigningIn"_s;

}

ContentView::ContentView(SessionStore& session, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_session(session)
    , m_defaults(defaults)
{
    decide();
    connect(&m_session, &SessionStore::changed, this, &ContentView::decide);
    connect(&m_session, &SessionStore::signedOut, this, [this] {
        m_defaults.remove(continuedKey);
        decide();
    });
}

void ContentView::continueWithoutSigningIn()
{
    m_defaults.setBoolean(continuedKey, true);
    decide();
}

void ContentView::decide()
{
    const bool showsWall
        = !m_session.signedIn() && !m_session.isAwaited() && !m_defaults.boolean(continuedKey).value_or(false);
    if (showsWall == m_showsWall)
        return;
    m_showsWall = showsWall;
    Q_EMIT showsWallChanged();
}

}
