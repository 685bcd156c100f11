#include "Platform/Linux/Bus/DesktopAutostart.h"

#include "PortalResponse.h"
#include "Support/Print.h"
#include "Support/PrivateBus.h"
#include "Support/TemporaryHome.h"

#include <QDBusContext>
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

/// A fake background portal that grants or refuses requests, as `answer` says.
class BackgroundPortal final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Background")
public:
    explicit BackgroundPortal(const QDBusConnection& bus)
        : m_bus(bus)
    {
        m_bus.registerObject("/org/freedesktop/portal/desktop", this, QDBusConnection::ExportScriptableSlots);
        m_bus.registerService("org.freedesktop.portal.Desktop");
    }
    ~BackgroundPortal() override { m_bus.unregisterService("org.freedesktop.portal.Desktop"); }

    uint answer = 1;
    std::optional<QVariantMap> says; ///< instead of what was asked for
    QStringList command;

public Q_SLOTS:
    Q_SCRIPTABLE QDBusObjectPath RequestBackground(const QString&, const QVariantMap& options)
    {
        command = options["commandline"].toStringList();
        return respond(m_bus, message(), options, answer,
            says.value_or(QVariantMap { { "background", true }, { "autostart", options["autostart"].toBool() } }));
    }

private:
    QDBusConnection m_bus;
};

class AutostartTest : public testing::Test {
protected:
    QString set(DesktopAutostart& autostart, bool on)
    {
        QObject context;
        QString told = "nothing";
        autostart.set(on, &context, [&](const Result<void>& result) { told = result ? "" : result.error().message; });
        privateBus.settle();
        return told;
    }

    TemporaryHome home;
    const QString entry = home.path("config/autostart/com.nimb.corvane.desktop");
    PrivateBus privateBus;
    QDBusConnection bus = privateBus.connect();
    QDBusConnection desktopBus = privateBus.connect();
};

}

TEST_F(AutostartTest, anEntryStartsTheProgramWhichDesktopsMaySwitchOff)
{
    DesktopAutostart autostart(bus, home.path("config"), "/opt/a b/100%/$x", DesktopAutostart::Sandbox::No);
    EXPECT_FALSE(autostart.isOn());
    EXPECT_EQ(set(autostart, true), "");
    EXPECT_TRUE(autostart.isOn());
    QFile file(entry);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    EXPECT_TRUE(file.readAll().contains("Exec=\"/opt/a b/100%%/\\\\$x\" --background\n"));
    file.write("Hidden=true\n");
    file.close();
    EXPECT_FALSE(autostart.isOn());
    home.write("config/autostart/com.nimb.corvane.desktop", "X-GNOME-Autostart-enabled=false\n");
    EXPECT_FALSE(autostart.isOn());
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(set(autostart, false), "") << "also if there is none";
        EXPECT_FALSE(QFile::exists(entry));
    }
    ASSERT_TRUE(QDir().mkpath(entry + "/folder"));
    EXPECT_TRUE(set(autostart, false).endsWith("cannot be changed."));
    home.write("blocked/autostart", "a file where the folder should be");
    DesktopAutostart blocked(bus, home.path("blocked"), "/usr/bin/corvane", DesktopAutostart::Sandbox::No);
    EXPECT_TRUE(set(blocked, true).endsWith("cannot be changed."));
}

TEST_F(AutostartTest, inASandboxThePortalDecides)
{
    DesktopAutostart autostart(bus, home.path("config"), "/app/bin/corvane", DesktopAutostart::Sandbox::Yes);
    EXPECT_EQ(set(autostart, true), "The desktop did not allow it.") << "no portal";
    BackgroundPortal portal(desktopBus);
    EXPECT_EQ(set(autostart, true), "The desktop did not allow it.");
    EXPECT_FALSE(autostart.isOn());
    portal.answer = 0;
    EXPECT_EQ(set(autostart, true), "");
    EXPECT_EQ(portal.command, QStringList({ "corvane", "--background" }));
    EXPECT_TRUE(autostart.isOn());
    const QString refused = "The desktop did not allow it.";
    portal.says = QVariantMap { { "autostart", true } };
    EXPECT_EQ(set(autostart, false), refused) << "it stays on there";
    portal.says = QVariantMap {};
    EXPECT_EQ(set(autostart, false), refused);
    portal.says.reset();
    portal.answer = 2;
    EXPECT_EQ(set(autostart, false), refused);
    EXPECT_TRUE(autostart.isOn());
    portal.answer = 0;
    EXPECT_EQ(set(autostart, false), "");
    EXPECT_FALSE(autostart.isOn());
    DesktopAutostart alone(noBus(), home.path("config"), "/app/bin/corvane", DesktopAutostart::Sandbox::Yes);
    EXPECT_EQ(set(alone, true), refused);
}

#include "AutostartTests.moc"
