#include "Shell/TopHubBar.h"

#include "Foundation/Literals.h"
#include "Shell/Hubs.h"

namespace corvane {

TopHubBar::TopHubBar(QObject* parent)
    : GadgetListModel(HubRow::staticMetaObject, HubRow::role, parent)
{
    for (const Hub& hub : hubTable()) {
        HubRow row;
        row.raw = hub.id;
        row.label = hub.label;
        row.identifier = u"topnav."_s + hub.id;
        row.shortcut = hubShortcut(int(m_hubs.size()));
        m_hubs.append(row);
    }
}

int TopHubBar::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_hubs.size());
}

void TopHubBar::setSelected(int index)
{
    for (int row = 0; row < int(m_hubs.size()); ++row)
        change(row, [&](HubRow& hub) { hub.selected = row == index; });
}

void TopHubBar::setBadge(const QString& hub, int count, const QString& word)
{
    change(hubIndex(hub), [&](HubRow& row) {
        row.badge = unreadBadge(count);
        row.badgeAloud = count > 0 ? row.badge + u' ' + word : QString();
    });
}

void TopHubBar::change(int row, const std::function<void(HubRow&)>& edit)
{
    HubRow& hub = m_hubs[row];
    const HubRow before = hub;
    edit(hub);
    if (hub != before)
        Q_EMIT dataChanged(index(row), index(row));
}

QString unreadBadge(int count)
{
    if (count <= 0)
        return {};
    return count < 100 ? QString::number(count) : u"99+"_s;
}

}
