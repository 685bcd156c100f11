#include "AI/NameFinder.h"

#include "AI/OrdinaryWords.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <QRegularExpression>
#include <algorithm>

namespace corvane {

namespace {

/// A word with information about its neighbours.
struct Word {
    QString text;
    QString folded;
    qsizetype start = 0;
    bool isCapitalised = false;
    bool beginsSentence = false;
    bool followsDirectly = false; ///< only a blank is between it and the word before

    qsizetype end() const { return start + text.size(); }
};

using Words = QList<Word>;

const QRegularExpression& wordExpression()
{
    static const QRegularExpression expression(
        u"[\\p{L}\\p{M}]+(?:['’][\\p{L}]+)?"_s, QRegularExpression::UseUnicodePropertiesOption);
    return expression;
}

/// Without a possessive "'s".
QString bareWord(const QString& word)
{
    static const QRegularExpression possessive(u"['’]s$"_s);
    return QString(word).remove(possessive);
}

bool endsSentence(QStringView between, const QString& wordBefore)
{
    if (between.contains(u'\n'))
        return true;
    const bool isAbbreviation = isTitle(wordBefore) || wordBefore.size() == 1;
    for (const QChar sign : between) {
        if (QStringView(u"!?:…•\"“„»«").contains(sign) || (sign == u'.' && !isAbbreviation))
            return true;
    }
    return false;
}

Words wordsIn(const QString& text)
{
    Words words;
    for (const QRegularExpressionMatch& match : wordExpression().globalMatch(text)) {
        const QString found = bareWord(match.captured());
        Word word { found, folded(found), match.capturedStart(), found.front().isUpper(), true, false };
        if (!words.isEmpty()) {
            const qsizetype end = words.last().end();
            const QStringView between = QStringView(text).sliced(end, word.start - end);
            word.beginsSentence = endsSentence(between, words.last().folded);
            word.followsDirectly
                = between == QStringView(u" ") || (isTitle(words.last().folded) && between == QStringView(u". "));
        }
        words.append(word);
    }
    return words;
}

bool isGerman(const Words& words)
{
    const auto german = std::ranges::count_if(words, isGermanFunctionWord, &Word::folded);
    const auto english = std::ranges::count_if(words, isEnglishFunctionWord, &Word::folded);
    return german > english;
}

bool isKnown(const QString& word, const QSet<QString>& known)
{
    static const QStringList endings { QString(), u"s"_s, u"es"_s, u"n"_s, u"en"_s, u"e"_s, u"er"_s };
    return std::ranges::any_of(endings, [&](const QString& ending) {
        return known.contains(word + ending)
            || (word.size() > ending.size() + 2 && word.endsWith(ending)
                && known.contains(word.chopped(ending.size())));
    });
}

/// Scans one text; `at` always points to a capitalised word without another explanation.
class Reader {
public:
    Reader(const Words& words, const QSet<QString>& known)
        : m_words(words)
        , m_known(known)
        , m_isGerman(isGerman(words))
    {
    }

    bool isName(qsizetype at) const
    {
        const Word& word = m_words.at(at);
        if (!word.isCapitalised || isOrdinaryWord(word.folded) || isTitle(word.folded) || isGreeting(word.folded)
            || isKnown(word.folded, m_known))
            return false;
        const Word* before = at > 0 && !word.beginsSentence ? &m_words.at(at - 1) : nullptr;
        if (before && word.followsDirectly && isTitle(before->folded))
            return true;
        if (m_isGerman && isOrdinaryGermanNoun(word.folded))
            return false;
        if (isSignature(at) || (before && word.followsDirectly && isGreeting(before->folded)))
            return true;
        if (m_isGerman)
            return isGermanName(at, before);
        return !word.beginsSentence || isFollowedByVerb(at) || isFollowedByName(at);
    }

private:
    const Word* next(qsizetype at) const
    {
        const bool follows = at + 1 < m_words.size() && m_words.at(at + 1).followsDirectly;
        return follows ? &m_words.at(at + 1) : nullptr;
    }

    bool isFollowedByVerb(qsizetype at) const
    {
        const Word* after = next(at);
        return after && isVerbAfterName(after->folded);
    }

    bool isFollowedByName(qsizetype at) const
    {
        const Word* after = next(at);
        return after && after->isCapitalised && !isOrdinaryWord(after->folded);
    }

    /// The signature of a text: its last words, on their own line or after "Regards,".
    bool isSignature(qsizetype at) const
    {
        const bool isLast = at + 1 == m_words.size()
            || (at + 2 == m_words.size() && m_words.last().followsDirectly && m_words.last().isCapitalised);
        const Word& word = m_words.at(at);
        return isLast && at > 3
            && (word.beginsSentence || (!word.followsDirectly && isClosing(m_words.at(at - 1).folded)));
    }

    bool isGermanName(qsizetype at, const Word* before) const
    {
        const Word& word = m_words.at(at);
        if (!before || !word.followsDirectly)
            return isFollowedByVerb(at);
        const bool followsNoun = before->isCapitalised && !isOrdinaryWord(before->folded);
        return isGermanNameSign(before->folded) || followsNoun;
    }

    const Words& m_words;
    const QSet<QString>& m_known;
    const bool m_isGerman;
};

}

QSet<QString> wordsOf(const QString& text)
{
    QSet<QString> words;
    for (const QRegularExpressionMatch& match : wordExpression().globalMatch(text))
        words.insert(folded(bareWord(match.captured())));
    return words;
}

QList<Name> findNames(const QString& text, const QSet<QString>& known)
{
    const Words words = wordsIn(text);
    const Reader reader(words, known);
    QList<Name> names;
    qsizetype lastEnd = -1;
    for (qsizetype at = 0; at < words.size(); ++at) {
        const Word& word = words.at(at);
        if (!reader.isName(at))
            continue;
        if (!names.isEmpty() && lastEnd >= 0 && word.followsDirectly && words.at(at - 1).end() == lastEnd)
            names.last().text = text.sliced(names.last().start, word.end() - names.last().start);
        else
            names.append({ word.text, word.start });
        lastEnd = word.end();
    }
    return names;
}

}
