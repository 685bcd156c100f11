#include "Calls/CallNotes.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Platform/PrivateFile.h"

#include <QFile>
#include <QJsonArray>

namespace corvane {

namespace {

QString notesPath(const QString& folder)
{
    return folder + u"/notes.json"_s;
}

}

CallNotes readCallNotes(const QString& callFolder)
{
    QFile file(notesPath(callFolder));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QJsonObject content = jsonObject(file.readAll()).value_or(QJsonObject());
    CallNotes notes { .text = textValue(content, "text"_L1).value_or(QString()), .marksMs = {} };
    for (const QJsonValue& mark : content.value("marksMs"_L1).toArray())
        notes.marksMs.append(mark.toInteger());
    return notes;
}

bool writeCallNotes(const QString& callFolder, const CallNotes& notes)
{
    QJsonArray marks;
    for (const qint64 mark : notes.marksMs)
        marks.append(mark);
    return writePrivateFile(
        notesPath(callFolder), compactJson({ { u"text"_s, notes.text }, { u"marksMs"_s, marks } }), Outlives::Program);
}

}
