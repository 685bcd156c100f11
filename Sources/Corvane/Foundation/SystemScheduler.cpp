#include "Foundation/SystemScheduler.h"

#include <QDateTime>
#include <QTimer>

namespace corvane {

namespace {

class SystemTimer final : public Timer {
public:
    SystemTimer(Milliseconds interval, bool once, std::function<void()> callback)
    {
        m_timer.setSingleShot(once);
        m_timer.setTimerType(interval < Milliseconds(1000) ? Qt::PreciseTimer : Qt::CoarseTimer);
        // The callback may destroy this timer and thereby the running function.
        QObject::connect(&m_timer, &QTimer::timeout, [call = std::move(callback)] {
            const auto copy = call;
            copy();
        });
        m_timer.start(interval);
    }

private:
    QTimer m_timer;
};

}

qint64 SystemScheduler::nowMs() const
{
    return QDateTime::currentMSecsSinceEpoch();
}

qint64 SystemScheduler::monotonicMs() const
{
    return std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::unique_ptr<Timer> SystemScheduler::after(Milliseconds delay, std::function<void()> callback)
{
    return std::make_unique<SystemTimer>(delay, true, std::move(callback));
}

std::unique_ptr<Timer> SystemScheduler::every(Milliseconds period, std::function<void()> callback)
{
    return std::make_unique<SystemTimer>(period, false, std::move(callback));
}

}
