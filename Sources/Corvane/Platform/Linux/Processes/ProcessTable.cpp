#include "Platform/ProcessTable.h"

#include <QProcess>

namespace corvane {

QByteArray processTable()
{
    QProcess ps;
    ps.setStandardErrorFile(QProcess::nullDevice());
    ps.start(QStringLiteral("/bin/ps"), { QStringLiteral("-axo"), QStringLiteral("pid=,comm=,args=") });
    ps.waitForFinished(-1);
    return ps.readAllStandardOutput();
}

}
