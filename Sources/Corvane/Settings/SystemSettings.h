#pragma once

#include "Foundation/Literals.h"

#include <QList>
#include <QObject>
#include <QString>

namespace corvane {

class Autostart;
class HotKey;
class Keychain;
class UserDefaults;
struct AppPaths;

/// Settings of this machine: its start, banners, keys, and storage locations.
class SystemSettings : public QObject {
    Q_OBJECT
    Q_MOC_INCLUDE("Platform/HotKey.h")
    Q_PROPERTY(bool canStartAtLogin READ canStartAtLogin CONSTANT)
    Q_PROPERTY(bool startsAtLogin READ startsAtLogin WRITE setStartsAtLogin NOTIFY changed)
    Q_PROPERTY(QString startLabel READ startLabel CONSTANT)
    Q_PROPERTY(QString startHint READ startHint NOTIFY changed) ///< or why it could not be changed
    Q_PROPERTY(bool notifyOnNewMessage READ notifyOnNewMessage WRITE setNotifyOnNewMessage NOTIFY changed)
    Q_PROPERTY(QString notifyLabel READ notifyLabel CONSTANT)
    Q_PROPERTY(QString notifyHint READ notifyHint CONSTANT)
    Q_PROPERTY(bool returnSends READ returnSends WRITE setReturnSends NOTIFY changed)
    Q_PROPERTY(QString returnSendsLabel READ returnSendsLabel CONSTANT)
    Q_PROPERTY(QString returnSendsHint READ returnSendsHint CONSTANT)
    Q_PROPERTY(int hotKeyCount READ hotKeyCount CONSTANT)
    Q_PROPERTY(QString secretsPlace READ secretsPlace NOTIFY changed)
    Q_PROPERTY(bool canUnlock READ canUnlock NOTIFY changed)
    Q_PROPERTY(QString dataFolder READ dataFolder CONSTANT)
public:
    /// `autostart` may be null.
    SystemSettings(UserDefaults& defaults, Keychain& keychain, const AppPaths& paths, Autostart* autostart,
        QObject* parent = nullptr);

    bool canStartAtLogin() const { return m_autostart != nullptr; }
    bool startsAtLogin() const;
    void setStartsAtLogin(bool on);
    static QString startLabel() { return u"Start when you log in"_s; }
    QString startHint() const;
    bool notifyOnNewMessage() const; ///< on by default
    void setNotifyOnNewMessage(bool on);
    QString notifyLabel() const { return u"Notify on new messages"_s; }
    QString notifyHint() const { return u"Banners for new messages and pending approvals."_s; }
    bool returnSends() const; ///< off by default
    void setReturnSends(bool on);
    QString returnSendsLabel() const { return u"Return sends"_s; }
    QString returnSendsHint() const { return u"Shift+Return begins a new line. Ctrl+Return sends either way."_s; }
    int hotKeyCount() const { return int(m_hotKeys.size()); }
    Q_INVOKABLE corvane::HotKey* hotKey(int index) const { return m_hotKeys.value(index); }
    void setHotKeys(const QList<HotKey*>& hotKeys) { m_hotKeys = hotKeys; } ///< before the window
    QString secretsPlace() const; ///< such as "the desktop's keyring"
    bool canUnlock() const; ///< whether the keyring is locked
    Q_INVOKABLE void unlock();
    QString dataFolder() const;

Q_SIGNALS:
    void changed();

private:
    UserDefaults& m_defaults;
    Keychain& m_keychain;
    const AppPaths& m_paths;
    Autostart* const m_autostart;
    QString m_startError;
    QList<HotKey*> m_hotKeys;
};

}
