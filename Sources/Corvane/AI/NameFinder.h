#pragma once

#include <QList>
#include <QSet>
#include <QString>

namespace corvane {

/// A capitalised name in a text: "Petra Schmidt".
struct Name {
    QString text;
    qsizetype start = 0;
};

/// The words of a text, folded.
QSet<QString> wordsOf(const QString& text);

/// The names in `text` with a word that is not in `known` (folded words). A capital alone does not make a name at the
/// start of a sentence, nor in German, where all nouns have one: there the surrounding words decide.
QList<Name> findNames(const QString& text, const QSet<QString>& known);

}
