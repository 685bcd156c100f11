#pragma once

#include "Shell/NavItem.h"

#include <QAbstractListModel>

namespace corvane {

/// The hubs of the bar, one row each. Roles: raw, label, badge (empty for none), selected,
/// identifier ("topnav.inbox"), shortcut ("Ctrl+5").
class TopHubBar : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(QString searchLabel READ searchLabel CONSTANT)
public:
    enum Role { RawRole = Qt::UserRole, LabelRole, BadgeRole, SelectedRole, IdentifierRole, ShortcutRole };

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    QString searchLabel() const { return QStringLiteral("Search or ask Lumo…"); }

    void setSelected(std::optional<NavItem> item); ///< nothing while the settings cover the hubs
    void setUnreadTotal(int count); ///< for the badge of the inbox

private:
    void refresh(const std::optional<NavItem>& item, Role role);

    std::optional<NavItem> m_selected;
    int m_unreadTotal = 0;
};

/// What the badge shows: nothing at 0 or below, the number to 99, "99+" from 100 up.
QString unreadBadge(int count);

}
