#pragma once

#include "Presentation/Choice.h"
#include <QString>

namespace corvane {

class Desktop;
class UserDefaults;

/// Light or dark: following the desktop, or set by the user.
class Appearance : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString mode READ mode WRITE setMode NOTIFY changed)
    Q_PROPERTY(bool dark READ dark NOTIFY changed)
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY changed)
    Q_PROPERTY(QList<corvane::Choice> modes READ modes CONSTANT)
public:
    Appearance(Desktop& desktop, UserDefaults& defaults, QObject* parent = nullptr);

    const QString& mode() const { return m_mode; } ///< "desktop", "light" or "dark"
    void setMode(const QString& mode); ///< an unknown word has no effect
    bool dark() const;
    bool reducedMotion() const;
    QList<Choice> modes() const;

Q_SIGNALS:
    void changed();

private:
    Desktop& m_desktop;
    UserDefaults& m_defaults;
    QString m_mode;
};

}
