#pragma once

#include "Platform/GlobalShortcuts.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

namespace corvane {

/// A shortcut in the portal's format.
struct PortalShortcut {
    QString id;
    QVariantMap properties;
};

/// Such as "CTRL+ALT+n", in the freedesktop.org format; empty unless it is exactly one key.
QString portalTrigger(const QString& keys);

/// The GlobalShortcuts portal, version 1. The desktop chooses the keys and may ask the user; a session can bind
/// shortcuts only once, so each change opens a new one. Its name is always the same: KDE keeps the user's keys under
/// it.
class PortalGlobalShortcuts final : public GlobalShortcuts {
    Q_OBJECT
public:
    explicit PortalGlobalShortcuts(const QDBusConnection& bus);
    ~PortalGlobalShortcuts() override;

    void bind(const GlobalShortcut& shortcut) override;
    void release(const QString& id) override;
    GlobalShortcutState state(const QString& id) const override { return m_states.value(id); }
    bool asksUser() const override { return true; }

private Q_SLOTS:
    void onActivated(const QDBusMessage& signal);
    void onDeactivated(const QDBusMessage& signal);
    void onShortcutsChanged(const QDBusMessage& signal);
    void onResponse(const QDBusMessage& response);

private:
    using Answer = void (PortalGlobalShortcuts::*)(const QVariantMap& results);

    bool isOurs(const QDBusMessage& signal) const; ///< of the open session
    void bindSoon();
    void openSession();
    void createSession();
    void bindAll(const QVariantMap& results); ///< the session is open
    void finish(const QVariantMap& results); ///< the shortcuts are bound
    void settle(); ///< the session is open and bound, or refused
    QDBusMessage closing() const; ///< of the open session
    void takeShortcuts(const QVariantMap& results); ///< the shortcuts that the desktop bound
    QList<PortalShortcut> wanted() const;
    void ask(const QString& method, const QVariantList& arguments, QVariantMap options, Answer then);
    void setAll(const GlobalShortcutState& state);
    void setState(const QString& id, const GlobalShortcutState& state);

    QDBusConnection m_bus;
    QList<GlobalShortcut> m_shortcuts;
    QHash<QString, GlobalShortcutState> m_states;
    QString m_session; ///< the path of the open session, or empty
    QHash<QString, Answer> m_awaited; ///< by the path of the request; of the latest session only
    int m_requests = 0;
    bool m_isQueued = false;
    bool m_isBusy = false; ///< a session is being closed, opened or bound
    bool m_isStale = false; ///< something changed meanwhile
};

}

Q_DECLARE_METATYPE(corvane::PortalShortcut)
