#include "Foundation/UserDefaults.h"

#include "Foundation/Log.h"

#include <QFile>
#include <QSettings>

namespace corvane {

UserDefaults::UserDefaults(const QString& filePath)
    : m_settings(std::make_unique<QSettings>(filePath, QSettings::IniFormat))
{
    if (m_settings->status() != QSettings::FormatError)
        return;
    const QString copy = filePath + QStringLiteral(".damaged");
    QFile::remove(copy);
    QFile::copy(filePath, copy);
    log(QStringLiteral("UserDefaults: %1 does not read; a copy is kept as %2").arg(filePath, copy));
}

UserDefaults::~UserDefaults() = default;

std::optional<QString> UserDefaults::text(const QString& key) const
{
    const QVariant value = m_settings->value(key);
    // An unquoted comma in a file edited by hand reads as a list.
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    return value.isValid() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<bool> UserDefaults::boolean(const QString& key) const
{
    const QString word = text(key).value_or(QString()).trimmed().toLower();
    if (word == QLatin1String("true") || word == QLatin1String("1"))
        return true;
    if (word == QLatin1String("false") || word == QLatin1String("0"))
        return false;
    return std::nullopt;
}

std::optional<qint64> UserDefaults::integer(const QString& key) const
{
    bool ok = false;
    const qint64 value = text(key).value_or(QString()).toLongLong(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

void UserDefaults::setText(const QString& key, const QString& value)
{
    m_settings->setValue(key, value);
}

void UserDefaults::setBoolean(const QString& key, bool value)
{
    m_settings->setValue(key, value);
}

void UserDefaults::setInteger(const QString& key, qint64 value)
{
    m_settings->setValue(key, value);
}

void UserDefaults::remove(const QString& key)
{
    m_settings->remove(key);
}

void UserDefaults::synchronise()
{
    m_settings->sync();
}

}
