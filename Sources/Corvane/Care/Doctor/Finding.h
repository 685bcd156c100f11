#pragma once

#include "Foundation/Literals.h"

#include <QList>
#include <QObject>

namespace corvane {

enum class Health { Good, Warning, Failure };

/// What a check found.
class Finding {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString state READ state)
    Q_PROPERTY(QString stateText READ stateText)
    Q_PROPERTY(QString words MEMBER words)
    Q_PROPERTY(QString advice MEMBER advice)
    Q_PROPERTY(bool canFix MEMBER canFix)
public:
    QString id;
    QString title; ///< what was checked, such as "Disk"
    Health health = Health::Good;
    QString words; ///< a sentence
    QString advice; ///< what to do about it; empty if it is good
    bool canFix = false; ///< the program can fix it

    QString state() const; ///< "good", "warning" or "failure"
    QString stateText() const; ///< the same, for the user

    bool operator==(const Finding&) const = default;
};

}
