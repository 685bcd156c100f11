#pragma once

#include "Foundation/Literals.h"
#include "Foundation/Scheduler.h"
#include "Presentation/RowListModel.h"

namespace corvane {

class ApprovalsStore;
class LocalDB;

/// A past decision, as the screen shows it.
class DecidedRow {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString day MEMBER day)
    Q_PROPERTY(QString time MEMBER time)
    Q_PROPERTY(QString verdict MEMBER verdict)
    Q_PROPERTY(QString tone MEMBER tone)
    Q_PROPERTY(QString who MEMBER who)
    Q_PROPERTY(QString kind MEMBER kind)
    Q_PROPERTY(QString platform MEMBER platform)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString body MEMBER body)
    Q_PROPERTY(QString outcome MEMBER outcome)
public:
    QString id; ///< the log entry
    QString day; ///< "Today", ...
    QString time; ///< "14:20"
    QString verdict; ///< "Approved", "Applied" or "Rejected"
    QString tone; ///< "good" or "bad"
    QString who; ///< "You", another program, or a name
    QString kind; ///< "draft", "proposal", "decision" or "event"
    QString platform; ///< such as "WHATSAPP", of a draft
    QString title;
    QString body; ///< on one line; the reason if it is unavailable, because its row is gone or has changed
    QString outcome; ///< the result: "Sent", "Failed", ...; may be empty

    static constexpr const char* role = "decided";
    const QString& key() const { return id; }
    bool operator==(const DecidedRow&) const = default;
};

/// Past decisions, newest first, from the decision log. The log stores no texts: they come from the rows, as long as
/// those are unchanged.
class DecisionLog : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::HoldingListModel* rows READ rows CONSTANT) ///< of DecidedRow
    Q_PROPERTY(bool shown READ shown WRITE setShown NOTIFY changed) ///< it is read only while shown
    Q_PROPERTY(bool hasOlder READ hasOlder NOTIFY changed)
    Q_PROPERTY(QString emptyTitle READ emptyTitle CONSTANT)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
public:
    /// All of it outlives the log.
    DecisionLog(ApprovalsStore& store, LocalDB& db, Scheduler& scheduler, QObject* parent = nullptr);

    HoldingListModel* rows() { return &m_rows; }
    bool shown() const { return m_shown; }
    void setShown(bool shown);
    bool hasOlder() const { return m_hasOlder; }
    QString emptyTitle() const { return u"Nothing decided yet"_s; }
    QString emptyText() const;

    Q_INVOKABLE void showOlder();

Q_SIGNALS:
    void changed();

private:
    void follow();
    void read();

    LocalDB& m_db;
    Scheduler& m_scheduler;
    RowListModel<DecidedRow> m_rows;
    int m_lines; ///< number of log entries that are read
    qint64 m_lastSeq = -1;
    bool m_shown = false;
    bool m_hasOlder = false;
};

}
