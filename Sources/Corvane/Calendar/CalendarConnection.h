#pragma once

#include <QObject>

namespace corvane {

class CalendarStore;
class Desktop;

/// Whether calendars are read, and how to connect some.
class CalendarConnection : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString state READ state NOTIFY changed) ///< "unknown", "denied" or "ready"
    Q_PROPERTY(QString title READ title NOTIFY changed) ///< if it is not ready
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(bool hasEvolution READ hasEvolution NOTIFY changed) ///< available and not connected yet
public:
    /// Both outlive the object.
    CalendarConnection(CalendarStore& store, Desktop& desktop, QObject* parent = nullptr);

    QString state() const;
    QString title() const;
    QString text() const;
    bool hasEvolution() const;

    Q_INVOKABLE void connectCalendar();
    Q_INVOKABLE void makeLocal(); ///< creates a local calendar
    Q_INVOKABLE void chooseFolder(); ///< in the desktop's dialog; if there is none, `folderAsked` follows
    Q_INVOKABLE void useEvolution();

Q_SIGNALS:
    void changed();
    void folderAsked(); ///< let the user type a path in the settings
    void said(const QString& words); ///< why a folder was not accepted; empty if it was

private:
    CalendarStore& m_store;
    Desktop& m_desktop;
};

}
