#pragma once

#include "Foundation/Result.h"
#include "Foundation/Scheduler.h"
#include "Presentation/UndoOffer.h"
#include "Store/Approvals/EventRequests.h"

#include <QObject>
#include <QSet>

namespace corvane {

class CalendarStore;

/// Events that other processes ask for. They are added as told, and each can be taken back for ten seconds; or, where
/// the user wants it so, they wait for a word.
class CalendarCommands : public QObject {
    Q_OBJECT
public:
    /// `store` outlives the object.
    explicit CalendarCommands(CalendarStore& store, QObject* parent = nullptr);

    void processPendingCommands(); ///< every five seconds from the first reading on

    bool agentsMayAdd() const;
    void setAgentsMayAdd(bool may);

    const QList<CalCommand>& waiting() const { return m_waiting; } ///< for a word; none while agents may add
    Decided add(const QString& id, const QString& seenHash); ///< as it was seen, see `eventHash`
    Decided reject(const QString& id);

    const QString& undoText() const { return m_undo.text(); } ///< what was added of late; empty for nothing
    void undo() { m_undo.take(); }
    void dismiss() { m_undo.dismiss(); }

Q_SIGNALS:
    void changed();
    void refused(const QString& title, const QString& reason); ///< by the calendar, of one that a person let in

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
    QSet<QString> m_letIn; ///< by a person, and on their way
    QList<Added> m_added; ///< by the run that is on its way
    int m_running = 0;
    std::unique_ptr<Timer> m_timer;
};

}
