#include "Platform/ProcessTable.h"

#include "Foundation/Literals.h"

#include <QProcess>

namespace corvane {

QByteArray processTable()
{
    QProcess ps;
    ps.setStandardErrorFile(QProcess::nullDevice());
    ps.start(u"/bin/ps"_s, { u"-axo"_s, u"pid=,comm=,args="_s });
    ps.waitForFinished(-1);
    return ps.readAllStandardOutput();
}

}
