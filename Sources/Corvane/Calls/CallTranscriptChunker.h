#pragma once

#include <QStringList>

namespace corvane::CallTranscriptChunker {

/// Pieces of a transcript, none longer than `maxCharacters` characters as a person counts them. It is cut between the
/// turns of speakers; where a turn is longer between its lines, then sentences, then words, then characters. Nothing is
/// told twice.
QStringList chunks(const QString& text, int maxCharacters);

/// Characters as a person counts them.
qsizetype characterCount(const QString& text);

}
