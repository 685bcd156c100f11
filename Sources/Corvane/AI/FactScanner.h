#pragma once

#include <QList>
#include <QStringList>

namespace corvane {

/// A number, amount, date, time, address or code as it stands in a text. Two facts speak of the same thing
/// where one states a key that the other needs: "3 pm" needs "15:00".
struct Fact {
    QString text;
    qsizetype start = 0;
    QStringList states; ///< the keys that it puts into a context
    QStringList needs; ///< one of these in the context, and the fact stands there
};

struct ScannedText {
    QList<Fact> facts; ///< in the order of the text
    QString rest; ///< the text, as long as before, with each fact blanked out
};

/// Reads English, German, French, Spanish and Italian dates, both orders of 3/4/2026, and both writings of 1.250,00.
ScannedText scanFacts(const QString& text);

}
