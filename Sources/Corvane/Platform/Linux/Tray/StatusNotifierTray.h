#pragma once

#include "Platform/Linux/Tray/StatusNotifierItem.h"
#include "Platform/Linux/Tray/TrayMenu.h"
#include "Platform/Tray.h"

#include <QDBusConnection>

namespace corvane {

/// A tray icon for panels that support org.kde.StatusNotifierWatcher; it appears whenever a watcher starts.
class StatusNotifierTray final : public Tray {
    Q_OBJECT
public:
    explicit StatusNotifierTray(const QDBusConnection& bus);
    ~StatusNotifierTray() override;

    bool isShown() const override { return m_shown; }
    void setUnread(int count) override { m_item.setUnread(count); }
    void setWaiting(int count) override { m_item.setWaiting(count); }
    void setRecording(bool recording) override { m_item.setRecording(recording); }
    void setLabel(const QString& text) override { m_item.setLabel(text); }
    void setMenu(const QList<Item>& items) override { m_menu.setItems(items); }

private Q_SLOTS:
    void askForHost();

private:
    void enrol();
    void forgetWatcher();
    void updateShown();

    QDBusConnection m_bus;
    QString m_serviceName;
    StatusNotifierItem m_item;
    TrayMenu m_menu;
    bool m_registered = false; ///< a watcher accepted the icon
    bool m_hasHost = false; ///< a panel shows that watcher's icons
    bool m_shown = false;
};

}
