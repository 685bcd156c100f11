#include "Browser/BrowserReport.h"

#include "Foundation/Literals.h"

#include <QCryptographicHash>
#include <QDateTime>

namespace corvane {

namespace {

const QString head = uR"(<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; img-src data:; style-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width">
<title>%1</title>
<style>
body { font: 15px/1.5 sans-serif; max-width: 62em; margin: 2em auto; padding: 0 1em; color: #1a1b1e; background: #fff }
h1 { font-size: 1.5em } h2 { font-size: 1.1em; margin-top: 2em }
table { border-collapse: collapse; width: 100% } th, td { text-align: left; vertical-align: top; padding: .3em .8em .3em 0 }
td { overflow-wrap: anywhere; border-top: 1px solid #ddd; white-space: pre-wrap } th { white-space: nowrap }
img { max-width: 100%; border: 1px solid #ddd } code { font-size: .85em; overflow-wrap: anywhere }
</style>
</head>
<body>
)"_s;

QString timeText(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(ms).toUTC().toString(u"yyyy-MM-dd HH:mm:ss.zzz 'UTC'"_s);
}

QString row(const QStringList& cells)
{
    QString html = u"<tr>"_s;
    for (const QString& cell : cells)
        html += u"<td>"_s + cell.toHtmlEscaped() + u"</td>"_s;
    return html + u"</tr>\n"_s;
}

QString table(const QStringList& headings, const QList<QStringList>& rows, const QString& ifNone)
{
    if (rows.isEmpty())
        return u"<p>"_s + ifNone + u"</p>\n"_s;
    QString html = u"<table>\n<tr>"_s;
    for (const QString& heading : headings)
        html += u"<th>"_s + heading + u"</th>"_s;
    html += u"</tr>\n"_s;
    for (const QStringList& cells : rows)
        html += row(cells);
    return html + u"</table>\n"_s;
}

QString section(const QString& heading, const QString& content)
{
    return u"<h2>"_s + heading + u"</h2>\n"_s + content;
}

}

QByteArray evidenceReport(const BrowserEvidencePayload& payload, const QList<ReportFile>& files)
{
    const QString title = payload.title.isEmpty() ? payload.url : payload.title;
    QString html = head.arg(title.toHtmlEscaped()) + u"<h1>"_s + title.toHtmlEscaped() + u"</h1>\n<table>\n"_s;
    const std::pair<QString, QString> facts[] { { u"Address"_s, payload.url }, { u"Asked for"_s, payload.requestedURL },
        { u"Captured"_s, timeText(payload.capturedAt) }, { u"Browser"_s, payload.browser },
        { u"State"_s, payload.status }, { u"Problem"_s, payload.lastError }, { u"Note"_s, payload.note } };
    for (const auto& [name, value] : facts) {
        if (!value.isEmpty())
            html += row({ name, value });
    }
    html += u"</table>\n"_s;

    QList<QStringList> hashes;
    for (const ReportFile& file : files) {
        const QByteArray hash = QCryptographicHash::hash(file.content, QCryptographicHash::Sha256).toHex();
        hashes.append({ file.name, QString::fromLatin1(hash) });
        if (file.name.endsWith(".png"_L1))
            html += section(u"Picture"_s,
                u"<img alt=\"The page as it was seen\" src=\"data:image/png;base64,%1\">\n"_s.arg(
                    QString::fromLatin1(file.content.toBase64())));
    }
    QList<QStringList> console;
    for (const BrowserConsoleEvent& event : payload.consoleEvents)
        console.append({ timeText(event.capturedAt), event.level, event.text, placeOfEvent(event) });
    html += section(
        u"Console"_s, table({ u"Time"_s, u"Level"_s, u"Text"_s, u"Where"_s }, console, u"No warning and no error."_s));
    QList<QStringList> network;
    for (const BrowserNetworkEvent& event : payload.networkEvents)
        network.append({ timeText(event.capturedAt), event.detail, event.url });
    html += section(
        u"Requests that failed"_s, table({ u"Time"_s, u"What happened"_s, u"Address"_s }, network, u"None."_s));
    QList<QStringList> steps;
    for (const BrowserStep& step : payload.steps)
        steps.append({ QString::number(steps.size() + 1), stepLine(step) });
    html += section(u"Steps"_s, table({ u"No."_s, u"What was done"_s }, steps, u"None were recorded."_s));
    html += section(u"Files"_s, table({ u"File"_s, u"SHA-256"_s }, hashes, {}));
    return (html + u"</body>\n</html>\n"_s).toUtf8();
}

}
