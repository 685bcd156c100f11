#pragma once

#include "Foundation/Scheduler.h"

#include <QObject>

namespace corvane {

class CalendarStore;
class ResourceMonitor;
class Tray;

/// The short text beside the tray icon: a meeting within the hour, else a low-memory warning.
class CorvaneMenuBarLabel : public QObject {
    Q_OBJECT
public:
    /// The references outlive the object.
    CorvaneMenuBarLabel(
        CalendarStore& calendar, ResourceMonitor& resources, Tray& tray, Scheduler& scheduler, QObject* parent);

    QString text() const; ///< such as "Standup 5m"; empty if there is nothing to show

private:
    void show();

    CalendarStore& m_calendar;
    ResourceMonitor& m_resources;
    Tray& m_tray;
    Scheduler& m_scheduler;
    std::unique_ptr<Timer> m_clock;
};

}
