#pragma once

#include "Foundation/Scheduler.h"

#include <QObject>

namespace corvane {

/// When the open thread counts as read: its newest message is visible, and the user has stayed for a second or pressed
/// a key in it. Passing through on the way to another thread marks nothing as read.
class ThreadReading : public QObject {
    Q_OBJECT
public:
    explicit ThreadReading(Scheduler& scheduler, QObject* parent = nullptr);

    void begin(); ///< another thread is open, at its newest message
    void end(); ///< no thread is open
    void setOnScreen(bool onScreen); ///< whether the inbox is visible
    bool newestInSight() const { return m_newestInSight; }
    bool isRead() const { return isSeen() && m_rested; } ///< new messages count as read, too

    Q_INVOKABLE void setNewestInSight(bool inSight); ///< of the database, not just of the loaded page
    Q_INVOKABLE void touch(); ///< a key press or click in the thread

Q_SIGNALS:
    void read(); ///< mark unread messages as read; repeated for each newest message that becomes visible

private:
    bool isSeen() const { return m_open && m_onScreen && m_newestInSight; }
    void update();

    Scheduler& m_scheduler;
    bool m_open = false;
    bool m_onScreen = true;
    bool m_newestInSight = true;
    bool m_rested = false;
    std::unique_ptr<Timer> m_rest;
};

}
