#include "Shell/HelpTopics.h"

#include "Foundation/Literals.h"

#include <QDir>
#include <QFile>

namespace corvane {

QList<HelpTopic> readHelp(const QString& resources)
{
    QList<HelpTopic> topics;
    const QDir folder(resources + u"/help"_s);
    for (const QString& name : folder.entryList({ u"*.md"_s }, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QString text = QString::fromUtf8(file.readAll());
        topics.append({ text.section(u'\n', 0, 0).mid(2), text.section(u'\n', 1).trimmed() });
    }
    return topics;
}

}
