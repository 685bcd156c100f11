#include "Dev/ProjectMirror.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Platform/PrivateFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace corvane {

namespace {

constexpr qint64 largestMirror = 64 << 20;

/// The position of the first line "## Log"; -1 if there is none.
qsizetype logPlace(const QByteArray& text)
{
    for (qsizetype at = 0; at >= 0 && at < text.size();) {
        const qsizetype end = text.indexOf('\n', at);
        if (text.mid(at, end < 0 ? -1 : end - at).trimmed() == "## Log")
            return at;
        at = end < 0 ? -1 : end + 1;
    }
    return -1;
}

}

QString projectFolder(const QString& slug)
{
    QString name;
    for (const QChar letter : slug)
        name += letter.isLetterOrNumber() || letter == u'_' || (letter == u'.' && !name.isEmpty()) ? letter : u'-';
    return name.isEmpty() ? u"project"_s : name;
}

QByteArray mirrorText(const OpsProjectRow& project, const QByteArray& before)
{
    // A line end in a field could imitate another field.
    const QString head
        = u"# %1 (%2)\n\n- **Goal:** %3\n- **Status:** %4\n- **Category:** %5\n- **Exec host:** %6\n"
          "- **Repo:** %7\n\n"_s.arg(promptLine(project.name), promptLine(project.slug),
              project.goal.isEmpty() ? u"(set me)"_s : promptLine(project.goal), promptLine(project.status),
              promptLine(project.category), promptLine(project.execHost), promptLine(project.repoPath));
    const qsizetype log = logPlace(before);
    return head.toUtf8() + (log >= 0 ? before.mid(log) : "## Log\n" + before);
}

Result<QString> writeProjectMirror(const OpsProjectRow& project, const QString& folder)
{
    const QFileInfo info(QDir(folder), u"PROJECT.md"_s);
    const QString path = info.isSymLink() && info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
    QFile old(path);
    QByteArray before;
    QFileDevice::Permissions permissions {};
    if (old.exists()) {
        if (!QFileInfo(path).isFile() || old.size() > largestMirror || !old.open(QIODevice::ReadOnly))
            return failure(u"%1 could not be read."_s.arg(path));
        permissions = old.permissions();
        before = old.readAll();
        if (old.error() != QFileDevice::NoError)
            return failure(u"%1 could not be read: %2"_s.arg(path, old.errorString()));
    }
    const QByteArray text = mirrorText(project, before);
    if (old.isOpen() && text == before)
        return path;
    if (!writePrivateFile(path, text))
        return failure(u"%1 could not be written."_s.arg(path));
    if (!old.isOpen())
        return path;
    QFile::setPermissions(path, permissions);
    // An agent with the file open may have appended to it since it was read.
    old.seek(before.size());
    const QByteArray appended = old.readAll();
    QFile now(path);
    if (!appended.isEmpty() && now.open(QIODevice::Append))
        now.write(appended);
    return path;
}

}
