#include "Platform/Linux/Processes/ProcMachineFacts.h"

#include "Platform/AppPaths.h"
#include "Platform/Linux/Files/SystemFiles.h"
#include "Platform/Linux/Services.h"

#include <QDir>
#include <QRegularExpression>
#include <algorithm>
#include <sys/statvfs.h>

namespace corvane {

namespace {

const BusObject upower { QStringLiteral("org.freedesktop.UPower"), QStringLiteral("/org/freedesktop/UPower"),
    QStringLiteral("org.freedesktop.UPower") };
const BusObject powerProfiles { QStringLiteral("org.freedesktop.UPower.PowerProfiles"),
    QStringLiteral("/org/freedesktop/UPower/PowerProfiles"), QStringLiteral("org.freedesktop.UPower.PowerProfiles") };
const BusObject powerProfilesByOldName { QStringLiteral("net.hadess.PowerProfiles"),
    QStringLiteral("/net/hadess/PowerProfiles"), QStringLiteral("net.hadess.PowerProfiles") };

const QString onMains = QStringLiteral("AC Power");
const QString onBattery = QStringLiteral("Battery Power");

QString word(const QString& path)
{
    return QString::fromUtf8(systemFile(path)).trimmed();
}

QStringList folders(const QString& folder, const QString& pattern)
{
    QStringList paths;
    for (const QString& name : QDir(folder).entryList({ pattern }, QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        paths.append(folder + u'/' + name);
    return paths;
}

/// "6.1.0-18-amd64"
SystemVersion versionIn(const QString& release)
{
    static const QRegularExpression numbers(QStringLiteral(R"(^(\d+)\.(\d+)(?:\.(\d+))?)"));
    const auto match = numbers.match(release);
    return { match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt() };
}

/// Whether a kernel of that name runs programs of this build as they are.
bool isTranslated(const QString& kernelArchitecture)
{
    const auto family = [](const QString& name) {
        if (name == QLatin1StringView("x86_64") || name == QLatin1StringView("i386")
            || name == QLatin1StringView("i686"))
            return QStringLiteral("x86");
        return name == QLatin1StringView("aarch64") || name.startsWith(QLatin1StringView("arm")) ? QStringLiteral("arm")
                                                                                                 : name;
    };
    return !kernelArchitecture.isEmpty() && family(kernelArchitecture) != family(QSysInfo::buildCpuArchitecture());
}

/// What a zone's heat means, by its own trip points; without any it means nothing.
ThermalState heatOf(const QString& zone)
{
    const int heat = word(zone + QStringLiteral("/temp")).toInt();
    auto state = ThermalState::Nominal;
    for (int i = 0;; ++i) {
        const QString trip = zone + QStringLiteral("/trip_point_%1_").arg(i);
        const QString type = word(trip + QStringLiteral("type"));
        if (type.isEmpty())
            return state;
        const int limit = word(trip + QStringLiteral("temp")).toInt();
        // A trip point that is switched off stands at 0 or below.
        if (limit <= 0 || heat < limit)
            continue;
        const auto reached = type == QLatin1StringView("critical") || type == QLatin1StringView("hot")
            ? ThermalState::Critical
            : type == QLatin1StringView("passive") ? ThermalState::Serious
                                                   : ThermalState::Fair;
        state = std::max(state, reached);
    }
}

ThermalState hottest(const QString& root)
{
    auto state = ThermalState::Nominal;
    for (const QString& zone : folders(root + QStringLiteral("/sys/class/thermal"), QStringLiteral("thermal_zone*")))
        state = std::max(state, heatOf(zone));
    return state;
}

/// What the machine was built with. The total of /proc/meminfo lacks what firmware and kernel keep for themselves,
/// which makes 8 GiB look like less.
quint64 physicalMemory(const QString& root)
{
    const QString blocks = root + QStringLiteral("/sys/devices/system/memory");
    const quint64 blockSize = word(blocks + QStringLiteral("/block_size_bytes")).toULongLong(nullptr, 16);
    const QStringList all = folders(blocks, QStringLiteral("memory[0-9]*"));
    const auto online = std::ranges::count_if(
        all, [](const QString& block) { return word(block + QStringLiteral("/online")) == QLatin1StringView("1"); });
    if (blockSize > 0 && online > 0)
        return blockSize * static_cast<quint64>(online);
    static const QRegularExpression total(QStringLiteral(R"(MemTotal:\s*(\d+) kB)"));
    return total.match(word(root + QStringLiteral("/proc/meminfo"))).captured(1).toULongLong() * 1024;
}

qint64 freeDisk(const QString& folder)
{
    struct statvfs volume {};
    if (::statvfs(QFile::encodeName(folder).constData(), &volume) != 0)
        return -1;
    return static_cast<qint64>(volume.f_bavail) * static_cast<qint64>(volume.f_frsize);
}

/// The mains where they are connected; a battery by what it is doing.
QString stateOfSupply(const QString& supply)
{
    if (word(supply + QStringLiteral("/type")) != QLatin1StringView("Battery"))
        return word(supply + QStringLiteral("/online")) == QLatin1StringView("1") ? onMains : QString();
    // A mouse's battery says nothing of the machine.
    if (word(supply + QStringLiteral("/scope")) == QLatin1StringView("Device"))
        return {};
    const QString status = word(supply + QStringLiteral("/status"));
    if (status == QLatin1StringView("Discharging"))
        return onBattery;
    return status.isEmpty() || status == QLatin1StringView("Unknown") ? QString() : onMains;
}

}

ProcMachineFacts::ProcMachineFacts(const QString& root, const QString& dataFolder, const QDBusConnection& systemBus)
    : m_root(root)
    , m_dataFolder(dataFolder)
    , m_version(versionIn(word(root + QStringLiteral("/proc/sys/kernel/osrelease"))))
    , m_onBattery(systemBus, upower, QStringLiteral("OnBattery"))
    , m_profile(systemBus, powerProfiles, QStringLiteral("ActiveProfile"))
    , m_profileByOldName(systemBus, powerProfilesByOldName, QStringLiteral("ActiveProfile"))
{
}

MachineState ProcMachineFacts::state() const
{
    return { isTranslated(word(m_root + QStringLiteral("/proc/sys/kernel/arch"))), hottest(m_root), lowPowerMode(),
        powerSourceStates(), physicalMemory(m_root), freeDisk(m_dataFolder) };
}

QStringList ProcMachineFacts::powerSourceStates() const
{
    if (m_onBattery.value().isValid())
        return { m_onBattery.value().toBool() ? onBattery : onMains };
    QStringList mains;
    QStringList batteries;
    for (const QString& supply : folders(m_root + QStringLiteral("/sys/class/power_supply"), QStringLiteral("*"))) {
        const bool isBattery = word(supply + QStringLiteral("/type")) == QLatin1StringView("Battery");
        (isBattery ? batteries : mains).append(stateOfSupply(supply));
    }
    return mains + batteries;
}

bool ProcMachineFacts::lowPowerMode() const
{
    for (const BusProperty* profile : { &m_profile, &m_profileByOldName }) {
        if (profile->value().isValid())
            return profile->value().toString() == QLatin1StringView("power-saver");
    }
    return word(m_root + QStringLiteral("/sys/firmware/acpi/platform_profile")) == QLatin1StringView("low-power");
}

std::unique_ptr<MachineFacts> makeMachineFacts(const AppPaths& paths)
{
    return std::make_unique<ProcMachineFacts>(QString(), paths.applicationSupport, QDBusConnection::systemBus());
}

}
