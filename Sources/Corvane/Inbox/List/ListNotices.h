#pragma once

#include "Inbox/List/WebStaleness.h"

namespace corvane {

class Scheduler;

/// The notices above the list: a change of workspace, and channels that are no longer in sync.
class ListNotices : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString workspaceNotice READ workspaceNotice NOTIFY workspaceNoticeChanged)
    Q_PROPERTY(QList<corvane::StalenessBanner> stalenessBanners READ stalenessBanners NOTIFY stalenessChanged)
public:
    /// Both outlive the notices.
    ListNotices(LocalDB& db, const Scheduler& scheduler, QObject* parent = nullptr);

    const QString& workspaceNotice() const { return m_workspaceNotice; }
    const QList<StalenessBanner>& stalenessBanners() const { return m_banners; }

    void read(); ///< from the database, as the list is read
    void present(const QString& channelFilter); ///< for that channel, or for all

    Q_INVOKABLE void dismissWorkspaceNotice();
    Q_INVOKABLE void retry(const QString& channel); ///< of a staleness banner

Q_SIGNALS:
    void workspaceNoticeChanged();
    void stalenessChanged();

private:
    LocalDB& m_db;
    const Scheduler& m_scheduler;
    QString m_channelFilter;
    QString m_workspaceNotice;
    WebMirror m_webMirror;
    QList<StalenessBanner> m_banners;
};

}
