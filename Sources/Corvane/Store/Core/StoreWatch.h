#pragma once

#include "Foundation/Scheduler.h"

#include <QHash>
#include <QObject>

namespace corvane {

class LocalDB;

/// What rows are about, as far as those who show or work them off need to tell it apart.
enum class StoreSubject { Messages, Drafts, Approvals, Requests, Work, Calendar, Sync };

/// Asks once a second whether another program changed the file, and tells by subject. SQLite does not say what was
/// changed, so every subject is told except those whose rows, where they are few, are proven to be the same as before.
/// While the database is closed or takes no writes it asks nothing; what changed meanwhile is told afterwards.
class StoreWatch : public QObject {
    Q_OBJECT
public:
    /// The references outlive the object.
    StoreWatch(LocalDB& db, Scheduler& scheduler);
    ~StoreWatch() override;

    void start(); ///< may be called again

    /// This program changed rows of the subject, and whoever listens is to act on it now.
    void tell(StoreSubject subject) { Q_EMIT changed(subject); }

    /// Calls back whenever the subject may have changed, while `context` lives.
    void on(StoreSubject subject, QObject* context, const std::function<void()>& callback);

    /// The connection was closed: at the next look everything counts as changed.
    void forget() { m_version.clear(); }

Q_SIGNALS:
    void changed(StoreSubject subject);

private:
    QList<StoreSubject> changedSubjects();
    bool isUnchanged(StoreSubject subject);

    LocalDB& m_db;
    Scheduler& m_scheduler;
    std::unique_ptr<Timer> m_timer;
    QString m_version; ///< as SQLite counts the changes of other connections
    QHash<StoreSubject, QByteArray> m_seen; ///< the rows of those subjects that are compared
};

}
