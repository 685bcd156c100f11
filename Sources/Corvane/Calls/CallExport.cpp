#include "Calls/CallExport.h"

#include "Foundation/Literals.h"
#include "Platform/AppPaths.h"
#include "Presentation/Downloads.h"
#include "Presentation/PlayTime.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace corvane {

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

QString exportSoundOf(const CallDetails& call, const QStringList& paths)
{
    QStringList saved;
    for (const QString& path : paths) {
        if (path.isEmpty())
            continue;
        const QString to = freeDownload(call.title + u" - "_s + QFileInfo(path).baseName(), u"m4a"_s);
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
