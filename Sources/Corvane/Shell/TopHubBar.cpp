#include "Shell/TopHubBar.h"

namespace corvane {

TopHubBar::TopHubBar(QObject* parent)
    : GadgetListModel(HubRow::staticMetaObject, parent)
{
    for (size_t i = 0; i < m_hubs.size(); ++i) {
        const NavItem item = allNavItems.at(i);
        m_hubs.at(i).raw = navRaw(item);
        m_hubs.at(i).label = navLabel(item);
        m_hubs.at(i).identifier = QStringLiteral("topnav.") + navRaw(item);
        m_hubs.at(i).shortcut = hubShortcut(item);
    }
}

QString hubShortcut(NavItem item)
{
    return QStringLiteral("Ctrl+%1").arg(int(item) + 1);
}

int TopHubBar::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_hubs.size());
}

void TopHubBar::setSelected(std::optional<NavItem> item)
{
    for (const NavItem each : allNavItems)
        change(each, [&](HubRow& hub) { hub.selected = each == item; });
}

void TopHubBar::setUnreadTotal(int count)
{
    change(NavItem::Inbox, [&](HubRow& hub) { hub.badge = unreadBadge(count); });
}

void TopHubBar::change(NavItem item, const std::function<void(HubRow&)>& edit)
{
    const int row = int(item);
    HubRow& hub = m_hubs.at(size_t(row));
    const HubRow before = hub;
    edit(hub);
    if (hub != before)
        Q_EMIT dataChanged(index(row), index(row));
}

QString unreadBadge(int count)
{
    if (count <= 0)
        return {};
    return count < 100 ? QString::number(count) : QStringLiteral("99+");
}

}
