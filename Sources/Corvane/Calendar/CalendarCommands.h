#pragma once

#include "Foundation/Result.h"
#include "Foundation/Scheduler.h"
#include "Presentation/UndoOffer.h"
#include "Store/Approvals/EventRequests.h"

#include <QObject>
#include <QSet>

namespace corvane {

class CalendarStore;

/// Events that other processes request. They are added at once and can be undone for ten seconds; if the user
/// prefers, they wait for approval instead.
class CalendarCommands : public QObject {
    Q_OBJECT
public:
    /// `store` outlives the object.
    explicit CalendarCommands(CalendarStore& store, QObject* parent = nullptr);

    void processPendingCommands(); ///< every five seconds after the first reading

    bool agentsMayAdd() const;
    void setAgentsMayAdd(bool may);

    const QList<CalCommand>& waiting() const { return m_waiting; } ///< for approval; empty while agents may add events
    Decided add(const QString& id, const QString& seenHash); ///< `seenHash`: see `eventHash`
    Decided reject(const QString& id);

    const QString& undoText() const { return m_undo.text(); } ///< the event that can be undone; empty if none
    void undo() { m_undo.take(); }
    void dismiss() { m_undo.dismiss(); }

Q_SIGNALS:
    void changed();
    void refused(const QString& title, const QString& reason); ///< by the calendar, for an event that the user approved

private:
    struct Added {
        QString command;
        QString calendarId;
        QString uid;
        QString words;
    };

    void run(const QList<CalCommand>& commands);
    void end(const CalCommand& command, const QString& calendarId, const Result<QString>& eventId);
    void offerUndo();
    void setWaiting(const QList<CalCommand>& waiting);
    void forget(const QString& id, Decided decided);

    CalendarStore& m_store;
    UndoOffer m_undo;
    QList<CalCommand> m_waiting;
    QSet<QString> m_letIn; ///< approved, and being added
    QList<Added> m_added; ///< by the current run
    int m_running = 0;
    std::unique_ptr<Timer> m_timer;
};

}
