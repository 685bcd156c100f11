#include "Platform/AppPaths.h"

#include "Foundation/Literals.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace corvane {

namespace {

/// A relative value in these variables is to be ignored (XDG Base Directories).
QString directoryFrom(const char* variable, const QString& fallback)
{
    const QString value = qEnvironmentVariable(variable);
    return QDir::isAbsolutePath(value) ? QDir::cleanPath(value) : fallback;
}

QString resourceFolder()
{
    const QString named = qEnvironmentVariable("CORVANE_RESOURCES");
    if (!named.isEmpty())
        return QDir::cleanPath(QDir(named).absolutePath());
    const QDir beside(QCoreApplication::applicationDirPath());
    if (beside.exists(u"local-schema"_s))
        return beside.absolutePath();
    return QDir::cleanPath(beside.absoluteFilePath(u"../share/corvane"_s));
}

}

AppPaths AppPaths::fromEnvironment()
{
    AppPaths paths;
    paths.home = QDir::homePath();
    paths.applicationSupport = directoryFrom("XDG_DATA_HOME", paths.home + u"/.local/share"_s) + u"/Corvane"_s;
    paths.defaultsFile = directoryFrom("XDG_CONFIG_HOME", paths.home + u"/.config"_s) + u"/Corvane/defaults.ini"_s;
    paths.resources = resourceFolder();
    return paths;
}

}
