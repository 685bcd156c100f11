#pragma once

#include <QDBusConnection>
#include <optional>

namespace corvane {

/// The focused widget, as the accessibility bus reports it.
struct FocusedField {
    QString service; ///< of its program on that bus
    QString path;
    bool isPassword = false;
    bool isEditable = false; ///< accepts text through the bus
};

/// Searches the active windows, for at most half a second. Nothing if no program answers; most do so only while
/// accessibility is enabled. Blocks, so call it on a background thread.
std::optional<FocusedField> findFocusedField(const QDBusConnection& session);

/// Inserts text at the cursor of an editable field. False if its program refuses or does not respond within half a
/// second. Blocks, too.
bool insertInto(const QDBusConnection& session, const FocusedField& field, const QString& text);

}
