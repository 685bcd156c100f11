#include "Terminals/DevProcessInspector.h"

#include "Platform/ProcessTable.h"

namespace corvane {

QStringList DevProcessInspector::snapshot()
{
    return QString::fromLocal8Bit(processTable()).split(u'\n', Qt::SkipEmptyParts);
}

int DevProcessInspector::count(const QString& matching)
{
    return count(snapshot(), matching);
}

int DevProcessInspector::count(const QStringList& snapshot, const QString& matching)
{
    return int(snapshot.filter(matching, Qt::CaseInsensitive).size());
}

}
