#pragma once

#include "Platform/TextInsertion.h"

#include <QByteArray>
#include <QList>

namespace corvane {

/// The content of a selection, in one format; empty for none.
struct SelectionContent {
    QString type;
    QByteArray bytes;
};

/// The clipboard and the primary selection.
using KeptSelections = QList<SelectionContent>;

struct PastedText {
    InsertionOutcome outcome = InsertionOutcome::Missed;
    KeptSelections kept; ///< what the selections held before
};

/// Whether wl-clipboard and wtype are installed.
bool hasPasteTools();

/// Puts the text on both selections and presses Shift+Insert, which programs and terminals alike take for "paste". The
/// text stays on the clipboard if the compositor lets no program press keys; those on wlroots, such as sway, do. Blocks
/// for seconds, so call it on a background thread.
PastedText pasteWithTools(const QString& text);

/// Restores what the selections held, unless another program has taken the clipboard since. Blocks, too.
void giveBackSelections(const KeptSelections& kept, const QString& text);

}
