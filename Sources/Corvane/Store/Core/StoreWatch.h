#pragma once

#include "Foundation/Scheduler.h"

#include <QHash>
#include <QObject>

namespace corvane {

class LocalDB;
class MessageChanges;

/// What rows are about, as far as observers need to distinguish it.
enum class StoreSubject { Messages, Drafts, Approvals, Requests, Work, Calendar, Sync };

/// Checks once a second whether another program changed the file, and notifies by subject. SQLite does not say what
/// changed, so every subject is notified except those whose few rows are verified to be unchanged. While the database
/// is closed or cannot be written it checks nothing; observers are notified of the changes afterwards.
class StoreWatch : public QObject {
    Q_OBJECT
public:
    /// The references outlive the object.
    StoreWatch(LocalDB& db, Scheduler& scheduler);
    ~StoreWatch() override;

    void start(); ///< may be called again

    /// This program changed rows of the subject; notifies observers now.
    void tell(StoreSubject subject) { Q_EMIT changed(subject); }

    /// What this program changes of the messages, row by row, for the search index.
    MessageChanges& messageChanges() { return *m_messageChanges; }

    /// Calls back whenever the subject may have changed, as long as `context` lives.
    void on(StoreSubject subject, QObject* context, const std::function<void()>& callback);

    /// The connection was closed: the next check counts everything as changed.
    void forget() { m_version.clear(); }

Q_SIGNALS:
    void changed(StoreSubject subject);

private:
    QList<StoreSubject> changedSubjects();
    bool isUnchanged(StoreSubject subject);

    LocalDB& m_db;
    Scheduler& m_scheduler;
    std::unique_ptr<MessageChanges> m_messageChanges;
    std::unique_ptr<Timer> m_timer;
    QString m_version; ///< SQLite's data_version
    QHash<StoreSubject, QByteArray> m_seen; ///< the rows of those subjects that are compared
};

}
