#pragma once

#include <QString>

namespace corvane {

/// One or two characters for a face without a picture: the first of the first and of the last word that begin
/// with a letter. Where no word does: "#" for a number, the sign itself for an emoji or symbol, else "?".
QString initials(const QString& name);

/// A colour that stays with the id, from 0 to 359.
int hue(const QString& id);

}
