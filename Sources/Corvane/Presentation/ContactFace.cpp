#include "Presentation/ContactFace.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <QStringList>

namespace corvane {

namespace {

char32_t characterAt(const QString& text, qsizetype at)
{
    const QChar first = text.at(at);
    if (first.isHighSurrogate() && at + 1 < text.size() && text.at(at + 1).isLowSurrogate())
        return QChar::surrogateToUcs4(first, text.at(at + 1));
    return first.unicode();
}

qsizetype widthOf(char32_t character)
{
    return QChar::requiresSurrogates(character) ? 2 : 1;
}

/// Skips quotes, brackets and the like; nothing for a word that does not start with a letter.
QString initialOf(const QString& word)
{
    for (qsizetype at = 0; at < word.size();) {
        const char32_t character = characterAt(word, at);
        if (QChar::isLetter(character))
            return firstCharacters(word.sliced(at), 1).toUpper();
        if (!QChar::isPunct(character) && QChar::category(character) != QChar::Other_Format)
            return {};
        at += widthOf(character);
    }
    return {};
}

QString withoutLetters(const QString& name)
{
    for (qsizetype at = 0; at < name.size();) {
        const char32_t character = characterAt(name, at);
        if (QChar::isDigit(character))
            return u"#"_s;
        if (QChar::isSymbol(character) && character > 0x7f)
            return firstCharacters(name.sliced(at), 1);
        at += widthOf(character);
    }
    return u"?"_s;
}

// The letters of a joined script would connect.
bool joins(const QString& initial)
{
    return QChar::direction(characterAt(initial, 0)) == QChar::DirAL;
}

}

QString initials(const QString& name)
{
    // A name may be as long as a message; only its ends matter.
    const QString text = (name.size() > 200 ? name.first(100) + u' ' + name.last(100) : name).simplified();
    QStringList found;
    for (const QString& word : text.split(u' ', Qt::SkipEmptyParts)) {
        if (const QString initial = initialOf(word); !initial.isEmpty())
            found.append(initial);
    }
    if (found.isEmpty())
        return withoutLetters(text);
    if (found.size() == 1 || joins(found.first()) || joins(found.last()))
        return found.first();
    return found.first() + found.last();
}

int hue(const QString& id)
{
    quint32 hash = 2'166'136'261U;
    for (const char byte : id.toUtf8())
        hash = (hash ^ quint8(byte)) * 16'777'619U;
    return int(hash % 360);
}

}
