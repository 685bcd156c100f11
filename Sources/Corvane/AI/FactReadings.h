#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace corvane {

// How the pieces of a fact are read.

/// The values that "1.250,00", "1,250" or "12 500" may stand for.
QList<double> numberValues(const QString& digits);

/// 1 to 12 for "March", "Mrz", "janv" and their like, whatever the case and the marks.
std::optional<int> monthNumber(const QString& word);

/// 1 (Monday) to 7.
std::optional<int> weekdayNumber(const QString& word);

/// 3 and more, written as a word; small counts of one and two are no facts.
std::optional<int> numberOfWord(const QString& word);

QString monthPattern(); ///< alternatives for a regular expression, longest first
QString weekdayPattern();
QString numberWordPattern();

/// A currency or "%", told alike however it is written; empty for anything else.
QString unitOf(const QString& word);

/// 1000 for "k", 1000000 for "million", 1 for anything else.
double scaleOf(const QString& word);

}
