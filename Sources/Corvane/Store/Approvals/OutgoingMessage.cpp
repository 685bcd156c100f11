#include "Store/Approvals/OutgoingMessage.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <numeric>

namespace corvane {

namespace {

constexpr QLatin1StringView pathKey("path");
constexpr QLatin1StringView nameKey("name");
constexpr QLatin1StringView bytesKey("bytes");
constexpr QLatin1StringView sha256Key("sha256");

std::optional<OutgoingFile> fileFrom(const QJsonObject& object)
{
    const auto path = textValue(object, pathKey);
    const auto name = textValue(object, nameKey);
    const auto bytes = wholeNumber(object, bytesKey);
    const auto sha256 = textValue(object, sha256Key);
    if (!path || !name || !bytes || !sha256)
        return std::nullopt;
    return OutgoingFile { *path, *name, *bytes, *sha256 };
}

}

qint64 totalBytes(const QList<OutgoingFile>& files)
{
    return std::accumulate(
        files.begin(), files.end(), qint64(0), [](qint64 sum, const OutgoingFile& file) { return sum + file.bytes; });
}

QString filesText(const QList<OutgoingFile>& files)
{
    if (files.isEmpty())
        return u""_s;
    QJsonArray array;
    for (const OutgoingFile& file : files)
        array.append(QJsonObject {
            { pathKey, file.path }, { nameKey, file.name }, { bytesKey, file.bytes }, { sha256Key, file.sha256 } });
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

std::optional<QList<OutgoingFile>> filesFromText(const QString& text)
{
    QList<OutgoingFile> files;
    if (text.isEmpty())
        return files;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    if (!document.isArray())
        return std::nullopt;
    for (const QJsonValue& value : document.array()) {
        const auto file = fileFrom(value.toObject());
        if (!file)
            return std::nullopt;
        files.append(*file);
    }
    return files;
}

}
