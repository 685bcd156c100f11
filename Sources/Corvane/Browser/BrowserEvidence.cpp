#include "Browser/BrowserEvidence.h"

#include "Browser/BrowserReport.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Platform/PrivateFile.h"

#include <QBuffer>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QPainter>
#include <QStorageInfo>
#include <sys/stat.h>

namespace corvane {

namespace {

const QString pictureName = u"chromium-screenshot.png"_s;
const QString evidenceName = u"evidence.json"_s;
const QString reportName = u"report.html"_s;

QString timeText(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(ms).toUTC().toString(Qt::ISODateWithMs);
}

qint64 timeOf(const QJsonValue& text)
{
    return QDateTime::fromString(text.toString(), Qt::ISODateWithMs).toMSecsSinceEpoch();
}

QJsonObject toJson(const BrowserConsoleEvent& event)
{
    return { { u"id"_s, event.id }, { u"capturedAt"_s, timeText(event.capturedAt) }, { u"level"_s, event.level },
        { u"text"_s, event.text }, { u"url"_s, event.url }, { u"line"_s, event.line } };
}

QJsonObject toJson(const BrowserNetworkEvent& event)
{
    QJsonObject object { { u"id"_s, event.id }, { u"capturedAt"_s, timeText(event.capturedAt) },
        { u"kind"_s, event.kind }, { u"url"_s, event.url }, { u"detail"_s, event.detail } };
    if (event.statusCode)
        object.insert(u"statusCode"_s, *event.statusCode);
    return object;
}

BrowserConsoleEvent consoleEvent(const QJsonValue& json)
{
    return { json["id"_L1].toString(), timeOf(json["capturedAt"_L1]), json["level"_L1].toString(),
        json["text"_L1].toString(), json["url"_L1].toString(), json["line"_L1].toInt() };
}

BrowserNetworkEvent networkEvent(const QJsonValue& json)
{
    const QJsonValue status = json["statusCode"_L1];
    return { json["id"_L1].toString(), timeOf(json["capturedAt"_L1]), json["kind"_L1].toString(),
        json["url"_L1].toString(), json["detail"_L1].toString(),
        status.isDouble() ? std::optional(status.toInt()) : std::nullopt };
}

template <typename Event> QJsonArray arrayOf(const QList<Event>& events)
{
    QJsonArray array;
    for (const Event& event : events)
        array.append(toJson(event));
    return array;
}

QByteArray evidenceJson(const BrowserEvidencePayload& payload)
{
    // The keys of an object are sorted.
    const QJsonObject object { { u"capturedAt"_s, timeText(payload.capturedAt) }, { u"title"_s, payload.title },
        { u"url"_s, payload.url }, { u"requestedURL"_s, payload.requestedURL }, { u"note"_s, payload.note },
        { u"status"_s, payload.status }, { u"lastError"_s, payload.lastError },
        { u"screenshotPath"_s, payload.screenshotPath }, { u"consoleEvents"_s, arrayOf(payload.consoleEvents) },
        { u"networkEvents"_s, arrayOf(payload.networkEvents) }, { u"steps"_s, stepsToJson(payload.steps) },
        { u"browser"_s, payload.browser } };
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

/// `size`: of everything to be written to the path.
std::unexpected<Error> writeFailure(const QString& path, qint64 size)
{
    constexpr qint64 little = 4 * 1024 * 1024;
    const QStorageInfo disk(QFileInfo(path).absolutePath());
    const bool isFull = disk.isValid() && disk.bytesAvailable() < size + little;
    return failure(isFull ? u"The evidence could not be saved: the disk is full."_s
                          : u"The evidence could not be saved: %1 could not be written."_s.arg(path));
}

/// A new folder of that name, with a number appended if the name is taken.
std::optional<QString> newFolder(const QString& parent, const QString& name)
{
    if (!QDir().mkpath(parent))
        return std::nullopt;
    for (int number = 1; number <= 1000; ++number) {
        const QString path = parent + u'/' + name + (number > 1 ? u"-%1"_s.arg(number) : QString());
        if (::mkdir(QFile::encodeName(path).constData(), 0700) == 0)
            return path;
        if (errno != EEXIST)
            return std::nullopt;
    }
    return std::nullopt;
}

}

QString SavedEvidence::file() const
{
    return folder + u'/' + evidenceName;
}

QString SavedEvidence::report() const
{
    return folder + u'/' + reportName;
}

QString evidenceFolder(const QString& root, const QString& projectSlug)
{
    constexpr qsizetype longestName = 60; // at most four times as many bytes
    QString name = QString(projectSlug).replace(u'/', u'-').remove(QChar(u'\0')).left(longestName);
    while (name.startsWith(u'.'))
        name.front() = u'-';
    return root + u'/' + (name.isEmpty() ? u"project"_s : name);
}

Result<SavedEvidence> writeEvidence(
    const QString& root, const QString& projectSlug, BrowserEvidencePayload payload, const QImage& picture)
{
    const QString parent = evidenceFolder(root, projectSlug);
    const QString time = QDateTime::fromMSecsSinceEpoch(payload.capturedAt).toString(u"yyyyMMdd-HHmmss"_s);
    const std::optional<QString> folder = newFolder(parent, u"manual-"_s + time);
    if (!folder)
        return writeFailure(parent, 0);
    QList<ReportFile> files;
    const auto write = [&](const QString& name, const QByteArray& content) {
        files.append({ name, content });
        return writePrivateFile(*folder + u'/' + name, content);
    };
    const auto giveUp = [&] {
        QDir(*folder).removeRecursively();
        qint64 size = 0;
        for (const ReportFile& file : std::as_const(files))
            size += file.content.size();
        return writeFailure(*folder, size);
    };
    if (!picture.isNull()) {
        QBuffer png;
        payload.screenshotPath = *folder + u'/' + pictureName;
        if (!png.open(QIODevice::WriteOnly) || !picture.save(&png, "PNG") || !write(pictureName, png.data()))
            return giveUp();
    }
    if (!write(evidenceName, evidenceJson(payload)) || !write(reportName, evidenceReport(payload, files)))
        return giveUp();
    return SavedEvidence { payload, *folder };
}

Result<BrowserEvidencePayload> readEvidence(const QString& path)
{
    constexpr qint64 longest = 64 * 1024 * 1024;
    const QFileInfo info(path);
    QFile file((info.isDir() ? path : info.absolutePath()) + u'/' + evidenceName);
    const std::optional<QJsonObject> json
        = file.open(QIODevice::ReadOnly) ? jsonObject(file.read(longest)) : std::nullopt;
    if (!json)
        return failure(u"The evidence is not there any more: %1"_s.arg(file.fileName()));
    BrowserEvidencePayload payload { timeOf(json->value("capturedAt"_L1)), json->value("title"_L1).toString(),
        json->value("url"_L1).toString(), json->value("requestedURL"_L1).toString(), json->value("note"_L1).toString(),
        json->value("status"_L1).toString(), json->value("lastError"_L1).toString(),
        json->value("screenshotPath"_L1).toString(), {}, {}, stepsFromJson(json->value("steps"_L1).toArray()),
        json->value("browser"_L1).toString() };
    for (const QJsonValue& event : json->value("consoleEvents"_L1).toArray())
        payload.consoleEvents.append(consoleEvent(event));
    for (const QJsonValue& event : json->value("networkEvents"_L1).toArray())
        payload.networkEvents.append(networkEvent(event));
    return payload;
}

QImage blackedOut(QImage picture, const QList<QRectF>& parts)
{
    if (picture.isNull())
        return picture;
    QPainter painter(&picture);
    for (const QRectF& part : parts) {
        const QRectF pixels(part.x() * picture.width(), part.y() * picture.height(), part.width() * picture.width(),
            part.height() * picture.height());
        painter.fillRect(pixels.normalized().toAlignedRect(), Qt::black);
    }
    painter.end();
    return picture;
}

}
