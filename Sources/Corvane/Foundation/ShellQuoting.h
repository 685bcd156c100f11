#pragma once

#include "Foundation/Literals.h"

#include <QString>

namespace corvane {

/// One word for a POSIX shell, whatever is in the text. A NUL, which no argument holds, is left out.
inline QString posixQuoted(QString text)
{
    return u'\'' + text.remove(QChar(u'\0')).replace(u'\'', u"'\"'\"'"_s) + u'\'';
}

}
