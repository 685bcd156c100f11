#include "Platform/Linux/Tray/TrayTypes.h"

#include <QDBusMetaType>

namespace corvane {

namespace {

template <typename... Fields> QDBusArgument& writeStructure(QDBusArgument& argument, const Fields&... fields)
{
    argument.beginStructure();
    (argument << ... << fields);
    argument.endStructure();
    return argument;
}

template <typename... Fields> const QDBusArgument& readStructure(const QDBusArgument& argument, Fields&... fields)
{
    argument.beginStructure();
    (argument >> ... >> fields);
    argument.endStructure();
    return argument;
}

}

QDBusArgument& operator<<(QDBusArgument& argument, const TrayPixmap& pixmap)
{
    return writeStructure(argument, pixmap.width, pixmap.height, pixmap.argb);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, TrayPixmap& pixmap)
{
    return readStructure(argument, pixmap.width, pixmap.height, pixmap.argb);
}

QDBusArgument& operator<<(QDBusArgument& argument, const TrayToolTip& toolTip)
{
    return writeStructure(argument, toolTip.iconName, toolTip.icon, toolTip.title, toolTip.text);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, TrayToolTip& toolTip)
{
    return readStructure(argument, toolTip.iconName, toolTip.icon, toolTip.title, toolTip.text);
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayout& layout)
{
    return writeStructure(argument, layout.id, layout.properties, layout.children);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayout& layout)
{
    return readStructure(argument, layout.id, layout.properties, layout.children);
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuProperties& properties)
{
    return writeStructure(argument, properties.id, properties.properties);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuProperties& properties)
{
    return readStructure(argument, properties.id, properties.properties);
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event)
{
    return writeStructure(argument, event.id, event.event, event.data, event.timestamp);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& event)
{
    return readStructure(argument, event.id, event.event, event.data, event.timestamp);
}

void registerTrayTypes()
{
    qDBusRegisterMetaType<TrayPixmap>();
    qDBusRegisterMetaType<TrayPixmaps>();
    qDBusRegisterMetaType<TrayToolTip>();
    qDBusRegisterMetaType<MenuLayout>();
    qDBusRegisterMetaType<MenuProperties>();
    qDBusRegisterMetaType<QList<MenuProperties>>();
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<QList<MenuEvent>>();
}

}
