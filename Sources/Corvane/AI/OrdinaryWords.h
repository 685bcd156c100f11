#pragma once

#include <QString>

namespace corvane {

// Small lists of folded words: enough to tell the openings of everyday messages from names.

/// Words at the start of sentences, and capitalised words that are not names.
bool isOrdinaryWord(const QString& foldedWord);

/// A German noun by its ending, or one used without an article.
bool isOrdinaryGermanNoun(const QString& foldedWord);

bool isTitle(const QString& foldedWord); ///< "Mr", "Frau", "Dr", "Firma"
bool isGreeting(const QString& foldedWord); ///< "Hi", "Liebe"
bool isGermanNameSign(const QString& foldedWord); ///< "mit", "von", "dass": a noun right after it is likely a name
bool isVerbAfterName(const QString& foldedWord); ///< "will", "said", "schickt"
bool isClosing(const QString& foldedWord); ///< "Regards", "Grüße": followed by a comma and the writer's name
bool isGermanFunctionWord(const QString& foldedWord); ///< "und": tells a German text from an English one
bool isEnglishFunctionWord(const QString& foldedWord);

}
