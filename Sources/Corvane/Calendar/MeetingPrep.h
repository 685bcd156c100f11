#pragma once

#include "Store/Work/CalendarQueries.h"
#include "Store/Work/MeetingPrepQueries.h"

#include <QObject>
#include <QSet>
#include <qcoro/qcorotask.h>

namespace corvane {

struct AIServices;

/// Everything known locally about a meeting.
QString meetingPrepPacket(LocalDB& db, const CalEvent& event);

QString agoLabel(qint64 ms, qint64 nowMs); ///< "5m ago"

/// The brief for a meeting: generated once, stored, and shown until another is requested. If it suggests sending
/// something, the user is asked in Approvals; nothing is ever sent from here.
class MeetingPrep : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool open READ isOpen NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString summary READ summary NOTIFY changed)
    Q_PROPERTY(QString packet READ packet NOTIFY changed)
    Q_PROPERTY(QString madeBy READ madeBy NOTIFY changed) ///< who made the summary, and when
    Q_PROPERTY(QString message READ message NOTIFY changed) ///< the result of the last action; may be empty
    Q_PROPERTY(bool busy READ isBusy NOTIFY changed)
    Q_PROPERTY(bool asksReview READ asksReview NOTIFY changed) ///< a decision is pending in Approvals
public:
    /// All of it outlives the brief.
    struct Surroundings {
        LocalDB& db;
        AIServices& ai;
    };

    explicit MeetingPrep(const Surroundings& surroundings, QObject* parent = nullptr);

    bool isOpen() const { return !m_event.id.isEmpty(); }
    const QString& title() const { return m_event.title; }
    QString summary() const { return m_row.aiSummary; }
    QString packet() const { return m_row.rawBrief; }
    QString madeBy() const;
    const QString& message() const { return m_message; }
    bool isBusy() const { return m_making.contains(m_event.id); }
    bool asksReview() const { return m_asksReview; }

    void prepare(const CalEvent& event); ///< opens the event; a stored brief is shown at once
    /// Prepares without opening, once, and only with a local model. Another call retries if the machine was too busy.
    void prepareAhead(const CalEvent& event);
    Q_INVOKABLE void regenerate();
    Q_INVOKABLE void close();

Q_SIGNALS:
    void changed();

private:
    enum class Reason { First, Again };

    QCoro::Task<> make(CalEvent event, Reason reason);
    QCoro::Task<> makeAhead(CalEvent event);
    QCoro::Task<std::optional<QString>> summarized(QString packet);
    void keep(const CalEvent& event, const MeetingPrepCacheRow& row, Reason reason);
    bool proposeReview(const MeetingPrepCacheRow& row); ///< whether a decision is pending

    Surroundings m_at;
    CalEvent m_event; ///< empty while nothing is open
    MeetingPrepCacheRow m_row;
    QString m_message;
    QSet<QString> m_making; ///< events whose brief is being generated
    QSet<QString> m_ahead; ///< events whose brief was attempted, unless the machine was too busy
    bool m_asksReview = false;
};

}
