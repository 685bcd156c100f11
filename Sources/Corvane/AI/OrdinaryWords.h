#pragma once

#include <QString>

namespace corvane {

// Small lists of words, all of them folded: enough to tell the openings of everyday messages from names.

/// Words that begin sentences, and words that are written with a capital without being names.
bool isOrdinaryWord(const QString& foldedWord);

/// A German noun by its ending, or one that stands without an article.
bool isOrdinaryGermanNoun(const QString& foldedWord);

bool isTitle(const QString& foldedWord); ///< "Mr", "Frau", "Dr", "Firma"
bool isGreeting(const QString& foldedWord); ///< "Hi", "Liebe"
bool isGermanNameSign(const QString& foldedWord); ///< "mit", "von", "dass": before a bare noun, it is likely a name
bool isVerbAfterName(const QString& foldedWord); ///< "will", "said", "schickt"
bool isClosing(const QString& foldedWord); ///< "Regards", "Grüße": before a comma and the writer's name
bool isGermanFunctionWord(const QString& foldedWord); ///< "und": tells a German text from an English one
bool isEnglishFunctionWord(const QString& foldedWord);

}
