#include "AI/FactReadings.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <QHash>
#include <algorithm>

namespace corvane {

namespace {

/// Groups of words, one per line; synonyms are separated by spaces.
QHash<QString, int> numbered(const char* groups, int first)
{
    QHash<QString, int> words;
    int number = first;
    for (const QString& group : QString::fromUtf8(groups).split(u'\n')) {
        for (const QString& word : group.split(u' ', Qt::SkipEmptyParts))
            words.insert(folded(word), number);
        ++number;
    }
    return words;
}

const QHash<QString, int>& months()
{
    static const QHash<QString, int> words = numbered(R"(january jan januar jänner janvier janv enero gennaio
february feb februar février févr febrero febbraio
march mar märz mrz mars marzo
april apr avril abril aprile
may mai mayo maggio
june jun juni juin junio giugno
july jul juli juillet julio luglio
august aug août agosto
september sept sep septembre septiembre settembre
october oct oktober okt octobre octubre ottobre
november nov novembre noviembre
december dec dezember dez décembre diciembre dicembre)",
        1);
    return words;
}

const QHash<QString, int>& weekdays()
{
    static const QHash<QString, int> words = numbered(R"(monday mondays montag montags lundi lunes lunedì
tuesday tuesdays dienstag dienstags mardi martes martedì
wednesday wednesdays mittwoch mittwochs mercredi miércoles mercoledì
thursday thursdays donnerstag donnerstags jeudi jueves giovedì
friday fridays freitag freitags vendredi viernes venerdì
saturday saturdays samstag samstags sonnabend samedi sábado sabato
sunday sundays sonntag sonntags dimanche domingo domenica)",
        1);
    return words;
}

const QHash<QString, int>& numberWords()
{
    static const QHash<QString, int> words = [] {
        QHash<QString, int> all = numbered(R"(three drei trois tres tre
four vier quatre cuatro quattro
five fünf cinq cinco cinque
six sechs seis sei
seven sieben sept siete sette
eight acht huit ocho otto
nine neun neuf nueve nove
ten zehn dix diez dieci
eleven elf onze
twelve zwölf douze doce dodici)",
            3);
        const QList<std::pair<const char*, int>> larger { { "fifteen", 15 }, { "fünfzehn", 15 }, { "quinze", 15 },
            { "twenty", 20 }, { "zwanzig", 20 }, { "vingt", 20 }, { "thirty", 30 }, { "dreißig", 30 }, { "trente", 30 },
            { "forty", 40 }, { "vierzig", 40 }, { "fifty", 50 }, { "fünfzig", 50 }, { "sixty", 60 }, { "ninety", 90 } };
        for (const auto& [word, number] : larger)
            all.insert(folded(QString::fromUtf8(word)), number);
        // These words have other meanings, too.
        for (const char* word : { "sept", "sei", "onze", "tre", "elf", "acht", "otto" })
            all.remove(QLatin1StringView(word));
        return all;
    }();
    return words;
}

/// The pattern: each word without diacritics, and as spelled if that differs.
QString alternatives(const QHash<QString, int>& words, const char* spellings)
{
    QStringList all = words.keys();
    all += QString::fromUtf8(spellings).split(u' ', Qt::SkipEmptyParts);
    std::ranges::sort(all, std::ranges::greater(), &QString::size);
    return all.join(u'|');
}

std::optional<int> find(const QHash<QString, int>& words, const QString& word)
{
    const auto found = words.constFind(folded(word));
    return found == words.constEnd() ? std::nullopt : std::optional(*found);
}

/// "1.250,00" with `decimal` as its decimal separator; any other separator groups digits.
double valueOf(QString digits, QChar decimal)
{
    digits.removeIf([&](QChar sign) { return !sign.isDigit() && sign != decimal; });
    return digits.replace(decimal, u'.').toDouble();
}

}

QList<double> numberValues(const QString& digits)
{
    const qsizetype comma = digits.lastIndexOf(u',');
    const qsizetype point = digits.lastIndexOf(u'.');
    if (comma >= 0 && point >= 0)
        return { valueOf(digits, comma > point ? u',' : u'.') };
    if (comma < 0 && point < 0)
        return { valueOf(digits, u'.') };
    const QChar sign = comma >= 0 ? u',' : u'.';
    const double decimal = valueOf(digits, sign);
    if (digits.count(sign) > 1)
        return { valueOf(digits, u' ') };
    // A single separator before three digits is ambiguous, but nobody writes "1.000" for 1.
    if (digits.size() - std::max(comma, point) != 4)
        return { decimal };
    const double grouped = valueOf(digits, u' ');
    return digits.endsWith("000"_L1) ? QList { grouped } : QList { grouped, decimal };
}

std::optional<int> monthNumber(const QString& word)
{
    return find(months(), word);
}

std::optional<int> weekdayNumber(const QString& word)
{
    return find(weekdays(), word);
}

std::optional<int> numberOfWord(const QString& word)
{
    return find(numberWords(), word);
}

QString monthPattern()
{
    return alternatives(months(), "märz jänner février févr août décembre");
}

QString weekdayPattern()
{
    return alternatives(weekdays(), "lunedì martedì miércoles mercoledì giovedì venerdì sábado");
}

QString numberWordPattern()
{
    return alternatives(numberWords(), "fünf zwölf fünfzehn fünfzig dreißig");
}

QString unitOf(const QString& word)
{
    static const QHash<QString, QString> units = [] {
        QHash<QString, QString> all;
        for (const char* group : { "€ eur euro euros", "$ us$ usd dollar dollars", "£ gbp pound pounds", "chf franken",
                 "¥ jpy yen", "% percent prozent" }) {
            const QStringList words = QString::fromUtf8(group).split(u' ');
            for (const QString& each : words)
                all.insert(each, words.first());
        }
        return all;
    }();
    return units.value(word.toLower());
}

double scaleOf(const QString& word)
{
    const QString lower = word.toLower();
    if (lower == "k"_L1 || lower.startsWith("tsd"_L1) || lower == "thousand"_L1 || lower == "tausend"_L1)
        return 1000;
    return lower.startsWith("mi"_L1) ? 1'000'000 : 1;
}

}
