#include "Support/Await.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

namespace corvane {

bool await(const std::function<bool()>& condition)
{
    const QDeadlineTimer deadline(90'000); // a loaded machine takes its time
    // The condition may become true without an event in this process.
    QTimer tick;
    tick.start(10);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

}
