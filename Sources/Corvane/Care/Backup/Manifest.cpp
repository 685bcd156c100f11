#include "Care/Backup/Manifest.h"

#include "Foundation/Json.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>

namespace corvane {

namespace {

constexpr int format = 1;

const QString formatKey = u"format"_s;
const QString programKey = u"program"_s;
const QString madeAtKey = u"madeAt"_s;
const QString dataFolderKey = u"dataFolder"_s;
const QString mediaKey = u"media"_s;
const QString secretsKey = u"secrets"_s;
const QString rowsKey = u"rows"_s;
const QString filesKey = u"files"_s;
const QString bytesKey = u"bytes"_s;
const QString sha256Key = u"sha256"_s;

}

QByteArray manifestText(const Manifest& manifest)
{
    QJsonObject rows;
    for (auto each = manifest.rows.begin(); each != manifest.rows.end(); ++each)
        rows.insert(each.key(), each.value());
    QJsonObject files;
    for (auto each = manifest.files.begin(); each != manifest.files.end(); ++each)
        files.insert(
            each.key(), QJsonObject { { bytesKey, each->bytes }, { sha256Key, QString::fromLatin1(each->sha256) } });
    return QJsonDocument(
        QJsonObject { { formatKey, format }, { programKey, manifest.program },
            { madeAtKey, QDateTime::fromMSecsSinceEpoch(manifest.madeAtMs).toUTC().toString(Qt::ISODateWithMs) },
            { dataFolderKey, manifest.dataFolder }, { mediaKey, manifest.media }, { secretsKey, manifest.secrets },
            { rowsKey, rows }, { filesKey, files } })
        .toJson();
}

Result<Manifest> manifestFrom(const QByteArray& text)
{
    const auto object = jsonObject(text);
    if (!object)
        return failure(u"Its list of files cannot be read."_s);
    if ((*object)[formatKey].toInt() != format)
        return failure(u"It was made by another version of the program, in a format that this one cannot read."_s);
    Manifest manifest;
    manifest.program = (*object)[programKey].toString();
    manifest.madeAtMs = QDateTime::fromString((*object)[madeAtKey].toString(), Qt::ISODateWithMs).toMSecsSinceEpoch();
    manifest.dataFolder = (*object)[dataFolderKey].toString();
    manifest.media = (*object)[mediaKey].toBool();
    manifest.secrets = (*object)[secretsKey].toBool();
    const QJsonObject rows = (*object)[rowsKey].toObject();
    for (auto each = rows.begin(); each != rows.end(); ++each)
        manifest.rows.insert(each.key(), each->toInteger());
    const QJsonObject files = (*object)[filesKey].toObject();
    for (auto each = files.begin(); each != files.end(); ++each) {
        const QJsonObject file = each->toObject();
        manifest.files.insert(each.key(), { file[bytesKey].toInteger(), file[sha256Key].toString().toLatin1() });
    }
    return manifest;
}

}
