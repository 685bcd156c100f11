#include "Calls/CallNotes.h"

#include "Foundation/Json.h"
#include "Platform/PrivateFile.h"

#include <QFile>
#include <QJsonArray>

namespace corvane {

namespace {

QString notesPath(const QString& folder)
{
    return folder + QStringLiteral("/notes.json");
}

}

CallNotes readCallNotes(const QString& callFolder)
{
    QFile file(notesPath(callFolder));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QJsonObject content = jsonObject(file.readAll()).value_or(QJsonObject());
    CallNotes notes { .text = textValue(content, QLatin1StringView("text")).value_or(QString()), .marksMs = {} };
    for (const QJsonValue& mark : content.value(QLatin1StringView("marksMs")).toArray())
        notes.marksMs.append(mark.toInteger());
    return notes;
}

bool writeCallNotes(const QString& callFolder, const CallNotes& notes)
{
    QJsonArray marks;
    for (const qint64 mark : notes.marksMs)
        marks.append(mark);
    return writePrivateFile(notesPath(callFolder),
        compactJson({ { QStringLiteral("text"), notes.text }, { QStringLiteral("marksMs"), marks } }),
        Outlives::Program);
}

}
