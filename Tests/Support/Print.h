#pragma once

#include <QString>
#include <ostream>

QT_BEGIN_NAMESPACE
/// Lets GoogleTest print the text when a comparison fails.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}
QT_END_NAMESPACE
