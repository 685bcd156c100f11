#include "Platform/Linux/Processes/ProcMachineFacts.h"

#include "Foundation/Literals.h"
#include "Platform/AppPaths.h"
#include "Platform/Linux/Files/SystemFiles.h"
#include "Platform/Linux/Services.h"

#include <QDir>
#include <QRegularExpression>
#include <algorithm>
#include <sys/statvfs.h>

namespace corvane {

namespace {

const BusObject upower { u"org.freedesktop.UPower"_s, u"/org/freedesktop/UPower"_s, u"org.freedesktop.UPower"_s };
const BusObject powerProfiles { u"org.freedesktop.UPower.PowerProfiles"_s, u"/org/freedesktop/UPower/PowerProfiles"_s,
    u"org.freedesktop.UPower.PowerProfiles"_s };
const BusObject powerProfilesByOldName { u"net.hadess.PowerProfiles"_s, u"/net/hadess/PowerProfiles"_s,
    u"net.hadess.PowerProfiles"_s };

const QString onMains = u"AC Power"_s;
const QString onBattery = u"Battery Power"_s;

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
    static const QRegularExpression numbers(uR"(^(\d+)\.(\d+)(?:\.(\d+))?)"_s);
    const auto match = numbers.match(release);
    return { match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt() };
}

/// Whether a kernel of that architecture runs this build natively.
bool isTranslated(const QString& kernelArchitecture)
{
    const auto family = [](const QString& name) {
        if (name == "x86_64"_L1 || name == "i386"_L1 || name == "i686"_L1)
            return u"x86"_s;
        return name == "aarch64"_L1 || name.startsWith("arm"_L1) ? u"arm"_s : name;
    };
    return !kernelArchitecture.isEmpty() && family(kernelArchitecture) != family(QSysInfo::buildCpuArchitecture());
}

/// Rates a zone's temperature by its own trip points; zones without any are ignored.
ThermalState heatOf(const QString& zone)
{
    const int heat = word(zone + u"/temp"_s).toInt();
    auto state = ThermalState::Nominal;
    for (int i = 0;; ++i) {
        const QString trip = zone + u"/trip_point_%1_"_s.arg(i);
        const QString type = word(trip + u"type"_s);
        if (type.isEmpty())
            return state;
        const int limit = word(trip + u"temp"_s).toInt();
        // A disabled trip point is 0 or below.
        if (limit <= 0 || heat < limit)
            continue;
        const auto reached = type == "critical"_L1 || type == "hot"_L1 ? ThermalState::Critical
            : type == "passive"_L1                                     ? ThermalState::Serious
                                                                       : ThermalState::Fair;
        state = std::max(state, reached);
    }
}

ThermalState hottest(const QString& root)
{
    auto state = ThermalState::Nominal;
    for (const QString& zone : folders(root + u"/sys/class/thermal"_s, u"thermal_zone*"_s))
        state = std::max(state, heatOf(zone));
    return state;
}

/// The installed memory. The total of /proc/meminfo excludes what firmware and kernel reserve, so 8 GiB would look
/// like less.
quint64 physicalMemory(const QString& root)
{
    const QString blocks = root + u"/sys/devices/system/memory"_s;
    const quint64 blockSize = word(blocks + u"/block_size_bytes"_s).toULongLong(nullptr, 16);
    const QStringList all = folders(blocks, u"memory[0-9]*"_s);
    const auto online
        = std::ranges::count_if(all, [](const QString& block) { return word(block + u"/online"_s) == "1"_L1; });
    if (blockSize > 0 && online > 0)
        return blockSize * static_cast<quint64>(online);
    static const QRegularExpression total(uR"(MemTotal:\s*(\d+) kB)"_s);
    return total.match(word(root + u"/proc/meminfo"_s)).captured(1).toULongLong() * 1024;
}

qint64 freeDisk(const QString& folder)
{
    struct statvfs volume {};
    if (::statvfs(QFile::encodeName(folder).constData(), &volume) != 0)
        return -1;
    return static_cast<qint64>(volume.f_bavail) * static_cast<qint64>(volume.f_frsize);
}

/// Mains power if connected; a battery by its state.
QString stateOfSupply(const QString& supply)
{
    if (word(supply + u"/type"_s) != "Battery"_L1)
        return word(supply + u"/online"_s) == "1"_L1 ? onMains : QString();
    // Ignores batteries of devices such as a mouse.
    if (word(supply + u"/scope"_s) == "Device"_L1)
        return {};
    const QString status = word(supply + u"/status"_s);
    if (status == "Discharging"_L1)
        return onBattery;
    return status.isEmpty() || status == "Unknown"_L1 ? QString() : onMains;
}

}

ProcMachineFacts::ProcMachineFacts(const QString& root, const QString& dataFolder, const QDBusConnection& systemBus)
    : m_root(root)
    , m_dataFolder(dataFolder)
    , m_version(versionIn(word(root + u"/proc/sys/kernel/osrelease"_s)))
    , m_onBattery(systemBus, upower, u"OnBattery"_s)
    , m_profile(systemBus, powerProfiles, u"ActiveProfile"_s)
    , m_profileByOldName(systemBus, powerProfilesByOldName, u"ActiveProfile"_s)
{
}

MachineState ProcMachineFacts::state() const
{
    return { isTranslated(word(m_root + u"/proc/sys/kernel/arch"_s)), hottest(m_root), lowPowerMode(),
        powerSourceStates(), physicalMemory(m_root), freeDisk(m_dataFolder) };
}

QStringList ProcMachineFacts::powerSourceStates() const
{
    if (m_onBattery.value().isValid())
        return { m_onBattery.value().toBool() ? onBattery : onMains };
    QStringList mains;
    QStringList batteries;
    for (const QString& supply : folders(m_root + u"/sys/class/power_supply"_s, u"*"_s)) {
        const bool isBattery = word(supply + u"/type"_s) == "Battery"_L1;
        (isBattery ? batteries : mains).append(stateOfSupply(supply));
    }
    return mains + batteries;
}

bool ProcMachineFacts::lowPowerMode() const
{
    for (const BusProperty* profile : { &m_profile, &m_profileByOldName }) {
        if (profile->value().isValid())
            return profile->value().toString() == "power-saver"_L1;
    }
    return word(m_root + u"/sys/firmware/acpi/platform_profile"_s) == "low-power"_L1;
}

std::unique_ptr<MachineFacts> makeMachineFacts(const AppPaths& paths)
{
    return std::make_unique<ProcMachineFacts>(QString(), paths.applicationSupport, QDBusConnection::systemBus());
}

}
