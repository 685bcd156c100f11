#include "Foundation/UserDefaults.h"

#include "Foundation/CopyAside.h"
#include "Foundation/Literals.h"

#include <QSettings>

namespace corvane {

UserDefaults::UserDefaults(const QString& filePath)
    : m_settings(std::make_unique<QSettings>(filePath, QSettings::IniFormat))
{
    // Sections are parsed lazily, so errors show up only then.
    m_settings->allKeys();
    if (m_settings->status() == QSettings::FormatError)
        m_file = File::Damaged;
}

UserDefaults::~UserDefaults() = default;

std::optional<QString> UserDefaults::text(const QString& key) const
{
    const QVariant value = this->value(key);
    // An unquoted comma in a hand-edited file reads as a list.
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(u", "_s);
    return value.isValid() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<bool> UserDefaults::boolean(const QString& key) const
{
    const QString word = text(key).value_or(QString()).trimmed().toLower();
    if (word == "true"_L1 || word == "1"_L1)
        return true;
    if (word == "false"_L1 || word == "0"_L1)
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
    setValue(key, value);
}

void UserDefaults::setBoolean(const QString& key, bool value)
{
    setText(key, value ? u"true"_s : u"false"_s);
}

void UserDefaults::setInteger(const QString& key, qint64 value)
{
    setText(key, QString::number(value));
}

void UserDefaults::remove(const QString& key)
{
    setValue(key, QVariant());
}

void UserDefaults::synchronise()
{
    m_settings->sync();
}

QVariant UserDefaults::value(const QString& key) const
{
    const auto unsaved = m_unsaved.constFind(key);
    return unsaved == m_unsaved.cend() ? m_settings->value(key) : *unsaved;
}

void UserDefaults::setValue(const QString& key, const QVariant& value)
{
    if (m_file == File::Damaged)
        m_file = copyAside(m_settings->fileName()) ? File::Sound : File::LeftAlone;
    if (m_file == File::LeftAlone)
        m_unsaved.insert(key, value);
    else if (value.isValid())
        m_settings->setValue(key, value);
    else
        m_settings->remove(key);
}

}
