#pragma once

#include "Calls/MeetingApps.h"
#include "Foundation/Scheduler.h"
#include "Store/Work/CalendarQueries.h"
#include "Store/Work/CallRecordingRule.h"

namespace corvane {

class CalendarStore;
class CallRecorder;

/// Records calendar meetings automatically if the user wants that: from shortly before one until a while after it. The
/// result for each event is stored, so that none is recorded twice, even after a crash.
class MeetingAutoRecorder : public QObject {
    Q_OBJECT
public:
    /// All of it outlives the object.
    struct Surroundings {
        CalendarStore& calendar;
        CallRecorder& calls;
        LookForPrograms look;
    };

    explicit MeetingAutoRecorder(Surroundings surroundings, QObject* parent = nullptr);

    void start(); ///< checks now and every 15 seconds; may be called again
    void refresh();

    void setEnabled(bool enabled);
    void setRequireMeetingApp(bool required); ///< waits for a meeting program before recording
    void setStartLeadSeconds(int seconds); ///< 0 to 600, as the next
    void setStopGraceSeconds(int seconds);

    const CallRecordingRuleRow& rule() const { return m_rule; }
    const QString& statusText() const { return m_statusText; }
    const QString& matchedEventTitle() const { return m_matchedEventTitle; } ///< the upcoming or recorded meeting
    const QList<MeetingAppCandidate>& runningMeetingApps() const { return m_runningMeetingApps; }

Q_SIGNALS:
    void changed();

private:
    LocalDB& db() const;
    void change(const std::function<void(CallRecordingRuleRow&)>& edit);
    void evaluate();
    QString decide();
    QString followRecording(const QString& eventId);
    QString begin(const CalEvent& event);
    bool write(const CalEvent& event, const QString& status, const QString& reason, const QString& callId = {},
        const QString& sourceApp = {});
    const CalEvent* findEvent(const QString& id) const;
    const CalEvent* nextEligibleEvent() const;

    const Surroundings m_at;
    CallRecordingRuleRow m_rule;
    QString m_statusText;
    QString m_matchedEventTitle;
    QList<MeetingAppCandidate> m_runningMeetingApps;
    std::optional<CalEvent> m_activeAuto; ///< whose recording it began
    bool m_looking = false;
    std::unique_ptr<Timer> m_timer;
};

}
