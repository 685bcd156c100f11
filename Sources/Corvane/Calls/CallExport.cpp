#include "Calls/CallExport.h"

#include "Platform/AppPaths.h"
#include "Presentation/PlayTime.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace corvane {

namespace {

constexpr qsizetype longestName = 80;

/// A path in the folder of downloads at which nothing stands.
QString freePath(const QString& title, const QString& suffix)
{
    QString name = title.simplified().first(std::min(title.simplified().size(), longestName));
    for (const QChar special : QStringLiteral("/\\:*?\"<>|"))
        name.replace(special, u'-');
    while (name.startsWith(u'.'))
        name.remove(0, 1);
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation));
    folder.mkpath(QStringLiteral("."));
    for (int i = 1;; ++i) {
        const QString number = i == 1 ? QString() : QStringLiteral(" (%1)").arg(i);
        const QString path = folder.filePath(name + number + u'.' + suffix);
        if (!QFile::exists(path))
            return path;
    }
}

QString savedTo(const QString& path)
{
    return QStringLiteral("Saved to ") + path;
}

}

QString callAsText(const CallDetails& call, const QList<CallTurn>& turns, const CallNotes& notes)
{
    QStringList parts { call.title,
        QDateTime::fromMSecsSinceEpoch(call.startedAt).toString(Qt::ISODate).replace(u'T', u' ') };
    const auto add = [&parts](const QString& head, const QString& text) {
        if (!text.trimmed().isEmpty())
            parts.append(QStringLiteral("\n%1\n\n%2").arg(head, text.trimmed()));
    };
    add(QStringLiteral("SUMMARY"), call.summary);
    add(QStringLiteral("NOTES"), notes.text);
    QStringList lines;
    for (const CallTurn& turn : turns)
        lines.append(QStringLiteral("[%1] %2: %3").arg(playTime(turn.startMs), turn.speaker, turn.text));
    add(QStringLiteral("TRANSCRIPT"), lines.join(u'\n'));
    return parts.join(u'\n') + u'\n';
}

QString exportCall(const CallDetails& call, const QString& suffix, const QByteArray& content)
{
    const QString path = freePath(call.title, suffix);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly) || file.write(content) != content.size() || !file.flush())
        return QStringLiteral("Couldn't save it: ") + file.errorString();
    return savedTo(path);
}

QString exportSoundOf(const CallDetails& call, const QStringList& paths)
{
    QStringList saved;
    for (const QString& path : paths) {
        if (path.isEmpty())
            continue;
        const QString to
            = freePath(call.title + QStringLiteral(" - ") + QFileInfo(path).baseName(), QStringLiteral("m4a"));
        if (!QFile::copy(path, to))
            return QStringLiteral("Couldn't save it to ") + to;
        saved.append(to);
    }
    return saved.isEmpty() ? QStringLiteral("There is no sound.") : savedTo(saved.join(QStringLiteral(" and ")));
}

void removeCallFiles(const AppPaths& paths, const QString& folder)
{
    const QString calls = QDir::cleanPath(paths.applicationSupport + QStringLiteral("/media/calls/"));
    const QString cleaned = QDir::cleanPath(folder);
    if (cleaned.startsWith(calls + u'/') && QFileInfo(cleaned).fileName().startsWith(QLatin1StringView("call-")))
        QDir(cleaned).removeRecursively();
}

}
