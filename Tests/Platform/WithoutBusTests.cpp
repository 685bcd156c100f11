#include "Platform/AppPaths.h"
#include "Platform/Desktop.h"
#include "Platform/Linux/Services.h"
#include "Platform/NotificationService.h"
#include "Platform/RunsApart.h"
#include "Platform/SingleInstance.h"
#include "Platform/Tray.h"
#include "Support/Environment.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

using namespace corvane;

TEST(WithoutBus, everyServiceComesUpAtOnceAndStaysSilent)
{
    const Environment environment { { "DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus" } };
    const TemporaryHome home;
    QElapsedTimer timer;
    timer.start();
    const auto notifications = makeNotificationService();
    const auto desktop = makeDesktop(022);
    const auto tray = makeTray();
    const auto instance = makeSingleInstance(home.paths(), StartFor::Window);
    EXPECT_TRUE(instance->claim({}));
    EXPECT_FALSE(notifications->isAvailable());
    notifications->show({});
    desktop->setBadge(1);
    tray->setMenu({ { "quit", "Quit" } });
    tray->setUnread(1);
    EXPECT_FALSE(tray->isShown());
    EXPECT_LT(timer.elapsed(), 1000);
}

TEST(WithoutBus, aWindowWithoutADisplayIsNotStarted)
{
    if (!runsApart())
        return;
    const LogCapture log;
    const Environment environment { { "DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus" }, { "DISPLAY", {} },
        { "WAYLAND_DISPLAY", {} }, { "GTEST_FILTER", "-*" } };
    EXPECT_FALSE(startWithWindow());
    EXPECT_EQ(log.lines(), QStringList("SingleInstance: a window was asked for, and there is no display"));
}
