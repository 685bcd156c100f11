#pragma once

#include <QStringList>

namespace corvane::CallTranscriptChunker {

/// Splits a transcript into pieces of at most `maxCharacters` user-perceived characters: between the speakers' turns;
/// within a longer turn between lines, else sentences, else words, else characters. Pieces do not overlap.
QStringList chunks(const QString& text, int maxCharacters);

/// The number of user-perceived characters.
qsizetype characterCount(const QString& text);

}
