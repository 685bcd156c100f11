#pragma once

#include <QDBusConnection>
#include <optional>

namespace corvane {

/// What has the keyboard, as the accessibility bus tells it.
struct FocusedField {
    QString service; ///< of its program on that bus
    QString path;
    bool isPassword = false;
    bool isEditable = false; ///< takes text through the bus
};

/// Looks in the windows in front, for at most half a second. Nothing where no program tells, as most do only while
/// the user has accessibility on. Blocks, so it belongs on a thread of its own.
std::optional<FocusedField> findFocusedField(const QDBusConnection& session);

/// Puts text at the cursor of an editable field. False where its program refuses or does not answer within half a
/// second. Blocks, too.
bool insertInto(const QDBusConnection& session, const FocusedField& field, const QString& text);

}
