#pragma once

#include <QList>
#include <QStringList>

namespace corvane {

/// A number, amount, date, time, address or code in a text. Two facts match if one states a key that the other needs:
/// "3 pm" needs "15:00".
struct Fact {
    QString text;
    qsizetype start = 0;
    QStringList states; ///< the keys that it adds to a context
    QStringList needs; ///< one of these in the context, and the fact is supported
};

struct ScannedText {
    QList<Fact> facts; ///< in text order
    QString rest; ///< the text at its original length, with each fact blanked out
};

/// Supports English, German, French, Spanish and Italian dates, both orders of 3/4/2026, and both formats of 1.250,00.
ScannedText scanFacts(const QString& text);

}
