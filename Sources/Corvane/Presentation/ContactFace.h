#pragma once

#include <QString>

namespace corvane {

/// One or two characters for a face without a picture: the initials of the first and the last word that start with a
/// letter. Without such a word: "#" for a number, the character itself for an emoji or symbol, else "?".
QString initials(const QString& name);

/// A hue that depends only on the id, from 0 to 359.
int hue(const QString& id);

}
