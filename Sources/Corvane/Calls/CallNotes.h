#pragma once

#include <QList>
#include <QString>

namespace corvane {

/// What a person noted of a call while it ran and later, in "notes.json" beside its sound.
struct CallNotes {
    QString text;
    QList<qint64> marksMs; ///< moments that were marked, since the start

    bool operator==(const CallNotes&) const = default;
};

CallNotes readCallNotes(const QString& callFolder); ///< empty where there are none
bool writeCallNotes(const QString& callFolder, const CallNotes& notes);

}
