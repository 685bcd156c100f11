#pragma once

#include <QHash>
#include <QString>
#include <QVariant>
#include <memory>
#include <optional>

class QSettings;

namespace corvane {

/// The per-user defaults, in one ini file. A file that does not read counts as empty, and is copied aside
/// before it is first written over; where that fails it is left alone, and changes last until the program ends.
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
    enum class File { Sound, Damaged, LeftAlone };

    QVariant value(const QString& key) const;
    void setValue(const QString& key, const QVariant& value); ///< an invalid one removes the key

    std::unique_ptr<QSettings> m_settings;
    QHash<QString, QVariant> m_unsaved; ///< what a file that is left alone does not get
    File m_file = File::Sound;
};

}
