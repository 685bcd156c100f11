#include "Platform/Linux/Calendar/IcsText.h"

#include "Foundation/Literals.h"
#include "Platform/CalendarSource.h"

#include <QCryptographicHash>
#include <QDateTime>

namespace corvane {

namespace {

constexpr qsizetype longestLine = 64 * 1024;
constexpr int deepest = 8;
constexpr qsizetype mostPieces = 1'000'000; ///< lines, and values between commas
constexpr qsizetype foldedLine = 74; ///< bytes of a line of a written file

const QByteArray head = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Corvane//EN\r\n"_ba;
const QByteArray foot = "END:VCALENDAR\r\n"_ba;

bool startsWith(QByteArrayView line, QByteArrayView word)
{
    return line.size() >= word.size() && line.first(word.size()).compare(word, Qt::CaseInsensitive) == 0;
}

bool isContinuation(QByteArrayView line)
{
    return line.startsWith(' ') || line.startsWith('\t');
}

/// Physical lines, each with its end.
template <typename Visit> void forEachLine(QByteArrayView text, Visit visit)
{
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype end = text.indexOf('\n', at);
        const qsizetype next = end < 0 ? text.size() : end + 1;
        if (!visit(text.sliced(at, next - at)))
            return;
        at = next;
    }
}

void addLine(QByteArray& text, const QByteArray& line)
{
    for (qsizetype at = 0; at < line.size();) {
        qsizetype length = qMin(foldedLine, line.size() - at);
        // Never cuts a character.
        while (at + length < line.size() && length > 1 && (uchar(line[at + length]) & 0xC0) == 0x80)
            --length;
        text += (at == 0 ? "" : " ") + line.sliced(at, length) + "\r\n";
        at += length;
    }
}

void addText(QByteArray& text, const char* name, QString value)
{
    if (value.isEmpty())
        return;
    value.remove(u'\r').remove(QChar(0));
    value.replace(u'\\', u"\\\\"_s).replace(u';', u"\\;"_s).replace(u',', u"\\,"_s).replace(u'\n', u"\\n"_s);
    addLine(text, name + ":"_ba + value.toUtf8());
}

QByteArray moment(qint64 ms, bool wholeDay)
{
    if (wholeDay)
        return ";VALUE=DATE:" + QDateTime::fromMSecsSinceEpoch(ms).date().toString(u"yyyyMMdd"_s).toLatin1();
    return ":" + QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC).toString(u"yyyyMMdd'T'HHmmss'Z'"_s).toLatin1();
}

QByteArray uidOf(const QByteArray& component)
{
    QByteArray plain = component;
    plain.replace("\r\n ", "").replace("\r\n\t", "").replace("\n ", "").replace("\n\t", "");
    QByteArray uid;
    forEachLine(plain, [&](QByteArrayView line) {
        if (!startsWith(line, "UID:") && !startsWith(line, "UID;"))
            return true;
        uid = line.sliced(line.indexOf(':') + 1).toByteArray().trimmed();
        return false;
    });
    return uid;
}

void keep(IcsParts& parts, QByteArray component)
{
    if (startsWith(component, "BEGIN:VTIMEZONE")) {
        parts.zones.append(component);
        return;
    }
    if (!startsWith(component, "BEGIN:VEVENT"))
        return;
    QByteArray uid = uidOf(component);
    if (uid.isEmpty()) {
        uid = QCryptographicHash::hash(component, QCryptographicHash::Sha1).toHex();
        component.insert(component.indexOf('\n') + 1, "UID:" + uid + "\r\n");
    }
    parts.events[uid].append(component);
}

}

std::optional<QByteArray> boundedIcs(const QByteArray& text)
{
    QByteArray bounded;
    bounded.reserve(text.size());
    qsizetype lineLength = 0;
    qsizetype pieces = 0;
    int depth = 0;
    bool skipping = false;
    forEachLine(text, [&](QByteArrayView line) {
        if (!isContinuation(line)) {
            lineLength = 0;
            skipping = startsWith(line, "ATTACH");
            depth += startsWith(line, "BEGIN:") ? 1 : startsWith(line, "END:") ? -1 : 0;
        }
        pieces += 1 + line.count(',');
        if (depth > deepest || pieces > mostPieces)
            return false;
        const qsizetype room = longestLine - lineLength;
        if (!skipping && room > 0) {
            bounded.append(line.first(qMin(room, line.size())));
            if (line.size() > room)
                bounded.append('\n');
        }
        lineLength += line.size();
        return true;
    });
    if (depth > deepest || pieces > mostPieces)
        return std::nullopt;
    bounded.replace('\0', ' ');
    return bounded;
}

QByteArray icsOf(const NewCalendarEntry& entry)
{
    QByteArray text = head + "BEGIN:VEVENT\r\n";
    addLine(text, "UID:" + entry.uid.toUtf8());
    addLine(text, "DTSTAMP" + moment(entry.stampMs, false));
    addLine(text, "DTSTART" + moment(entry.startMs, entry.allDay));
    addLine(text, "DTEND" + moment(entry.endMs, entry.allDay));
    addText(text, "SUMMARY", entry.title);
    addText(text, "LOCATION", entry.location);
    addText(text, "DESCRIPTION", entry.notes);
    return text + "END:VEVENT\r\n" + foot;
}

IcsParts icsParts(const QByteArray& text)
{
    IcsParts parts;
    QByteArray component;
    int depth = 0; // inside the calendar
    forEachLine(text, [&](QByteArrayView line) {
        const bool begins = startsWith(line, "BEGIN:") && !startsWith(line, "BEGIN:VCALENDAR");
        const bool ends = startsWith(line, "END:") && depth > 0;
        depth += begins ? 1 : 0;
        if (depth > 0)
            component += line;
        depth -= ends ? 1 : 0;
        if (ends && depth == 0) {
            if (!component.endsWith('\n'))
                component += "\r\n";
            keep(parts, std::exchange(component, {}));
        }
        return depth <= deepest;
    });
    return parts;
}

int openTasks(const QByteArray& text)
{
    int open = 0;
    bool inTask = false;
    bool ended = false;
    forEachLine(text, [&](QByteArrayView line) {
        if (startsWith(line, "BEGIN:VTODO")) {
            inTask = true;
            ended = false;
        } else if (startsWith(line, "END:VTODO")) {
            open += inTask && !ended ? 1 : 0;
            inTask = false;
        } else if (inTask) {
            ended |= startsWith(line, "STATUS:COMPLETED") || startsWith(line, "STATUS:CANCELLED")
                || startsWith(line, "COMPLETED:");
        }
        return true;
    });
    return open;
}

QByteArray IcsParts::file(const QByteArray& uid) const
{
    return head + zones.join() + events.value(uid).join() + foot;
}

}
