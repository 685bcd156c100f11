#pragma once

#include "Foundation/Literals.h"

#include <QString>
#include <QStringList>

namespace corvane {

/// The locale that stands for finding the language out from the sound.
inline const QString anyLanguage = u"auto"_s;

/// The languages that a multilingual model speaks, as the models name them.
const QStringList& modelLanguages();

/// What the models call the language of a locale such as "de_AT"; of the system's where the locale is empty.
QString modelLanguage(const QString& localeId);

class SpeechModelStore;
class UserDefaults;

/// Under which the locale of dictation is kept; absent: the system's.
inline const QString dictationLocaleKey = u"nimb.dictationLocale"_s;
QString dictationLocale(const UserDefaults& defaults);

/// The locale in which voice notes are heard: the one that was chosen; else found out from the sound where the
/// preferred model can, else the system's.
QString voiceNoteLocale(const UserDefaults& defaults, const SpeechModelStore& store);

/// "German (Austria)", "German", "Detected from the sound"; for an empty id "System (German (Austria))".
QString localeDisplayName(const QString& localeId);

}
