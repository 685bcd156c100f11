#pragma once

#include "Foundation/Literals.h"

#include <QDateTime>

namespace corvane {

inline qint64 at(const char* local)
{
    return QDateTime::fromString(QString::fromLatin1(local), u"yyyy-MM-dd HH:mm"_s).toMSecsSinceEpoch();
}

inline QByteArray calendar(const QByteArray& events)
{
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:x\r\n" + events + "END:VCALENDAR\r\n";
}

inline QByteArray event(const QByteArray& properties)
{
    return "BEGIN:VEVENT\r\nUID:a\r\n" + properties + "END:VEVENT\r\n";
}

}
