#include "Dev/DevInspector.h"

#include "Foundation/Literals.h"

#include <algorithm>

namespace corvane {

const QList<TabItem>& DevInspector::tabs()
{
    static const QList<TabItem> all { { u"team"_s, u"Team"_s }, { u"tasks"_s, u"Tasks"_s },
        { u"activity"_s, u"Activity"_s }, { u"context"_s, u"Context"_s } };
    return all;
}

void DevInspector::setTab(const QString& id)
{
    if (m_tab == id || std::ranges::find(tabs(), id, &TabItem::id) == tabs().end())
        return;
    m_tab = id;
    Q_EMIT changed();
}

void DevInspector::setCollapsed(bool collapsed)
{
    if (std::exchange(m_collapsed, collapsed) != collapsed)
        Q_EMIT changed();
}

}
