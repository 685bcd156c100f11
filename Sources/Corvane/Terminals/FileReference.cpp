#include "Terminals/FileReference.h"

#include "Foundation/Literals.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSysInfo>
#include <QUrl>

namespace corvane {

namespace {

/// How to pass the line to an editor; unknown ones get only the file.
QStringList placeArguments(const QString& editor, const FileReference& place)
{
    static const QStringList plus { u"vi"_s, u"vim"_s, u"nvim"_s, u"nano"_s, u"emacs"_s, u"emacsclient"_s, u"micro"_s,
        u"kak"_s, u"joe"_s, u"mcedit"_s, u"gedit"_s };
    static const QStringList colon { u"hx"_s, u"subl"_s, u"zed"_s };
    const QString program = QFileInfo(editor.section(u' ', 0, 0)).fileName();
    const QString line = QString::number(place.line);
    if (place.line > 0 && plus.contains(program))
        return { u'+' + line, place.path };
    if (place.line > 0 && colon.contains(program))
        return { place.path + u':' + line };
    if (place.line > 0 && (program == "code"_L1 || program == "codium"_L1))
        return { u"-g"_s, place.path + u':' + line };
    return { place.path };
}

}

const QRegularExpression& fileReferencePattern()
{
    static const QRegularExpression pattern(
        uR"((?<![\w/.~-])((?:~|\.{1,2})?/?[\w.+@-]+(?:/[\w.+@-]+)*):(\d{1,7})(?::(\d{1,5}))?)"_s,
        QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

std::optional<FileReference> fileReference(const QString& text, const QString& directory, const QString& home)
{
    const QRegularExpressionMatch match = fileReferencePattern().match(text);
    if (!match.hasMatch() || match.capturedLength() != text.size())
        return std::nullopt;
    QString path = match.captured(1);
    if (path.startsWith("~/"_L1))
        path = home + path.mid(1);
    const QFileInfo file(QDir(directory), path);
    if (!file.isFile())
        return std::nullopt;
    return FileReference { QDir::cleanPath(file.absoluteFilePath()), match.captured(2).toInt(),
        match.captured(3).toInt() };
}

std::optional<FileReference> fileOfAddress(const QUrl& address)
{
    const QString host = address.host();
    const bool isHere = host.isEmpty() || host == "localhost"_L1
        || host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
    if (!address.isLocalFile() || !isHere || !QFileInfo::exists(address.path()))
        return std::nullopt;
    return FileReference { QDir::cleanPath(address.path()), address.fragment().toInt(), 0 };
}

terminal::Command editorCommand(const QString& editor, const FileReference& place)
{
    terminal::Command command;
    command.program = "/bin/sh";
    // The editor may be a command with arguments; the file name is never parsed by the shell.
    command.arguments = { "-c", "exec " + editor.toStdString() + R"( "$@")", "sh" };
    for (const QString& argument : placeArguments(editor, place))
        command.arguments.push_back(argument.toStdString());
    command.directory = QFileInfo(place.path).absolutePath().toStdString();
    return command;
}

}
