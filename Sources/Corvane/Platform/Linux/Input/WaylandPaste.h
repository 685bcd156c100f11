#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace corvane {

/// The content of a selection, in one format; empty for none.
struct SelectionContent {
    QString type;
    QByteArray bytes;
};

struct KeptSelections {
    SelectionContent clipboard;
    SelectionContent primary;
};

// The following functions block for up to some seconds, so call them on a background thread.

bool hasClipboardTools(); ///< wl-clipboard is installed
bool hasKeyTool(); ///< wtype is installed

/// Puts the text on the clipboard and, where the desktop has one, on the primary selection. Returns what they held, or
/// nothing if it failed.
std::optional<KeptSelections> lendSelections(const QString& text);

/// Presses Shift+Insert, which programs and terminals alike take for "paste". False if the compositor lets no program
/// press keys; those on wlroots, such as sway, do.
bool pressPaste();

/// Restores what the selections held, unless another program has taken the clipboard since.
void giveBackSelections(const KeptSelections& kept, const QString& text);

}
