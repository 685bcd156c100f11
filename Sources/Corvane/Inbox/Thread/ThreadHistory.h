#pragma once

#include "Foundation/Scheduler.h"
#include "Store/Messages/InboxQueries.h"

#include <QObject>

namespace corvane {

class AccountStore;
class EngineManager;
class ThreadWindow;

/// Requests earlier messages from WhatsApp, if everything in the database is shown.
class ThreadHistory : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool canLoadOlder READ canLoadOlder NOTIFY changed)
    Q_PROPERTY(bool loadingMore READ loadingMore NOTIFY changed)
    Q_PROPERTY(QString loadOlderText READ loadOlderText NOTIFY changed)
public:
    /// Everything outlives the object.
    ThreadHistory(EngineManager& engine, AccountStore& accounts, Scheduler& scheduler, const ThreadWindow& window,
        QObject* parent = nullptr);

    void open(const ContactRow& contact); ///< `changed` follows when its messages are read
    bool canLoadOlder() const;
    bool loadingMore() const { return m_loadingMore != nullptr; }
    QString loadOlderText() const;

    Q_INVOKABLE void loadMore();

Q_SIGNALS:
    void changed();
    void refused(const QString& error); ///< nothing was requested

private:
    EngineManager& m_engine;
    AccountStore& m_accounts;
    Scheduler& m_scheduler;
    const ThreadWindow& m_window;
    QString m_contactId;
    bool m_onWhatsApp = false;
    std::unique_ptr<Timer> m_loadingMore;
};

}
