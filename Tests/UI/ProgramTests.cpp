#include "Foundation/Literals.h"
#include "Support/Await.h"
#include "Support/PrivateBus.h"
#include "Support/TemporaryHome.h"

#include <QCoreApplication>
#include <QProcess>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/prctl.h>

using namespace corvane;

namespace {

/// Runs the real program in processes that share a home and a bus.
class Program : public testing::Test {
protected:
    std::unique_ptr<QProcess> start(const QStringList& arguments)
    {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const QString& display : { u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s })
            environment.remove(display);
        const QMap<QString, QString> own { { u"HOME"_s, home.paths().home },
            { u"XDG_DATA_HOME"_s, home.path(u"share"_s) }, { u"XDG_CONFIG_HOME"_s, home.path(u"config"_s) },
            { u"DBUS_SESSION_BUS_ADDRESS"_s, bus.address() }, { u"PULSE_SERVER"_s, u"unix:/nowhere"_s },
            { u"CORVANE_SECRETS"_s, u"file"_s }, { u"CORVANE_RESOURCES"_s, home.paths().resources },
            { u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s } };
        for (auto each = own.begin(); each != own.end(); ++each)
            environment.insert(each.key(), each.value());
        process->setProcessEnvironment(environment);
        process->setProcessChannelMode(QProcess::MergedChannels);
        process->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        process->start(QCoreApplication::applicationDirPath() + u"/corvane"_s, arguments);
        return process;
    }

    static bool ends(QProcess& process)
    {
        return await([&] { return process.state() == QProcess::NotRunning; })
            && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    }

    TemporaryHome home;
    PrivateBus bus;
};

}

TEST_F(Program, aWindowTakesThePlaceOfAHeadlessProgramAndKeepsIt)
{
    const auto headless = start({ u"--headless"_s });
    ASSERT_TRUE(await([&] { return home.read("share/Corvane/instance.lock") == "headless\n"; }));
    const auto window = start({});
    EXPECT_TRUE(ends(*headless)) << headless->readAll().constData();
    QByteArray said;
    EXPECT_TRUE(await([&] {
        said += window->readAll();
        return said.contains("first frame");
    })) << said.constData();

    for (const QStringList& later : { QStringList(), QStringList(u"--headless"_s) }) {
        const auto another = start(later);
        EXPECT_TRUE(ends(*another)) << another->readAll().constData();
        EXPECT_EQ(window->state(), QProcess::Running);
    }
    window->terminate();
    EXPECT_TRUE(ends(*window)) << window->readAll().constData();
}
