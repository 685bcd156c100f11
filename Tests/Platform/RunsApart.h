#pragma once

#include "Foundation/Literals.h"
#include "Support/PrivateBus.h"
#include "Support/TemporaryHome.h"

#include <QCoreApplication>
#include <QProcess>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace corvane {

/// Libraries cache their environment and their bus for the lifetime of the process. Each test of them therefore runs
/// itself again in a child process with a separate home. Returns true in that child process, where the test does its
/// work.
inline bool runsApart()
{
    if (qEnvironmentVariableIsSet("CORVANE_TEST_RUNS_APART"))
        return true;
    const TemporaryHome home;
    home.write("run/made", {});
    ::chmod(qPrintable(home.path("run")), S_IRWXU);
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    QProcess program;
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start("env",
        { "-u", "DBUS_SESSION_BUS_ADDRESS", "-u", "DISPLAY", "-u", "CORVANE_SECRETS", "CORVANE_TEST_RUNS_APART=1",
            "HOME=" + home.paths().home, "XDG_DATA_HOME=" + home.path("share"),
            "XDG_CONFIG_HOME=" + home.path("config"), "XDG_RUNTIME_DIR=" + home.path("run"),
            QCoreApplication::applicationFilePath(),
            u"--gtest_filter=%1.%2"_s.arg(test->test_suite_name(), test->name()) });
    EXPECT_TRUE(program.waitForFinished());
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0) << program.readAll().toStdString();
    return false;
}

/// A private bus that libraries use as the session bus.
class SessionBus : public PrivateBus {
public:
    SessionBus() { ::setenv("DBUS_SESSION_BUS_ADDRESS", qPrintable(address()), 1); }
};

}
