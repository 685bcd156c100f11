#pragma once

#include "Store/Core/SqlConnection.h"

namespace corvane {

/// What every document with a text meets, as FTS5 expressions over the search index.
struct TextTerms {
    QString quick; ///< the text's rarest trigrams near each other; empty where no trigram fits into the text
    QString narrow; ///< more of them, which few other documents meet
    bool nowhere = false; ///< no document holds the text
};

/// `text` is a LIKE pattern: the terms are those of its longest run without wildcards.
TextTerms termsOf(SqlConnection& index, const QString& text);

}
