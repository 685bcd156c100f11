#include "Shell/LoginWallView.h"

#include "Foundation/Literals.h"
#include "Shell/ContentView.h"
#include "Web/SessionStore.h"

namespace corvane {

LoginWallView::LoginWallView(SessionStore& session, ContentView& content, QObject* parent)
    : QObject(parent)
    , m_session(session)
    , m_content(content)
{
    connect(&m_session, &SessionStore::changed, this, [this] {
        if (m_session.signedIn())
            m_password.clear();
        Q_EMIT changed();
    });
}

void LoginWallView::setEmail(const QString& email)
{
    if (m_email == email)
        return;
    m_email = email;
    Q_EMIT changed();
}

void LoginWallView::setPassword(const QString& password)
{
    if (m_password == password)
        return;
    m_password = password;
    Q_EMIT changed();
}

bool LoginWallView::canSubmit() const
{
    return !busy() && !m_email.trimmed().isEmpty() && !m_password.isEmpty();
}

bool LoginWallView::busy() const
{
    return m_session.busy();
}

QString LoginWallView::lastError() const
{
    return m_session.lastErrorText();
}

QString LoginWallView::primaryLabel() const
{
    return busy() ? u"Signing in…"_s : u"Sign in"_s;
}

void LoginWallView::submit()
{
    if (canSubmit())
        m_session.signIn(m_email.trimmed(), m_password);
}

void LoginWallView::signInWithBrowser()
{
    m_session.startSignIn();
}

void LoginWallView::continueWithoutSigningIn()
{
    m_content.continueWithoutSigningIn();
}

}
