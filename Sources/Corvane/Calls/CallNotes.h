#pragma once

#include <QList>
#include <QString>

namespace corvane {

/// The user's notes on a call, taken during it and later, in "notes.json" beside its sound.
struct CallNotes {
    QString text;
    QList<qint64> marksMs; ///< marked moments, since the start

    bool operator==(const CallNotes&) const = default;
};

CallNotes readCallNotes(const QString& callFolder); ///< empty if there are none
bool writeCallNotes(const QString& callFolder, const CallNotes& notes);

}
