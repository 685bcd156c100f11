#include "Care/Exchange/TextFormats.h"

#include "Foundation/Literals.h"

#include <QDateTime>
#include <QUrl>
#include <algorithm>

namespace corvane {

namespace {

constexpr qsizetype longestLine = 75; // bytes, in vCard and iCalendar files
constexpr qsizetype base64Line = 76;

/// A property's line, folded between characters.
QByteArray property(const QByteArray& name, const QString& value)
{
    QString text = value;
    text.replace(u'\\', u"\\\\"_s).replace(u';', u"\\;"_s).replace(u',', u"\\,"_s);
    text.remove(u'\r').replace(u'\n', u"\\n"_s);
    QByteArray folded = name + ':';
    qsizetype line = folded.size();
    for (const char32_t code : text.toStdU32String()) {
        const QByteArray character = QString::fromUcs4(&code, 1).toUtf8();
        if (line + character.size() > longestLine) {
            folded += "\r\n ";
            line = 1;
        }
        folded += character;
        line += character.size();
    }
    return folded + "\r\n";
}

QString utcStamp(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(ms).toUTC().toString(u"yyyyMMdd'T'HHmmss'Z'"_s);
}

QByteArray calendarTime(const QByteArray& name, const QJsonObject& event, const QString& column)
{
    const qint64 ms = event[column].toInteger();
    if (event[u"all_day"].toInteger() == 0)
        return name + ':' + utcStamp(ms).toLatin1() + "\r\n";
    return name + ";VALUE=DATE:" + QDateTime::fromMSecsSinceEpoch(ms).toString(u"yyyyMMdd"_s).toLatin1() + "\r\n";
}

/// A header's value on one line; anything but ASCII is encoded by RFC 2047.
QByteArray headerText(QString value)
{
    value = value.simplified();
    const bool isPlain = std::ranges::all_of(value, [](QChar each) { return each >= u' ' && each < QChar(0x7f); });
    return isPlain ? value.toLatin1() : "=?UTF-8?B?" + value.toUtf8().toBase64() + "?=";
}

QByteArray inBase64(const QByteArray& data)
{
    const QByteArray encoded = data.toBase64();
    QByteArray lines;
    for (qsizetype at = 0; at < encoded.size(); at += base64Line)
        lines += encoded.mid(at, base64Line) + "\r\n";
    return lines;
}

QByteArray textPart(const QString& body)
{
    return "Content-Type: text/plain; charset=UTF-8\r\nContent-Transfer-Encoding: base64\r\n\r\n"
        + inBase64(body.toUtf8());
}

}

QByteArray csvLine(const QStringList& fields)
{
    QStringList quoted;
    for (QString field : fields) {
        const bool needsQuotes
            = field.contains(u'"') || field.contains(u',') || field.contains(u'\n') || field.contains(u'\r');
        quoted.append(needsQuotes ? u'"' + field.replace(u'"', u"\"\""_s) + u'"' : field);
    }
    return quoted.join(u',').toUtf8() + "\r\n";
}

QByteArray vCard(const CardPerson& person)
{
    QByteArray card = "BEGIN:VCARD\r\nVERSION:4.0\r\n" + property("UID", person.id) + property("FN", person.name);
    for (const QString& email : person.emails)
        card += property("EMAIL", email);
    for (const QString& phone : person.phones)
        card += property("TEL", phone);
    for (const QString& handle : person.handles)
        card += property("X-CORVANE-HANDLE", handle);
    return card + "END:VCARD\r\n";
}

QByteArray calendarFile(const QList<QJsonObject>& events)
{
    QByteArray file = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Corvane//Export//EN\r\n";
    for (const QJsonObject& event : events) {
        file += "BEGIN:VEVENT\r\n" + property("UID", event[u"id"].toString())
            + property("DTSTAMP", utcStamp(event[u"updated_at"].toInteger()))
            + calendarTime("DTSTART", event, u"start_ms"_s) + calendarTime("DTEND", event, u"end_ms"_s)
            + property("SUMMARY", event[u"title"].toString());
        if (const QString location = event[u"location"].toString(); !location.isEmpty())
            file += property("LOCATION", location);
        if (const QString notes = event[u"notes"].toString(); !notes.isEmpty())
            file += property("DESCRIPTION", notes);
        file += "END:VEVENT\r\n";
    }
    return file + "END:VCALENDAR\r\n";
}

QByteArray mailFile(const MailText& mail)
{
    QByteArray file = "From: " + headerText(mail.from) + "\r\nTo: " + headerText(mail.to)
        + "\r\nSubject: " + headerText(mail.subject) + "\r\nDate: "
        + QDateTime::fromMSecsSinceEpoch(mail.atMs).toUTC().toString(Qt::RFC2822Date).toLatin1() + "\r\n";
    if (!mail.messageId.isEmpty())
        file += "Message-ID: <" + headerText(mail.messageId) + ">\r\n";
    file += "MIME-Version: 1.0\r\n";
    if (mail.attachmentName.isEmpty())
        return file + textPart(mail.body);
    const QByteArray edge = "=_corvane_part"; // base64 has no underscore
    return file + "Content-Type: multipart/mixed; boundary=\"" + edge + "\"\r\n\r\n--" + edge + "\r\n"
        + textPart(mail.body) + "--" + edge
        + "\r\nContent-Type: application/octet-stream\r\nContent-Transfer-Encoding: base64\r\n"
          "Content-Disposition: attachment; filename*=UTF-8''"
        + QUrl::toPercentEncoding(mail.attachmentName) + "\r\n\r\n" + inBase64(mail.attachment) + "--" + edge
        + "--\r\n";
}

}
