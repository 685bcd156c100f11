#pragma once

#include <QObject>
#include <QStringList>

namespace corvane {

class GlobalShortcuts;
class UserDefaults;

/// A global shortcut that the user can change. The choice is stored in the defaults.
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
        QStringList keys; ///< the default keys, the preferred first, such as "Ctrl+Alt+N"
        QString command; ///< a command line that does the same, for the desktop's keyboard settings
    };

    /// `shortcuts` may be none; both outlive the key.
    HotKey(const Definition& definition, GlobalShortcuts* shortcuts, UserDefaults& defaults, QObject* parent = nullptr);
    ~HotKey() override;

    const QString& id() const { return m_definition.id; }
    const QString& label() const { return m_definition.label; }
    QString keys() const; ///< the active ones, else the wanted ones
    QString hint() const; ///< what the user should know, or do if it does not work
    bool isWrong() const; ///< the hint says why it does not work

    void bind(); ///< a second call has no effect
    void unbind();
    bool isBound() const;
    QString bindingText() const; ///< for the log: "install=1 register=0 (Ctrl+Alt+N)"

    /// Sets what the user pressed, as Qt::Key and Qt::KeyboardModifiers. False, without effect, for a modifier alone,
    /// and for a key used in typing without a modifier.
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
