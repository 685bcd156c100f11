#pragma once

#include <QList>
#include <QSet>
#include <QString>

namespace corvane {

/// A capitalised name as it stands in a text: "Petra Schmidt".
struct Name {
    QString text;
    qsizetype start = 0;
};

/// Every word of a text, folded.
QSet<QString> wordsOf(const QString& text);

/// The names in `text` of which a word is not among `known` (folded words). A capital alone makes no name at the
/// start of a sentence, nor in German, where every noun has one: there the words around it decide.
QList<Name> findNames(const QString& text, const QSet<QString>& known);

}
