#pragma once

#include "Foundation/Literals.h"

#include <QObject>

namespace corvane {

class Tray;
class UserDefaults;

/// Without a tray icon a closed window leaves no trace of the running program. The user is told so once, when the
/// window is first closed.
class ClosingNotice : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString text READ text CONSTANT)
    Q_PROPERTY(QString closeLabel READ closeLabel CONSTANT)
    Q_PROPERTY(QString quitLabel READ quitLabel CONSTANT)
public:
    /// Both outlive the notice; null if there is no tray.
    ClosingNotice(const Tray* tray, UserDefaults& defaults, QObject* parent = nullptr);

    QString title() const { return u"Corvane keeps working"_s; }
    QString text() const;
    QString closeLabel() const { return u"Close the window"_s; }
    QString quitLabel() const { return u"Quit Corvane"_s; }

    Q_INVOKABLE bool due() const; ///< call it before the window closes
    Q_INVOKABLE void said(); ///< never shown again

private:
    const Tray* m_tray;
    UserDefaults& m_defaults;
};

}
