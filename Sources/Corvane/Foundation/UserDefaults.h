#pragma once

#include <QString>
#include <memory>
#include <optional>

class QSettings;

namespace corvane {

/// The per-user defaults, in one ini file. A file that does not read counts as empty, and is copied aside
/// before it is first written over.
class UserDefaults {
public:
    explicit UserDefaults(const QString& filePath);
    ~UserDefaults();

    /// Nothing where the key is missing.
    std::optional<QString> text(const QString& key) const;
    std::optional<bool> boolean(const QString& key) const; ///< nothing, too, where the value is no boolean
    std::optional<qint64> integer(const QString& key) const; ///< nothing, too, where the value is no integer

    void setText(const QString& key, const QString& value);
    void setBoolean(const QString& key, bool value);
    void setInteger(const QString& key, qint64 value);
    void remove(const QString& key);

    /// Writes what is pending now, rather than at the next turn of the loop.
    void synchronise();

private:
    QSettings* forWriting(); ///< none where the file must be left alone

    std::unique_ptr<QSettings> m_settings;
    bool m_isDamaged = false;
};

}
