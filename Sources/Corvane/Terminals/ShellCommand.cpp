#include "Terminals/ShellCommand.h"

#include "Foundation/Literals.h"

#include <QFileInfo>

namespace corvane {

terminal::Command shellCommand(const QString& directory, std::optional<mode_t> umask)
{
    terminal::Command command;
    if (QFileInfo(u"/bin/zsh"_s).isExecutable()) {
        command.program = "/bin/zsh";
        command.arguments = { "-l", "-i" };
    }
    if (!qEnvironmentVariableIsSet("LANG"))
        command.environment.emplace_back("LANG", "en_US.UTF-8");
    command.directory = directory.toStdString();
    command.umask = umask;
    return command;
}

bool isShell(const QString& program)
{
    static const QStringList known { u"sh"_s, u"bash"_s, u"dash"_s, u"zsh"_s, u"fish"_s, u"ksh"_s, u"mksh"_s, u"csh"_s,
        u"tcsh"_s, u"nu"_s, u"elvish"_s, u"xonsh"_s, u"pwsh"_s };
    return known.contains(program) || program == QFileInfo(QString::fromStdString(terminal::loginShell())).fileName();
}

QString resolvedDirectory(const QString& wanted, const QString& home)
{
    const bool isOfHome = wanted == u'~' || wanted.startsWith("~/"_L1);
    const QString path = isOfHome ? home + wanted.mid(1) : wanted;
    if (QFileInfo(path).isDir())
        return path;
    const QString fallback = home + "/nimb"_L1;
    return QFileInfo(fallback).isDir() ? fallback : home;
}

}
