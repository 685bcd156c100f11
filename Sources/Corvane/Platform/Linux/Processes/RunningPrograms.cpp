#include "Platform/RunningPrograms.h"

#include "Foundation/Literals.h"
#include "Platform/Linux/Files/SystemFiles.h"

#include <QDir>
#include <QFileInfo>

namespace corvane {

namespace {

/// The desktop names a program's control group "app-{launcher}-{desktop id}-{random}.scope", or with
/// "@{random}.service" at its end. A dash within the id is written as "\x2d".
QString desktopIdOf(const QByteArray& controlGroups)
{
    QString unit = QString::fromUtf8(controlGroups.trimmed().split('/').last());
    if (!unit.startsWith("app-"_L1))
        return {};
    if (unit.endsWith(".scope"_L1))
        unit = unit.section(u'-', 0, -2);
    else if (unit.endsWith(".service"_L1))
        unit = unit.chopped(8).section(u'@', 0, 0);
    else
        return {};
    return unit.section(u'-', -1).replace("\\x2d"_L1, "-"_L1);
}

}

QList<RunningProgram> runningPrograms(const QString& procFolder)
{
    QList<RunningProgram> programs;
    for (const QString& name : QDir(procFolder).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString folder = procFolder + u'/' + name;
        // The link of another user's program can't be read.
        QString binary = QFileInfo(QFileInfo(folder + u"/exe"_s).symLinkTarget()).fileName();
        if (binary.isEmpty() || !name.front().isDigit())
            continue;
        binary.remove(u" (deleted)"_s); // replaced by an update while it runs
        const RunningProgram program { binary, desktopIdOf(systemFile(folder + u"/cgroup"_s)) };
        if (!programs.contains(program))
            programs.append(program);
    }
    return programs;
}

}
