#include "Voice/SpeechLanguages.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Voice/SpeechModelStore.h"

#include <QHash>
#include <QLocale>

namespace corvane {

const QStringList& modelLanguages()
{
    static const QStringList languages
        = u"en zh de es ru ko fr ja pt tr pl ca nl ar sv it id hi fi vi he uk el ms cs ro da hu ta no th "
          "ur hr bg lt la mi "
          "ml cy sk te fa lv bn sr az sl kn et mk br eu is hy ne mn bs kk sq sw gl mr pa si km sn yo so "
          "af oc ka be tg sd "
          "gu am yi lo uz fo ht ps tk nn mt sa lb my bo tl mg as tt haw ln ha ba jw su"_s.split(QLatin1Char(' '));
    return languages;
}

QString modelLanguage(const QString& localeId)
{
    if (localeId == anyLanguage)
        return anyLanguage;
    // Where the models have another code than locales.
    static const QHash<QString, QString> others { { u"nb"_s, u"no"_s }, { u"fil"_s, u"tl"_s }, { u"jv"_s, u"jw"_s },
        { u"C"_s, u"en"_s } };
    const QString name = localeId.isEmpty() ? QLocale::system().name() : localeId;
    const QString code = name.section(QLatin1Char('_'), 0, 0).section(QLatin1Char('-'), 0, 0);
    return others.value(code, code);
}

QString dictationLocale(const UserDefaults& defaults)
{
    return defaults.text(dictationLocaleKey).value_or(QString());
}

QString voiceNoteLocale(const UserDefaults& defaults, const SpeechModelStore& store)
{
    const QString chosen = dictationLocale(defaults);
    const bool isModel = store.installedModel(store.preferredModel()).has_value();
    return !chosen.isEmpty() || !isModel ? chosen : anyLanguage;
}

QString localeDisplayName(const QString& localeId)
{
    if (localeId == anyLanguage)
        return u"Detected from the sound"_s;
    if (localeId.isEmpty())
        return u"System (%1)"_s.arg(localeDisplayName(QLocale::system().name()));
    static const QHash<QString, QString> locales { { u"tl"_s, u"fil"_s }, { u"jw"_s, u"jv"_s }, { u"no"_s, u"nb"_s } };
    const QLocale locale(locales.value(localeId, localeId));
    if (locale.language() == QLocale::C)
        return localeId == "C"_L1 ? u"English"_s : localeId;
    const QString language = QLocale::languageToString(locale.language());
    return localeId.contains(QLatin1Char('_'))
        ? u"%1 (%2)"_s.arg(language, QLocale::territoryToString(locale.territory()))
        : language;
}

}
