#include "Presentation/PlayTime.h"

#include "Foundation/Literals.h"

#include <algorithm>

namespace corvane {

QString playTime(qint64 ms)
{
    const qint64 seconds = std::max<qint64>(0, ms / 1000);
    const QString last = u":%1"_s.arg(seconds % 60, 2, 10, QChar(u'0'));
    if (seconds < 3600)
        return QString::number(seconds / 60) + last;
    return u"%1:%2"_s.arg(seconds / 3600).arg(seconds / 60 % 60, 2, 10, QChar(u'0')) + last;
}

}
