#pragma once

#include <QString>
#include <QStringList>

namespace corvane {

/// The locale that stands for finding the language out from the sound.
inline const QString anyLanguage = QStringLiteral("auto");

/// The languages that a multilingual model speaks, as the models name them.
const QStringList& modelLanguages();

/// What the models call the language of a locale such as "de_AT"; of the system's where the locale is empty.
QString modelLanguage(const QString& localeId);

/// "German (Austria)", "German", "Detected from the sound"; for an empty id "System (German (Austria))".
QString localeDisplayName(const QString& localeId);

}
