#pragma once

#include "Foundation/Literals.h"

#include <QObject>

namespace corvane {

class SessionStore;
class UserDefaults;

/// Decides what the window shows: the login wall, or the shell. Background work continues behind the wall.
class ContentView : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool showsWall READ showsWall NOTIFY showsWallChanged)
    Q_PROPERTY(QString title READ title CONSTANT)
public:
    ContentView(SessionStore& session, UserDefaults& defaults, QObject* parent = nullptr);

    /// False if there is a token of any kind, while the keyring has not answered, and after `continueWithoutSigningIn`.
    bool showsWall() const { return m_showsWall; }
    QString title() const { return u"Corvane"_s; } ///< the window title

    /// Opens the shell without an account; remembered until sign-out.
    void continueWithoutSigningIn();

Q_SIGNALS:
    void showsWallChanged();

private:
    void decide();

    SessionStore& m_session;
    UserDefaults& m_defaults;
    bool m_showsWall = true;
};

}
