#pragma once

#include <QString>

namespace corvane {

/// A pattern for `LIKE ? ESCAPE '\'` that finds the text anywhere; its own % and _ are literal.
inline QString containing(QString text)
{
    for (const QChar special : { u'\\', u'%', u'_' })
        text.replace(special, QString(u'\\') + special);
    return u'%' + text + u'%';
}

}
