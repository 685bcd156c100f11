#pragma once

#include "Calendar/CalendarConnection.h"
#include "Calendar/CalendarStore.h"
#include "Calendar/CalendarTiles.h"
#include "Calendar/MeetingPrep.h"
#include "Calendar/NewEventForm.h"
#include "Presentation/Choice.h"

#include <QUrl>

namespace corvane {

class CalendarCommands;
class Desktop;

/// A participant.
class EventPerson {
    Q_GADGET
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(QString contactId MEMBER contactId)
public:
    QString name;
    QString detail; ///< "you", "declined", or the address
    QString contactId; ///< empty if the address is unknown

    bool operator==(const EventPerson&) const = default;
};

/// The selected event in full.
class EventCard {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString when MEMBER when)
    Q_PROPERTY(QString place MEMBER place)
    Q_PROPERTY(QString calendar MEMBER calendar)
    Q_PROPERTY(QString notes MEMBER notes)
    Q_PROPERTY(QString link MEMBER link)
    Q_PROPERTY(bool joinable MEMBER joinable)
    Q_PROPERTY(bool meeting MEMBER meeting)
    Q_PROPERTY(QList<corvane::EventPerson> people MEMBER people)
public:
    QString id;
    QString title;
    QString when;
    QString place;
    QString calendar;
    QString notes;
    QString link; ///< to the call, or to a web page
    bool joinable = false;
    bool meeting = false; ///< a brief can be prepared
    QList<EventPerson> people;

    bool operator==(const EventCard&) const = default;
};

/// The calendar page: a week or a day, the selected event, and events that agents want to add.
class CalendarView : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::CalendarConnection* connection READ connection CONSTANT)
    Q_PROPERTY(corvane::CalendarTiles* tiles READ tiles CONSTANT) ///< of the page
    Q_PROPERTY(QString notice READ notice NOTIFY changed) ///< the error or result of the last action
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(bool week READ isWeek WRITE setWeek NOTIFY changed)
    Q_PROPERTY(QString selected READ selected NOTIFY changed) ///< the id of the selected event, or empty
    Q_PROPERTY(corvane::EventCard card READ card NOTIFY changed)
    Q_PROPERTY(QList<corvane::Choice> asked READ asked NOTIFY changed) ///< events that agents want to add
    Q_PROPERTY(bool canAdd READ canAdd NOTIFY changed)
    Q_PROPERTY(QString offeredFile READ offeredFile NOTIFY changed) ///< its URL; empty until it is written
    Q_PROPERTY(corvane::MeetingPrep* prep READ prep CONSTANT)
    Q_PROPERTY(corvane::NewEventForm* newEvent READ newEvent CONSTANT)
public:
    /// All of it outlives the view.
    struct Surroundings {
        CalendarStore& store;
        CalendarCommands& commands;
        MeetingPrep& prep;
        Desktop& desktop;
        NotificationCentre& notifications;
    };

    explicit CalendarView(const Surroundings& surroundings, QObject* parent = nullptr);
    ~CalendarView() override;

    CalendarConnection* connection() { return &m_connection; }
    CalendarTiles* tiles() { return &m_tiles; }
    QString notice() const;
    QString title() const;
    bool isWeek() const { return m_week; }
    void setWeek(bool week);
    const QString& selected() const { return m_selected; }
    const EventCard& card() const { return m_card; }
    QList<Choice> asked() const;
    bool canAdd() const;
    const QString& offeredFile() const { return m_offered; }
    MeetingPrep* prep() { return &m_at.prep; }
    NewEventForm* newEvent() { return &m_newEvent; }

    Q_INVOKABLE void step(int pages); ///< weeks or days
    Q_INVOKABLE void today();
    void show(const QString& id, qint64 startMs); ///< shows the event on the page of its day
    Q_INVOKABLE void select(const QString& id); ///< an empty one closes the card
    Q_INVOKABLE void selectNext(int step); ///< in chronological order
    Q_INVOKABLE void join(const QString& id);
    Q_INVOKABLE void openPerson(const QString& contactId);
    Q_INVOKABLE void prepare(const QString& id);
    Q_INVOKABLE void openReview();

    Q_INVOKABLE void beginEvent(); ///< on a day of the page; does nothing without a writable calendar
    Q_INVOKABLE void importFile(const QUrl& file);
    Q_INVOKABLE void exportSelected(); ///< into the downloads folder
    Q_INVOKABLE void offerFile(); ///< of the selected event, for drag and drop

    Q_INVOKABLE void dismiss(); ///< the notice
    Q_INVOKABLE void answer(const QString& command, bool add);

Q_SIGNALS:
    void changed();

private:
    void readPage();
    void lay();
    QString addEvent(NewCalendarEntry entry);
    const CalEvent* find(const QString& id) const;
    void told(const QString& words);
    qint64 nowMs() const;
    QDate firstDay() const;

    Surroundings m_at;
    CalendarConnection m_connection;
    QDate m_day; ///< on the page
    bool m_week = true;
    QList<CalEvent> m_events; ///< the shown events of the page
    CalendarTiles m_tiles;
    QString m_selected;
    QString m_added; ///< an event to select once it has been read
    EventCard m_card;
    QString m_told;
    QString m_offered;
    std::unique_ptr<Timer> m_minute;
    NewEventForm m_newEvent;
};

}
