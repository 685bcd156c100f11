#include "Presentation/Downloads.h"

#include "Foundation/Literals.h"

#include <QDir>
#include <QSaveFile>
#include <QStandardPaths>

namespace corvane {

namespace {

constexpr qsizetype longestName = 80;

}

QString fileNameOf(const QString& title)
{
    QString name = title.simplified().left(longestName).trimmed();
    for (const QChar special : u"/\\:*?\"<>|"_s)
        name.replace(special, u'-');
    while (name.startsWith(u'.'))
        name.remove(0, 1);
    return name.isEmpty() ? u"Untitled"_s : name;
}

QString freeDownload(const QString& title, const QString& suffix)
{
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation));
    folder.mkpath(u"."_s);
    for (int i = 1;; ++i) {
        const QString number = i == 1 ? QString() : u" (%1)"_s.arg(i);
        const QString path = folder.filePath(fileNameOf(title) + number + u'.' + suffix);
        if (!QFile::exists(path))
            return path;
    }
}

QString saveDownload(const QString& title, const QString& suffix, const QByteArray& content)
{
    const QString path = freeDownload(title, suffix);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit())
        return u"Couldn't save it: "_s + file.errorString();
    return savedTo(path);
}

QString savedTo(const QString& path)
{
    return u"Saved to "_s + path;
}

}
