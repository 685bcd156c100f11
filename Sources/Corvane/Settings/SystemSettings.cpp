#include "Settings/SystemSettings.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/Autostart.h"
#include "Platform/Keychain.h"
#include "Presentation/SendKeys.h"

namespace corvane {

namespace {

const QString notifyKey = u"notifyOnNewMessage"_s;

}

SystemSettings::SystemSettings(
    UserDefaults& defaults, Keychain& keychain, const AppPaths& paths, Autostart* autostart, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_keychain(keychain)
    , m_paths(paths)
    , m_autostart(autostart)
{
    connect(&m_keychain, &Keychain::changed, this, &SystemSettings::changed);
}

bool SystemSettings::startsAtLogin() const
{
    return m_autostart && m_autostart->isOn();
}

void SystemSettings::setStartsAtLogin(bool on)
{
    if (!m_autostart || on == startsAtLogin())
        return;
    m_autostart->set(on, this, [this](const Result<void>& result) {
        m_startError = result ? QString() : result.error().message;
        Q_EMIT changed();
    });
}

QString SystemSettings::startHint() const
{
    return m_startError.isEmpty() ? u"In the background: messages arrive, and the window stays closed."_s
                                  : m_startError;
}

bool SystemSettings::notifyOnNewMessage() const
{
    return m_defaults.boolean(notifyKey).value_or(true);
}

void SystemSettings::setNotifyOnNewMessage(bool on)
{
    if (on == notifyOnNewMessage())
        return;
    m_defaults.setBoolean(notifyKey, on);
    Q_EMIT changed();
}

bool SystemSettings::returnSends() const
{
    return corvane::returnSends(m_defaults);
}

void SystemSettings::setReturnSends(bool on)
{
    if (on == returnSends())
        return;
    corvane::setReturnSends(m_defaults, on);
    Q_EMIT changed();
}

QString SystemSettings::secretsPlace() const
{
    return m_keychain.description();
}

bool SystemSettings::canUnlock() const
{
    return m_keychain.isLocked();
}

void SystemSettings::unlock()
{
    m_keychain.unlock();
}

QString SystemSettings::dataFolder() const
{
    return m_paths.applicationSupport;
}

}
