#pragma once

#include "Foundation/Literals.h"

#include <QObject>

namespace corvane {

class SessionStore;
class UserDefaults;

/// The window's one decision: the wall, or the shell. It hides the screens and never the work behind them.
class ContentView : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool showsWall READ showsWall NOTIFY showsWallChanged)
    Q_PROPERTY(QString title READ title CONSTANT)
public:
    ContentView(SessionStore& session, UserDefaults& defaults, QObject* parent = nullptr);

    /// False with a token of any kind, while the keyring has not said whether there is one, and after
    /// `continueWithoutSigningIn`.
    bool showsWall() const { return m_showsWall; }
    QString title() const { return u"Corvane"_s; } ///< the window's

    /// Opens the shell on this machine alone; remembered until a sign-out.
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
