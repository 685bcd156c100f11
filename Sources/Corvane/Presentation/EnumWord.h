#pragma once

#include <QMetaEnum>
#include <QString>

namespace corvane {

/// The word that QML uses for a value of an enumeration declared with Q_ENUM: "missingModel" for `State::MissingModel`.
template <typename Enum> QString enumWord(Enum value)
{
    QString word = QString::fromLatin1(QMetaEnum::fromType<Enum>().valueToKey(int(value)));
    word.front() = word.front().toLower();
    return word;
}

}
