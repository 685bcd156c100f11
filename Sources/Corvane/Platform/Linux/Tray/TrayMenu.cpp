#include "Platform/Linux/Tray/TrayMenu.h"

#include "Foundation/Literals.h"

#include <QGuiApplication>

namespace corvane {

namespace {

constexpr int rootId = 0;

/// In menus an underscore marks an access key.
QString menuLabel(QString label)
{
    return label.replace(u'_', u"__"_s);
}

QVariantMap chosen(const QVariantMap& properties, const QStringList& names)
{
    if (names.isEmpty())
        return properties;
    QVariantMap result;
    for (const QString& name : names) {
        if (const auto property = properties.constFind(name); property != properties.cend())
            result.insert(name, *property);
    }
    return result;
}

}

void TrayMenu::setItems(const QList<Tray::Item>& items)
{
    if (items == m_items)
        return;
    m_firstId += int(m_items.size());
    m_items = items;
    Q_EMIT LayoutUpdated(++m_revision, rootId);
}

QString TrayMenu::textDirection() const
{
    return QGuiApplication::isRightToLeft() ? u"rtl"_s : u"ltr"_s;
}

bool TrayMenu::contains(int id) const
{
    return id == rootId || (id >= m_firstId && id < m_firstId + m_items.size());
}

QVariantMap TrayMenu::properties(int id, const QStringList& names) const
{
    if (id == rootId)
        return chosen({ { u"children-display"_s, u"submenu"_s } }, names);
    const Tray::Item& item = m_items.at(id - m_firstId);
    if (item.id.isEmpty())
        return chosen({ { u"type"_s, u"separator"_s } }, names);
    return chosen({ { u"label"_s, menuLabel(item.label) } }, names);
}

uint TrayMenu::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames, MenuLayout& layout)
{
    if (!contains(parentId)) {
        sendErrorReply(QDBusError::InvalidArgs, u"no such item"_s);
        return 0;
    }
    layout = { parentId, properties(parentId, propertyNames), {} };
    if (parentId == rootId && recursionDepth != 0) {
        for (int id = m_firstId; contains(id); ++id) {
            const MenuLayout child { id, properties(id, propertyNames), {} };
            layout.children.append(QDBusVariant(QVariant::fromValue(child)));
        }
    }
    return m_revision;
}

QList<MenuProperties> TrayMenu::GetGroupProperties(const QList<int>& ids, const QStringList& propertyNames)
{
    QList<int> wanted = ids;
    if (wanted.isEmpty()) {
        for (int id = m_firstId; contains(id); ++id)
            wanted.append(id);
    }
    QList<MenuProperties> result;
    for (const int id : wanted) {
        if (contains(id))
            result.append({ id, properties(id, propertyNames) });
    }
    return result;
}

QDBusVariant TrayMenu::GetProperty(int id, const QString& name)
{
    const QVariant value = contains(id) ? properties(id, {}).value(name) : QVariant();
    if (!value.isValid())
        sendErrorReply(QDBusError::InvalidArgs, u"no such property"_s);
    return QDBusVariant(value);
}

bool TrayMenu::handleEvent(int id, const QString& event)
{
    if (!contains(id))
        return false;
    if (id != rootId && event == u"clicked"_s) {
        // An item's action may take long, or quit the program; the panel gets its answer first.
        QMetaObject::invokeMethod(
            this, [this, item = m_items.at(id - m_firstId).id] { Q_EMIT itemChosen(item); }, Qt::QueuedConnection);
    }
    return true;
}

void TrayMenu::Event(int id, const QString& event, const QDBusVariant&, uint)
{
    if (!handleEvent(id, event))
        sendErrorReply(QDBusError::InvalidArgs, u"no such item"_s);
}

QList<int> TrayMenu::EventGroup(const QList<MenuEvent>& events)
{
    QList<int> unknown;
    for (const MenuEvent& event : events) {
        if (!handleEvent(event.id, event.event))
            unknown.append(event.id);
    }
    return unknown;
}

bool TrayMenu::AboutToShow(int)
{
    return false;
}

QList<int> TrayMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& unknownIds)
{
    std::copy_if(ids.begin(), ids.end(), std::back_inserter(unknownIds), [this](int id) { return !contains(id); });
    return {};
}

}
