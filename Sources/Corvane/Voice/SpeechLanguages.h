#pragma once

#include "Foundation/Literals.h"

#include <QString>
#include <QStringList>

namespace corvane {

/// The locale value for detecting the language.
inline const QString anyLanguage = u"auto"_s;

/// The languages of a multilingual model, by the models' codes.
const QStringList& modelLanguages();

/// The models' code for the language of a locale such as "de_AT"; an empty locale is the system's.
QString modelLanguage(const QString& localeId);

class SpeechModelStore;
class UserDefaults;

/// The user default with the dictation locale; absent: the system's.
inline const QString dictationLocaleKey = u"nimb.dictationLocale"_s;
QString dictationLocale(const UserDefaults& defaults);

/// The locale for transcribing voice notes: the chosen one; else detected if the preferred model can, else the
/// system's.
QString voiceNoteLocale(const UserDefaults& defaults, const SpeechModelStore& store);

/// "German (Austria)", "German", "Detected from the sound"; for an empty id "System (German (Austria))".
QString localeDisplayName(const QString& localeId);

}
