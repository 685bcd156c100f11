#pragma once

#include <QLocale>

namespace corvane {

/// "1 chat", "1,204 chats": with the digits of the locale.
inline QString countWords(qint64 count, const QString& one, const QString& many)
{
    return QLocale().toString(count) + u' ' + (count == 1 ? one : many);
}

}
