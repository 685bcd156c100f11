#include "Foundation/Text.h"

#include <QTextBoundaryFinder>

namespace corvane {

QString folded(const QString& text)
{
    const QString decomposed = text.normalized(QString::NormalizationForm_KD).toCaseFolded();
    QString plain;
    plain.reserve(decomposed.size());
    for (const QChar character : decomposed) {
        if (!character.isMark())
            plain.append(character);
    }
    return plain;
}

QString singleLine(const QString& text)
{
    return text.simplified();
}

QString firstCharacters(const QString& text, int count)
{
    if (text.size() <= count)
        return text;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype end = 0;
    for (int seen = 0; seen < count && end != -1; ++seen)
        end = finder.toNextBoundary();
    return end == -1 ? text : text.first(end);
}

}
