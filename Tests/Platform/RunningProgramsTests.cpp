#include "Platform/RunningPrograms.h"

#include "Platform/ProcessTable.h"
#include "Support/TemporaryHome.h"

#include <QCoreApplication>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace corvane;

TEST(RunningPrograms, eachIsToldByItsFileAndByWhatTheDesktopStartedItAs)
{
    const TemporaryHome home;
    const auto runs = [&](const QString& pid, const char* program, const QByteArray& unit) {
        home.write("proc/" + pid + "/cgroup", "0::/user.slice/user@1000.service/app.slice/" + unit + '\n');
        ASSERT_EQ(::symlink(program, qPrintable(home.path("proc/" + pid + "/exe"))), 0);
    };
    runs("7", "/app/extra/zoom/zoom", "app-flatpak-us.zoom.Zoom-4711.scope");
    runs("8", "/usr/lib/electron/electron (deleted)", "app-gnome-signal\\x2ddesktop-8.scope");
    runs("9", "/usr/bin/telegram-desktop", "app-org.telegram.desktop@0f1e.service");
    runs("10", "/usr/bin/bash", "session.slice");
    runs("11", "/usr/bin/bash", "session.slice");
    runs("13", "/usr/bin/part", "app-org.example.slice");
    runs("self", "/usr/bin/self", "app-gnome-self-1.scope");
    home.write("proc/12/cgroup", "0::/kernel\n"); // no executable
    QList<RunningProgram> found = runningPrograms(home.path("proc"));
    std::ranges::sort(found, {}, &RunningProgram::binary);
    const QList<RunningProgram> expected { { "bash", "" }, { "electron", "signal-desktop" }, { "part", "" },
        { "telegram-desktop", "org.telegram.desktop" }, { "zoom", "us.zoom.Zoom" } };
    EXPECT_EQ(found, expected);
}

TEST(ProcessTable, everyProcessIsThereWithItsCommandLine)
{
    QStringList own;
    for (const QByteArray& line : processTable().split('\n'))
        if (line.trimmed().startsWith(QByteArray::number(::getpid()) + ' '))
            own.append(QString::fromUtf8(line));
    ASSERT_EQ(own.size(), 1);
    EXPECT_TRUE(own.first().contains(QCoreApplication::arguments().constFirst())) << own.first().toStdString();
}
