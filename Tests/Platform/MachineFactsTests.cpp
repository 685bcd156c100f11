#include "Foundation/Literals.h"
#include "Platform/Linux/Processes/ProcMachineFacts.h"

#include "Support/Await.h"
#include "Support/PrivateBus.h"
#include "Support/TemporaryHome.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QDir>
#include <QSysInfo>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

/// A fake power service with one property, on a private bus.
class PowerService final : public QDBusVirtualObject {
public:
    PowerService(const QDBusConnection& bus, const QString& service, const QString& path, const QVariant& initial)
        : m_bus(bus)
        , m_service(service)
        , m_path(path)
        , m_value(initial)
    {
        m_bus.registerVirtualObject(m_path, this);
        m_bus.registerService(m_service);
    }
    ~PowerService() override { m_bus.unregisterService(m_service); }

    void change(const QString& name, const QVariant& value)
    {
        m_value = value;
        tell({ m_service, QVariantMap { { name, value } }, QStringList() });
    }

    /// Changes the value without a word, and sends any change signal.
    void change(const QVariant& value, const QVariantList& told)
    {
        m_value = value;
        tell(told);
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        if (message.interface() != properties || message.member() != "Get")
            return false;
        return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(m_value))));
    }

private:
    void tell(const QVariantList& told)
    {
        auto signal = QDBusMessage::createSignal(m_path, properties, "PropertiesChanged");
        signal.setArguments(told);
        m_bus.send(signal);
    }

    inline static const QString properties = "org.freedesktop.DBus.Properties";

    QDBusConnection m_bus;
    const QString m_service;
    const QString m_path;
    QVariant m_value;
};

class Machine : public testing::Test {
protected:
    void write(const QString& path, const QByteArray& content) { home.write("root" + path, content + '\n'); }
    void remove(const QString& path) { QDir(home.path("root" + path)).removeRecursively(); }
    void zone(const QByteArray& heat, const QList<std::pair<QByteArray, QByteArray>>& trips)
    {
        const QString folder = "/sys/class/thermal/thermal_zone0/";
        remove(folder);
        write(folder + "temp", heat);
        for (int i = 0; i < trips.size(); ++i) {
            write(folder + u"trip_point_%1_type"_s.arg(i), trips[i].first);
            write(folder + u"trip_point_%1_temp"_s.arg(i), trips[i].second);
        }
    }
    ProcMachineFacts facts(const QDBusConnection& bus = noBus()) const
    {
        return ProcMachineFacts(home.path("root"), home.paths().resources, bus);
    }
    MachineState state() const { return facts().state(); }

    TemporaryHome home;
};

}

TEST_F(Machine, theVersionAndTheProcessorAreTheKernels)
{
    EXPECT_EQ(facts().version(), SystemVersion()) << "a kernel that says nothing counts as too old";
    EXPECT_FALSE(state().isTranslated);
    write("/proc/sys/kernel/osrelease", "5.10.0-28-amd64");
    EXPECT_EQ(facts().version(), facts().minimumVersion());
    write("/proc/sys/kernel/osrelease", "6.18-rc1");
    EXPECT_EQ(facts().version(), (SystemVersion { 6, 18, 0 }));
    write("/proc/sys/kernel/arch", "riscv64");
    EXPECT_TRUE(state().isTranslated);
    const bool isX86 = QSysInfo::buildCpuArchitecture() == "x86_64" || QSysInfo::buildCpuArchitecture() == "i386";
    for (const char* kernel : { "x86_64", "i386", "i686" }) {
        write("/proc/sys/kernel/arch", kernel);
        EXPECT_EQ(state().isTranslated, !isX86) << kernel;
    }
    for (const char* kernel : { "aarch64", "armv7l" }) {
        write("/proc/sys/kernel/arch", kernel);
        EXPECT_EQ(state().isTranslated, isX86) << kernel;
    }
    EXPECT_FALSE(ProcMachineFacts({}, {}, noBus()).state().isTranslated);
}

TEST_F(Machine, heatIsWhatTheTripPointsOfAZoneSayOfIt)
{
    EXPECT_EQ(state().thermal, ThermalState::Nominal);
    const QList<std::pair<QByteArray, QByteArray>> trips { { "critical", "100000" }, { "passive", "90000" },
        { "active", "60000" }, { "hot", "0" }, { "passive", "-274000" } };
    const std::pair<QByteArray, ThermalState> cases[] { { "59999", ThermalState::Nominal },
        { "60000", ThermalState::Fair }, { "90000", ThermalState::Serious }, { "100000", ThermalState::Critical },
        { "broken", ThermalState::Nominal } };
    for (const auto& [heat, expected] : cases) {
        zone(heat, trips);
        EXPECT_EQ(state().thermal, expected) << heat.constData();
    }
    zone("120000", {});
    EXPECT_EQ(state().thermal, ThermalState::Nominal) << "without trip points a heat means nothing";
}

TEST_F(Machine, memoryIsWhatIsBuiltInAndTheDiskIsTheOneOfTheDataFolder)
{
    EXPECT_EQ(state().physicalMemoryBytes, 0U);
    write("/proc/meminfo", "MemFree: 7 kB\nMemTotal:       8040000 kB\nSwapTotal: 9 kB");
    EXPECT_EQ(state().physicalMemoryBytes, Q_UINT64_C(8040000) * 1024);
    write("/sys/devices/system/memory/block_size_bytes", "80000000");
    write("/sys/devices/system/memory/memory9/online", "0");
    EXPECT_EQ(state().physicalMemoryBytes, Q_UINT64_C(8040000) * 1024) << "no block is online";
    for (int i = 0; i < 4; ++i)
        write(u"/sys/devices/system/memory/memory%1/online"_s.arg(i), "1");
    EXPECT_EQ(state().physicalMemoryBytes, Q_UINT64_C(1) << 33);
    EXPECT_GT(state().freeDiskBytes, 0);
    EXPECT_EQ(ProcMachineFacts({}, home.path("nowhere"), noBus()).state().freeDiskBytes, -1);
    EXPECT_GT(ProcMachineFacts({}, {}, noBus()).state().physicalMemoryBytes, 0U);
}

TEST_F(Machine, powerComesFromTheSuppliesWhereNoServiceRuns)
{
    EXPECT_EQ(state().powerSourceStates, QStringList());
    const QString supplies = "/sys/class/power_supply/";
    write(supplies + "AC/type", "Mains");
    write(supplies + "AC/online", "0");
    write(supplies + "BAT0/type", "Battery");
    write(supplies + "BAT0/status", "Discharging");
    write(supplies + "hid-mouse/type", "Battery");
    write(supplies + "hid-mouse/scope", "Device");
    write(supplies + "hid-mouse/status", "Discharging");
    EXPECT_EQ(state().powerSourceStates, QStringList({ "", "Battery Power", "" }));
    write(supplies + "BAT0/status", "Not charging");
    write(supplies + "AC/online", "1");
    EXPECT_EQ(state().powerSourceStates, QStringList({ "AC Power", "AC Power", "" }));
    for (const char* status : { "Unknown", "" }) {
        write(supplies + "BAT0/status", status);
        EXPECT_EQ(state().powerSourceStates, QStringList({ "AC Power", "", "" })) << status;
    }
    EXPECT_FALSE(state().lowPowerMode);
    write("/sys/firmware/acpi/platform_profile", "low-power");
    EXPECT_TRUE(state().lowPowerMode);
}

TEST_F(Machine, theServicesOfTheBusAreFollowedAsTheyComeChangeAndGo)
{
    PrivateBus bus;
    write("/sys/firmware/acpi/platform_profile", "low-power");
    PowerService upower(bus.connect(), "org.freedesktop.UPower", "/org/freedesktop/UPower", true);
    const ProcMachineFacts machine = facts(bus.connect());
    bus.settle();
    EXPECT_EQ(machine.state().powerSourceStates, QStringList("Battery Power"));
    upower.change("OnBattery", false);
    bus.settle();
    EXPECT_EQ(machine.state().powerSourceStates, QStringList("AC Power"));
    const QVariantMap onBattery { { "OnBattery", true } };
    upower.change(true, { "org.example.Other", onBattery, QStringList("OnBattery") });
    upower.change(true, { "org.freedesktop.UPower", onBattery });
    upower.change(true, { "org.freedesktop.UPower", QVariantMap { { "Other", true } }, QStringList("Another") });
    bus.settle();
    EXPECT_EQ(machine.state().powerSourceStates, QStringList("AC Power")) << "none of them is about this property";
    upower.change(true, { "org.freedesktop.UPower", QVariantMap(), QStringList("OnBattery") });
    bus.settle();
    EXPECT_EQ(machine.state().powerSourceStates, QStringList("Battery Power")) << "a change without the value is read";

    const std::pair<QString, QString> profiles[] { { "net.hadess.PowerProfiles", "/net/hadess/PowerProfiles" },
        { "org.freedesktop.UPower.PowerProfiles", "/org/freedesktop/UPower/PowerProfiles" } };
    for (const auto& [service, path] : profiles) {
        ASSERT_TRUE(await([&] { return machine.state().lowPowerMode; })) << "as the firmware says";
        PowerService daemon(bus.connect(), service, path, "balanced");
        ASSERT_TRUE(await([&] { return !machine.state().lowPowerMode; }));
        daemon.change("ActiveProfile", "power-saver");
        ASSERT_TRUE(await([&] { return machine.state().lowPowerMode; }));
        daemon.change("ActiveProfile", "performance");
        ASSERT_TRUE(await([&] { return !machine.state().lowPowerMode; }));
    }
    EXPECT_TRUE(await([&] { return machine.state().lowPowerMode; })) << "the daemon has gone";
}
