#pragma once

#include <QStringList>

namespace corvane {

/// What `draft` states and `context` does not: numbers, amounts, dates, times, e-mail addresses, URLs and capitalised
/// names, as written in the draft, in order and without duplicates. The same fact in another format matches ("3 pm" and
/// "15:00", "1.250,00 €" and "EUR 1250"). A visual aid, not a proof: see docs/assistant.md for what it finds and what
/// it misses.
QStringList ungroundedFacts(const QString& draft, const QString& context);

}
