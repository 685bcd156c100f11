#include "Calls/CallExport.h"

#include "Foundation/Literals.h"
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
    for (const QChar special : u"/\\:*?\"<>|"_s)
        name.replace(special, u'-');
    while (name.startsWith(u'.'))
        name.remove(0, 1);
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation));
    folder.mkpath(u"."_s);
    for (int i = 1;; ++i) {
        const QString number = i == 1 ? QString() : u" (%1)"_s.arg(i);
        const QString path = folder.filePath(name + number + u'.' + suffix);
        if (!QFile::exists(path))
            return path;
    }
}

QString savedTo(const QString& path)
{
    return u"Saved to "_s + path;
}

}

QString callAsText(const CallDetails& call, const QList<CallTurn>& turns, const CallNotes& notes)
{
    QStringList parts { call.title,
        QDateTime::fromMSecsSinceEpoch(call.startedAt).toString(Qt::ISODate).replace(u'T', u' ') };
    const auto add = [&parts](const QString& head, const QString& text) {
        if (!text.trimmed().isEmpty())
            parts.append(u"\n%1\n\n%2"_s.arg(head, text.trimmed()));
    };
    add(u"SUMMARY"_s, call.summary);
    add(u"NOTES"_s, notes.text);
    QStringList lines;
    for (const CallTurn& turn : turns)
        lines.append(u"[%1] %2: %3"_s.arg(playTime(turn.startMs), turn.speaker, turn.text));
    add(u"TRANSCRIPT"_s, lines.join(u'\n'));
    return parts.join(u'\n') + u'\n';
}

QString exportCall(const CallDetails& call, const QString& suffix, const QByteArray& content)
{
    const QString path = freePath(call.title, suffix);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly) || file.write(content) != content.size() || !file.flush())
        return u"Couldn't save it: "_s + file.errorString();
    return savedTo(path);
}

QString exportSoundOf(const CallDetails& call, const QStringList& paths)
{
    QStringList saved;
    for (const QString& path : paths) {
        if (path.isEmpty())
            continue;
        const QString to = freePath(call.title + u" - "_s + QFileInfo(path).baseName(), u"m4a"_s);
        if (!QFile::copy(path, to))
            return u"Couldn't save it to "_s + to;
        saved.append(to);
    }
    return saved.isEmpty() ? u"There is no sound."_s : savedTo(saved.join(u" and "_s));
}

void removeCallFiles(const AppPaths& paths, const QString& folder)
{
    const QString calls = QDir::cleanPath(paths.applicationSupport + u"/media/calls/"_s);
    const QString cleaned = QDir::cleanPath(folder);
    if (cleaned.startsWith(calls + u'/') && QFileInfo(cleaned).fileName().startsWith("call-"_L1))
        QDir(cleaned).removeRecursively();
}

}
