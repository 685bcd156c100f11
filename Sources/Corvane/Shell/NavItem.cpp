#include "Shell/NavItem.h"

#include <algorithm>

namespace corvane {

namespace {

struct Words {
    QString raw;
    QString label;
};

Words words(NavItem item)
{
    switch (item) {
    case NavItem::Lumo:
        return { QStringLiteral("lumo"), QStringLiteral("Lumo") };
    case NavItem::Gtm:
        return { QStringLiteral("gtm"), QStringLiteral("GTM") };
    case NavItem::Cx:
        return { QStringLiteral("cx"), QStringLiteral("CX") };
    case NavItem::Ops:
        return { QStringLiteral("ops"), QStringLiteral("Ops") };
    case NavItem::Inbox:
        return { QStringLiteral("inbox"), QStringLiteral("Inbox") };
    case NavItem::Dev:
        return { QStringLiteral("dev"), QStringLiteral("Dev") };
    }
    Q_UNREACHABLE();
}

}

QString navRaw(NavItem item)
{
    return words(item).raw;
}

QString navLabel(NavItem item)
{
    return words(item).label;
}

std::optional<NavItem> navFromRaw(const QString& raw)
{
    const auto found = std::ranges::find(allNavItems, raw, navRaw);
    return found == allNavItems.end() ? std::nullopt : std::optional(*found);
}

}
