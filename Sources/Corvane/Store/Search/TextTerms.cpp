#include "Store/Search/TextTerms.h"

#include "Foundation/Literals.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>

namespace corvane {

namespace {

constexpr qsizetype length = 3; ///< of a trigram, in code points
constexpr qsizetype longestRun = 40; ///< the rest would tell little more
constexpr qsizetype quickTerms = 4;

struct Trigram {
    qsizetype at = 0;
    QString text;
    qint64 pages = 0; ///< of its list in the index, about
};

/// The longest run of characters that stand for themselves in a LIKE pattern.
QList<uint> longestRunOf(const QString& text)
{
    QList<uint> longest;
    for (const QString& run : QString(text).replace(u'_', u'%').split(u'%')) {
        if (const QList<uint> points = run.toUcs4(); points.size() > longest.size())
            longest = points;
    }
    return longest.first(std::min(longest.size(), longestRun));
}

QList<Trigram> trigramsOf(const QList<uint>& run)
{
    QList<Trigram> trigrams;
    for (qsizetype at = 0; at + length <= run.size(); ++at) {
        Trigram trigram { at, {}, 0 };
        for (const uint point : run.sliced(at, length))
            trigram.text += QChar::fromUcs4(point);
        trigrams.append(trigram);
    }
    return trigrams;
}

QString quoted(QString text)
{
    return u'"' + text.replace(u'"', u"\"\""_s) + u'"';
}

QString near(QList<Trigram> trigrams)
{
    std::ranges::sort(trigrams, {}, &Trigram::at);
    const auto again = std::ranges::unique(trigrams, {}, &Trigram::at);
    trigrams.erase(again.begin(), again.end());
    QStringList texts;
    for (const Trigram& trigram : trigrams)
        texts.append(quoted(trigram.text));
    const qsizetype between = std::max<qsizetype>(trigrams.last().at - trigrams.first().at - 1, 0);
    return u"NEAR(%1, %2)"_s.arg(texts.join(u' ')).arg(between);
}

bool occurs(SqlConnection& index, const Trigram& trigram)
{
    return index
        .firstRow("SELECT 1 FROM text WHERE text MATCH ? LIMIT 1;", { quoted(trigram.text) },
            [](const SqlRow&) { return true; })
        .has_value();
}

/// From FTS5's table of the terms with which pages begin. A trigram that is no such term counts as the one before it.
void measure(SqlConnection& index, QList<Trigram>& trigrams)
{
    QJsonArray keys;
    for (const Trigram& trigram : trigrams)
        keys.append(u'0' + trigram.text.toLower());
    index.visitRows(uR"(SELECT k.key, SUM(
  (SELECT pgno/2 FROM text_idx i WHERE i.segid=s.segid AND i.term > CAST(k.value AS BLOB) ORDER BY i.term LIMIT 1)
  - (SELECT pgno/2 FROM text_idx i WHERE i.segid=s.segid AND i.term <= CAST(k.value AS BLOB)
    ORDER BY i.term DESC LIMIT 1))
FROM json_each(?) k, (SELECT DISTINCT segid FROM text_idx) s GROUP BY k.key;)"_s,
        { QString::fromUtf8(QJsonDocument(keys).toJson(QJsonDocument::Compact)) }, [&](const SqlRow& row) {
            trigrams[row.integer(0)].pages = row.integer(1);
            return true;
        });
}

/// The rarest of each three in a row.
QList<Trigram> spread(const QList<Trigram>& trigrams)
{
    QList<Trigram> chosen;
    for (qsizetype at = 0; at < trigrams.size(); at += length) {
        const auto row = trigrams.sliced(at, std::min(length, trigrams.size() - at));
        chosen.append(*std::ranges::min_element(row, {}, &Trigram::pages));
    }
    return chosen;
}

}

// A phrase of all trigrams would read all their lists, which for pieces of common words are long.
TextTerms termsOf(SqlConnection& index, const QString& text)
{
    const QList<uint> run = longestRunOf(text);
    QList<Trigram> trigrams = trigramsOf(run);
    if (trigrams.isEmpty() || run.contains(0))
        return {};
    if (!std::ranges::all_of(trigrams, [&](const Trigram& trigram) { return occurs(index, trigram); }))
        return { {}, {}, index.failure() == 0 };
    measure(index, trigrams);
    QList<Trigram> quick = spread(trigrams);
    const QString narrow = near(QList<Trigram> { trigrams.first(), trigrams.last() } + quick);
    if (quick.size() <= quickTerms)
        return { narrow, narrow };
    std::ranges::sort(quick, {}, &Trigram::pages);
    return { near(quick.first(quickTerms)), narrow };
}

}
