#include "Foundation/Log.h"

#include <QDebug>

namespace corvane {

void log(const QString& line)
{
    qInfo().noquote() << line;
}

}
