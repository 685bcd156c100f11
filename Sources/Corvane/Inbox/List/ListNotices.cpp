#include "Inbox/List/ListNotices.h"

#include "Foundation/Scheduler.h"
#include "Store/Core/Workspaces.h"

namespace corvane {

ListNotices::ListNotices(LocalDB& db, const Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_scheduler(scheduler)
{
}

void ListNotices::read()
{
    if (const auto notice = consumeWorkspaceSelectionNotice(m_db)) {
        m_workspaceNotice = *notice;
        Q_EMIT workspaceNoticeChanged();
    }
    m_webMirror.refresh(m_db);
}

void ListNotices::present(const QString& channelFilter)
{
    m_channelFilter = channelFilter;
    const QList<StalenessBanner> banners = m_webMirror.banners(channelFilter, m_scheduler.nowMs());
    if (banners == m_banners)
        return;
    m_banners = banners;
    Q_EMIT stalenessChanged();
}

void ListNotices::dismissWorkspaceNotice()
{
    m_workspaceNotice.clear();
    Q_EMIT workspaceNoticeChanged();
}

void ListNotices::retry(const QString& channel)
{
    if (!webOnlyChannels.contains(channel))
        return;
    m_webMirror.retry(m_db);
    present(m_channelFilter);
}

}
