#pragma once

#include <QStringList>

namespace corvane {

/// What `draft` states and `context` does not: numbers, amounts, dates, times, e-mail addresses, URLs and
/// capitalised names, as they stand in the draft, in its order and each once. The same fact in another writing
/// is the same ("3 pm" and "15:00", "1.250,00 €" and "EUR 1250"). A help for the eye, not a proof: see
/// docs/assistant.md for what it finds and what it misses.
QStringList ungroundedFacts(const QString& draft, const QString& context);

}
