#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace corvane {

// Parsing of the parts of a fact.

/// The possible values of "1.250,00", "1,250" or "12 500".
QList<double> numberValues(const QString& digits);

/// 1 to 12 for "March", "Mrz", "janv" and the like, ignoring case and punctuation.
std::optional<int> monthNumber(const QString& word);

/// 1 (Monday) to 7.
std::optional<int> weekdayNumber(const QString& word);

/// A number word of 3 or more; one and two do not count as facts.
std::optional<int> numberOfWord(const QString& word);

QString monthPattern(); ///< regular expression alternatives, longest first
QString weekdayPattern();
QString numberWordPattern();

/// A currency or "%", in one normal form; empty for anything else.
QString unitOf(const QString& word);

/// 1000 for "k", 1000000 for "million", 1 for anything else.
double scaleOf(const QString& word);

}
