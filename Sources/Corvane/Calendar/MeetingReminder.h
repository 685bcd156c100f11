#pragma once

#include "Foundation/Scheduler.h"
#include "Store/Work/CalendarQueries.h"

#include <QObject>
#include <QSet>

namespace corvane {

class CalendarStore;
class MeetingPrep;

/// Reminds the user ten minutes before a meeting, with its brief ready.
class MeetingReminder : public QObject {
    Q_OBJECT
public:
    /// Both outlive the object.
    MeetingReminder(CalendarStore& store, MeetingPrep& prep, QObject* parent = nullptr);

    QString text() const; ///< empty if no meeting is near, or the user has read it
    const std::optional<CalEvent>& meeting() const { return m_meeting; }
    void dismiss();

Q_SIGNALS:
    void changed();

private:
    void look();

    CalendarStore& m_store;
    MeetingPrep& m_prep;
    std::optional<CalEvent> m_meeting;
    QSet<QString> m_read; ///< ids
    std::unique_ptr<Timer> m_timer;
};

}
