#pragma once

#include <QString>

namespace corvane {

/// A pattern for `LIKE ? ESCAPE '\'`: the text stands somewhere, its own % and _ for themselves.
inline QString containing(QString text)
{
    for (const QChar special : { u'\\', u'%', u'_' })
        text.replace(special, QString(u'\\') + special);
    return u'%' + text + u'%';
}

}
