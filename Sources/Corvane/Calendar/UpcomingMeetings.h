#pragma once

#include "Calendar/MeetingPrep.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/Scheduler.h"

namespace corvane {

class CalendarStore;
class Desktop;

/// An upcoming or running meeting.
class MeetingLine {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString when MEMBER when)
    Q_PROPERTY(QString relative MEMBER relative)
    Q_PROPERTY(bool joinable MEMBER joinable)
    Q_PROPERTY(bool meeting MEMBER meeting)
public:
    QString id;
    QString title;
    QString when; ///< "Mon 23 Nov, 10:00–11:00"
    QString relative; ///< "in 5m"
    bool joinable = false;
    bool meeting = false; ///< a brief can be prepared

    bool operator==(const MeetingLine&) const = default;
};

/// The next events, for the panel, with their actions.
class UpcomingMeetings : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::MeetingLine> lines READ lines NOTIFY changed)
    Q_PROPERTY(QString headline READ headline NOTIFY changed) ///< of the next meeting; may be empty
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY changed) ///< shown if there are no lines
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
    Q_PROPERTY(QString troubleTitle READ troubleTitle NOTIFY changed) ///< of the last reading; may be empty
    Q_PROPERTY(QString troubleText READ troubleText NOTIFY changed)
    Q_PROPERTY(QString connectLabel READ connectLabel NOTIFY changed) ///< empty if there is nothing to connect
    Q_PROPERTY(corvane::MeetingPrep* prep READ prep CONSTANT)
public:
    /// All of it outlives the object.
    struct Surroundings {
        CalendarStore& store;
        MeetingPrep& prep;
        Desktop& desktop;
        NotificationCentre& notifications;
    };

    explicit UpcomingMeetings(const Surroundings& surroundings, QObject* parent = nullptr);
    ~UpcomingMeetings() override;

    const QList<MeetingLine>& lines() const { return m_lines; }
    QString headline() const;
    QString emptyTitle() const;
    QString emptyText() const;
    QString troubleTitle() const;
    QString troubleText() const;
    QString connectLabel() const;
    MeetingPrep* prep() { return &m_at.prep; }

    Q_INVOKABLE void connectCalendar();
    Q_INVOKABLE void join(const QString& id);
    Q_INVOKABLE void prepare(const QString& id);

Q_SIGNALS:
    void changed();

private:
    void refresh();
    const CalEvent* find(const QString& id) const;

    Surroundings m_at;
    QList<MeetingLine> m_lines;
    std::unique_ptr<Timer> m_minute;
};

}
