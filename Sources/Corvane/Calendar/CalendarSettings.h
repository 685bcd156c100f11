#pragma once

#include "Presentation/Choice.h"

#include <QUrl>

namespace corvane {

class CalendarCommands;
class CalendarStore;
class Desktop;

/// A calendar, or a folder of them, as the settings list it.
class CalendarLine {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(bool shown MEMBER shown)
    Q_PROPERTY(bool takesNew MEMBER takesNew)
    Q_PROPERTY(bool chosen MEMBER chosen)
public:
    QString id;
    QString title;
    QString detail;
    bool shown = true;
    bool takesNew = false; ///< new events can be added to it
    bool chosen = false; ///< new events are added to it

    bool operator==(const CalendarLine&) const = default;
};

/// The settings of the calendar.
class CalendarSettings : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool connected READ isConnected NOTIFY changed)
    Q_PROPERTY(QString stateText READ stateText NOTIFY changed)
    Q_PROPERTY(QList<corvane::CalendarLine> calendars READ calendars NOTIFY changed)
    Q_PROPERTY(QStringList folders READ folders NOTIFY changed) ///< additional ones, added by the user
    Q_PROPERTY(QString refusal READ refusal NOTIFY changed) ///< why the last folder was not accepted
    Q_PROPERTY(bool evolution READ evolution WRITE setEvolution NOTIFY changed) ///< its calendars are included
    Q_PROPERTY(bool hasEvolution READ hasEvolution NOTIFY changed)
    Q_PROPERTY(bool agentsMayAdd READ agentsMayAdd WRITE setAgentsMayAdd NOTIFY changed)
    Q_PROPERTY(QString addresses READ addresses WRITE setAddresses NOTIFY changed)
public:
    /// All of them outlive the object.
    CalendarSettings(CalendarStore& store, CalendarCommands& commands, Desktop& desktop, QObject* parent = nullptr);

    bool isConnected() const;
    QString stateText() const;
    QList<CalendarLine> calendars() const;
    QStringList folders() const;
    const QString& refusal() const { return m_refusal; }
    bool evolution() const;
    void setEvolution(bool use);
    bool hasEvolution() const; ///< available, or chosen earlier
    bool agentsMayAdd() const;
    void setAgentsMayAdd(bool may);
    QString addresses() const; ///< the user's addresses besides those of the accounts, separated by commas
    void setAddresses(const QString& addresses);

    Q_INVOKABLE void connectCalendar();
    Q_INVOKABLE void makeLocal();
    Q_INVOKABLE void toggle(const QString& title); ///< shows or hides a calendar
    Q_INVOKABLE void chooseForNew(const QString& id);
    Q_INVOKABLE bool addFolder(const QString& path); ///< false: `refusal` says why
    Q_INVOKABLE void chooseFolder(); ///< in the desktop's dialog
    Q_INVOKABLE void removeFolder(const QString& path); ///< does not delete it from the disk

Q_SIGNALS:
    void changed();

private:
    CalendarStore& m_store;
    CalendarCommands& m_commands;
    Desktop& m_desktop;
    QString m_refusal;
};

}
