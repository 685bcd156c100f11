#pragma once

#include <QHash>
#include <QString>
#include <QVariant>
#include <memory>
#include <optional>

class QSettings;

namespace corvane {

/// The per-user defaults, in one ini file. An unreadable file counts as empty and is copied aside before it is
/// overwritten for the first time; if that fails, it is left alone and changes last until the program ends.
class UserDefaults {
public:
    explicit UserDefaults(const QString& filePath);
    ~UserDefaults();

    /// Nothing if the key is missing.
    std::optional<QString> text(const QString& key) const;
    std::optional<bool> boolean(const QString& key) const; ///< nothing, too, if the value is not a boolean
    std::optional<qint64> integer(const QString& key) const; ///< nothing, too, if the value is not an integer

    void setText(const QString& key, const QString& value);
    void setBoolean(const QString& key, bool value);
    void setInteger(const QString& key, qint64 value);
    void remove(const QString& key);

    /// Writes pending changes now instead of at the next turn of the event loop.
    void synchronise();

private:
    enum class File { Sound, Damaged, LeftAlone };

    QVariant value(const QString& key) const;
    void setValue(const QString& key, const QVariant& value); ///< an invalid one removes the key

    std::unique_ptr<QSettings> m_settings;
    QHash<QString, QVariant> m_unsaved; ///< changes that could not be written to a file that is left alone
    File m_file = File::Sound;
};

}
