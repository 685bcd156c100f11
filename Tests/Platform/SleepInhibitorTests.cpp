#include "Platform/Linux/Bus/LogindInhibitor.h"

#include "Support/Await.h"
#include "Support/PrivateBus.h"

#include <QDBusContext>
#include <QDBusUnixFileDescriptor>
#include <array>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

using namespace corvane;

namespace {

/// A fake logind that grants locks, except for "sleep:idle".
class Logind final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")
public:
    explicit Logind(QDBusConnection bus)
    {
        bus.registerObject("/org/freedesktop/login1", this, QDBusConnection::ExportScriptableSlots);
        bus.registerService("org.freedesktop.login1");
        EXPECT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
    }
    ~Logind() override { ::close(pipe[0]); }

    bool isHeld() const
    {
        pollfd end { pipe[0], POLLIN, 0 };
        return ::poll(&end, 1, 0) == 0;
    }

    QStringList asked;
    std::array<int, 2> pipe {};

public Q_SLOTS:
    Q_SCRIPTABLE QDBusUnixFileDescriptor Inhibit(
        const QString& what, const QString& who, const QString& why, const QString& mode)
    {
        asked.append(what + u'|' + who + u'|' + why + u'|' + mode);
        if (what == "sleep:idle") {
            sendErrorReply("org.freedesktop.DBus.Error.AccessDenied", "not you");
            return {};
        }
        const QDBusUnixFileDescriptor lock(pipe[1]);
        ::close(pipe[1]);
        return lock;
    }
};

}

TEST(SleepInhibitorTest, aLockLastsAsLongAsItIsHeld)
{
    PrivateBus bus;
    Logind logind(bus.connect());
    LogindInhibitor inhibitor(bus.connect());
    auto hold = inhibitor.hold("A call is recorded");
    bus.settle();
    EXPECT_EQ(logind.asked,
        QStringList({ "sleep:idle|Corvane|A call is recorded|block", "idle|Corvane|A call is recorded|block" }));
    EXPECT_TRUE(logind.isHeld());
    hold.reset();
    EXPECT_TRUE(await([&] { return !logind.isHeld(); }));
    EXPECT_TRUE(LogindInhibitor(noBus()).hold("without a bus"));
}

#include "SleepInhibitorTests.moc"
