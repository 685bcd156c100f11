#pragma once

#include "Foundation/Literals.h"

#include <QObject>

namespace corvane {

class Tray;
class UserDefaults;

/// Where no tray shows the program, a closed window leaves nothing to see of it. That is said once, at the first
/// closing.
class ClosingNotice : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString text READ text CONSTANT)
    Q_PROPERTY(QString closeLabel READ closeLabel CONSTANT)
    Q_PROPERTY(QString quitLabel READ quitLabel CONSTANT)
public:
    /// Both outlive the notice; null for no tray at all.
    ClosingNotice(const Tray* tray, UserDefaults& defaults, QObject* parent = nullptr);

    QString title() const { return u"Corvane keeps working"_s; }
    QString text() const;
    QString closeLabel() const { return u"Close the window"_s; }
    QString quitLabel() const { return u"Quit Corvane"_s; }

    Q_INVOKABLE bool due() const; ///< asked before the window closes
    Q_INVOKABLE void said(); ///< never again

private:
    const Tray* m_tray;
    UserDefaults& m_defaults;
};

}
