#pragma once

#include "Foundation/Scheduler.h"

#include <QObject>

namespace corvane {

/// When the open thread counts as read: its newest message is on the screen, and somebody has rested there for a
/// second or pressed a key in it. Whoever only passes on the way to another thread reads nothing.
class ThreadReading : public QObject {
    Q_OBJECT
public:
    explicit ThreadReading(Scheduler& scheduler, QObject* parent = nullptr);

    void begin(); ///< another thread is open, at its newest message
    void end(); ///< no thread is open
    void setOnScreen(bool onScreen); ///< whether a person can see the inbox
    bool newestInSight() const { return m_newestInSight; }
    bool isRead() const { return isSeen() && m_rested; } ///< what is unread now, too

    Q_INVOKABLE void setNewestInSight(bool inSight); ///< of the messages in the mirror, not of those that are held
    Q_INVOKABLE void touch(); ///< a key or a press in the thread

Q_SIGNALS:
    void read(); ///< whatever is unread counts as read; again for each newest message that comes into sight

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
