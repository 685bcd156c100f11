#include "Dev/DevLauncher.h"

#include "Foundation/Literals.h"
#include "Platform/Desktop.h"
#include "Presentation/ShellWord.h"
#include "Terminals/TerminalsView.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace corvane {

namespace {

constexpr qint64 largestFile = 1 << 20;

QByteArray contentOf(const QDir& folder, const QString& name)
{
    QFile file(folder.filePath(name));
    return QFileInfo(file).isFile() && file.size() <= largestFile && file.open(QIODevice::ReadOnly) ? file.readAll()
                                                                                                    : QByteArray();
}

/// The script "dev", else "start", of package.json, run with the tool whose lock file is next to it.
QString nodeCommand(const QDir& folder)
{
    const QJsonObject scripts
        = QJsonDocument::fromJson(contentOf(folder, u"package.json"_s)).object().value("scripts"_L1).toObject();
    const QString tool = folder.exists(u"pnpm-lock.yaml"_s) ? u"pnpm"_s
        : folder.exists(u"yarn.lock"_s)                     ? u"yarn"_s
                                                            : u"npm"_s;
    for (const QString& script : { u"dev"_s, u"start"_s }) {
        if (scripts.contains(script))
            return tool + u" run "_s + script;
    }
    return {};
}

}

QString devServerCommand(const QString& path)
{
    const QDir folder(path);
    if (const QString command = nodeCommand(folder); !command.isEmpty())
        return command;
    static const QRegularExpression target(u"^(dev|serve|run):"_s, QRegularExpression::MultilineOption);
    if (const auto match = target.match(QString::fromUtf8(contentOf(folder, u"Makefile"_s))); match.hasMatch())
        return u"make "_s + match.captured(1);
    if (folder.exists(u"Cargo.toml"_s))
        return u"cargo run"_s;
    if (folder.exists(u"go.mod"_s))
        return u"go run ."_s;
    if (folder.exists(u"manage.py"_s))
        return u"python3 manage.py runserver"_s;
    const QFileInfo run(folder, u"run"_s);
    return run.isFile() && run.isExecutable() ? u"./run"_s : QString();
}

DevLauncher::DevLauncher(DevDesk& desk, QObject* parent)
    : QObject(parent)
    , m_desk(desk)
{
}

void DevLauncher::reload()
{
    const QString path = m_desk.project.repoPath;
    const bool isGone = runsHere(m_desk.project, m_desk.desktop.hostName()) && !path.isEmpty()
        && !QFileInfo(m_desk.expanded(path)).isDir();
    const QString notice
        = isGone ? u"%1 is not there. New terminals start in %2."_s.arg(path, m_desk.directory()) : QString();
    if (std::exchange(m_notice, notice) != notice)
        Q_EMIT changed();
}

QList<Choice> DevLauncher::actions() const
{
    return { { u"codex"_s, u"Codex"_s }, { u"claude"_s, u"Claude"_s }, { u"dev server"_s, u"Dev server"_s },
        { u"ssh"_s, u"SSH"_s }, { u"logs"_s, u"Logs"_s } };
}

QString DevLauncher::commandOf(const QString& kind) const
{
    if (kind == "codex"_L1)
        return u"codex"_s;
    if (kind == "claude"_L1)
        return u"pgrep -fl claude || true; echo 'Launch claude only if this stays under 2 local claude processes.'"_s;
    if (kind == "dev server"_L1) {
        const QString command = devServerCommand(m_desk.directory());
        return command.isEmpty() ? u"ls -la && echo 'Pick the command that starts this project.'"_s : command;
    }
    if (kind == "ssh"_L1) {
        return runsHere(m_desk.project, m_desk.desktop.hostName())
            ? u"echo 'SSH target not set for this project yet.'"_s
            : u"ssh -- "_s + typedShellWord(m_desk.project.execHost.trimmed());
    }
    return kind == "logs"_L1 ? u"ls -la && echo 'Pick the log command for this project.'"_s : QString();
}

void DevLauncher::runQuickAction(const QString& kind)
{
    const QString command = commandOf(kind);
    if (command.isEmpty())
        return;
    m_desk.openTerminal(kind, command);
    Q_EMIT launched();
}

void DevLauncher::createLocalSession()
{
    m_desk.openTerminal(u"shell"_s);
    Q_EMIT launched();
}

void DevLauncher::attachOrCreateLocalSession()
{
    for (const auto& session : m_desk.terminals.localSessions()) {
        if (m_desk.hasProject() && session->projectId() == m_desk.project.id) {
            m_desk.terminals.select(session->id());
            return Q_EMIT launched();
        }
    }
    createLocalSession();
}

void DevLauncher::openFolder()
{
    m_desk.desktop.openFile(m_desk.directory());
}

}
