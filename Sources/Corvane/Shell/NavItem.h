#pragma once

#include <QString>
#include <array>
#include <optional>

namespace corvane {

/// The six hubs, in the order of the bar.
enum class NavItem { Lumo, Gtm, Cx, Ops, Inbox, Dev };

inline constexpr std::array allNavItems { NavItem::Lumo, NavItem::Gtm, NavItem::Cx, NavItem::Ops, NavItem::Inbox,
    NavItem::Dev };

QString navRaw(NavItem item); ///< such as "inbox"
QString navLabel(NavItem item); ///< such as "Inbox"
std::optional<NavItem> navFromRaw(const QString& raw);

}
