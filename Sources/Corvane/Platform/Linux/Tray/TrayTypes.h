#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QVariantMap>

/// The D-Bus types of a tray icon (org.kde.StatusNotifierItem) and its menu (com.canonical.dbusmenu).
namespace corvane {

struct TrayPixmap {
    int width = 0;
    int height = 0;
    QByteArray argb; ///< four bytes per pixel, alpha first
};
using TrayPixmaps = QList<TrayPixmap>;

struct TrayToolTip {
    QString iconName;
    TrayPixmaps icon;
    QString title;
    QString text;
};

struct MenuLayout {
    int id = 0;
    QVariantMap properties;
    QList<QDBusVariant> children; ///< each a MenuLayout
};

struct MenuProperties {
    int id = 0;
    QVariantMap properties;
};

struct MenuEvent {
    int id = 0;
    QString event;
    QDBusVariant data;
    uint timestamp = 0;
};

QDBusArgument& operator<<(QDBusArgument& argument, const TrayPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, TrayPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const TrayToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, TrayToolTip& toolTip);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuProperties& properties);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuProperties& properties);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& event);

/// Registers the types; call it before any of them is sent. May be called again.
void registerTrayTypes();

}
