#pragma once

#include <QObject>
#include <QStringList>

namespace corvane {

class GlobalShortcuts;
class UserDefaults;

/// A key of the whole desktop that the user can change. The choice is kept in the defaults.
class HotKey : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString id READ id CONSTANT)
    Q_PROPERTY(QString label READ label CONSTANT)
    Q_PROPERTY(QString keys READ keys NOTIFY changed)
    Q_PROPERTY(QString hint READ hint NOTIFY changed)
public:
    struct Definition {
        QString id; ///< such as "capture"
        QString label; ///< what it does
        QStringList keys; ///< that it has at first, the preferred first, such as "Ctrl+Alt+N"
        QString command; ///< of the program, which does the same, for the keyboard settings of the desktop
    };

    /// `shortcuts` may be none; both outlive the key.
    HotKey(const Definition& definition, GlobalShortcuts* shortcuts, UserDefaults& defaults, QObject* parent = nullptr);
    ~HotKey() override;

    const QString& id() const { return m_definition.id; }
    const QString& label() const { return m_definition.label; }
    QString keys() const; ///< in force, or else those that are wished for
    QString hint() const; ///< what the user has to know, or to do where it does not work
    bool isWrong() const; ///< the hint says why it does not work

    void bind(); ///< again: nothing
    void unbind();
    bool isBound() const;
    QString bindingText() const; ///< for the log: "install=1 register=0 (Ctrl+Alt+N)"

    /// What the user pressed, as a Qt::Key and Qt::KeyboardModifiers. A key that would be missed when typing needs
    /// another one held with it; it and a modifier alone change nothing. False for those.
    Q_INVOKABLE bool choose(int key, int modifiers);

Q_SIGNALS:
    void pressed();
    void released();
    void changed();

private:
    QStringList wished() const;
    QString defaultsKey() const;

    Definition m_definition;
    GlobalShortcuts* m_shortcuts;
    UserDefaults& m_defaults;
    bool m_isAsked = false;
};

}
