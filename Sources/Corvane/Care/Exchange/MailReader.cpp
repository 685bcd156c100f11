#include "Care/Exchange/MailReader.h"

#include "Foundation/Literals.h"

#include <QDateTime>
#include <QIODevice>
#include <QMap>
#include <QRegularExpression>
#include <QStringDecoder>

namespace corvane {

namespace {

constexpr qsizetype longestMail = 64 * 1024 * 1024;
constexpr int deepestPart = 20;

struct Part {
    QMap<QByteArray, QByteArray> headers; ///< the first of each, by its name in lower case, unfolded
    QByteArray body;
};

Part partOf(const QByteArray& text)
{
    Part part;
    QByteArray name;
    qsizetype at = 0;
    while (at < text.size()) {
        const qsizetype end = text.indexOf('\n', at);
        QByteArray line = text.mid(at, end < 0 ? -1 : end - at);
        at = end < 0 ? text.size() : end + 1;
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.isEmpty())
            break;
        if ((line.startsWith(' ') || line.startsWith('\t')) && !name.isEmpty()) {
            part.headers[name] += ' ' + line.trimmed();
            continue;
        }
        const qsizetype colon = line.indexOf(':');
        name = line.left(colon).trimmed().toLower();
        if (colon > 0 && !part.headers.contains(name))
            part.headers.insert(name, line.mid(colon + 1).trimmed());
        else
            name.clear();
    }
    part.body = text.mid(at);
    return part;
}

QString decoded(const QByteArray& bytes, const QByteArray& charset)
{
    QStringDecoder decoder(charset.isEmpty() ? "UTF-8" : charset.constData());
    if (!decoder.isValid())
        decoder = QStringDecoder(QStringDecoder::Latin1);
    const QString text = decoder(bytes);
    return decoder.hasError() ? QString::fromLatin1(bytes) : text;
}

QByteArray fromQuotedPrintable(const QByteArray& text)
{
    QByteArray bytes;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] != '=') {
            bytes += text[at];
            continue;
        }
        if (text.mid(at + 1, 1) == "\n") {
            at += 1;
        } else if (text.mid(at + 1, 2) == "\r\n") {
            at += 2;
        } else {
            bytes += QByteArray::fromHex(text.mid(at + 1, 2));
            at += 2;
        }
    }
    return bytes;
}

/// The encoded words of RFC 2047; white space between two of them does not count.
QString headerText(const QByteArray& value)
{
    static const QRegularExpression word(u"=\\?([^?*]+)(?:\\*[^?]*)?\\?([bBqQ])\\?([^?]*)\\?="_s);
    static const QRegularExpression between(u"(=\\?[^?]+\\?[bBqQ]\\?[^?]*\\?=)\\s+(?==\\?)"_s);
    const QString raw = decoded(value, "UTF-8").replace(between, u"\\1"_s);
    QString text;
    qsizetype at = 0;
    for (auto each = word.globalMatch(raw); each.hasNext();) {
        const auto match = each.next();
        QByteArray encoded = match.captured(3).toLatin1();
        const bool isBase64 = match.captured(2).toUpper() == "B"_L1;
        text += raw.mid(at, match.capturedStart() - at)
            + decoded(isBase64 ? QByteArray::fromBase64(encoded) : fromQuotedPrintable(encoded.replace('_', ' ')),
                match.captured(1).toLatin1());
        at = match.capturedEnd();
    }
    return (text + raw.mid(at)).simplified();
}

/// A parameter such as "charset" of a header's value.
QByteArray parameter(const QByteArray& value, const QString& name)
{
    const QRegularExpression pattern(
        u";\\s*%1\\s*=\\s*(?:\"([^\"]*)\"|([^;\\s]*))"_s.arg(name), QRegularExpression::CaseInsensitiveOption);
    const auto match = pattern.match(QString::fromLatin1(value));
    return (match.captured(1) + match.captured(2)).toLatin1();
}

QString textOf(const Part& part)
{
    const QByteArray encoding = part.headers.value("content-transfer-encoding").toLower();
    const QByteArray bytes = encoding == "base64" ? QByteArray::fromBase64(part.body)
        : encoding == "quoted-printable"          ? fromQuotedPrintable(part.body)
                                                  : part.body;
    return decoded(bytes, parameter(part.headers.value("content-type"), u"charset"_s))
        .replace(u"\r\n"_s, u"\n"_s)
        .trimmed();
}

QString withoutTags(QString html)
{
    static const QRegularExpression hidden(u"<(style|script|head)\\b.*?</\\1>"_s,
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression breaks(
        u"<(br|/p|/div|/tr|/h[1-6])\\b[^>]*>"_s, QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression tags(u"<[^>]*>"_s);
    html.remove(hidden).replace(u'\n', u' ').replace(breaks, u"\n"_s).remove(tags);
    html.replace(u"&nbsp;"_s, u" "_s)
        .replace(u"&lt;"_s, u"<"_s)
        .replace(u"&gt;"_s, u">"_s)
        .replace(u"&quot;"_s, u"\""_s);
    return html.replace(u"&#39;"_s, u"'"_s).replace(u"&amp;"_s, u"&"_s).trimmed();
}

QList<Part> partsIn(const Part& whole)
{
    const QByteArray edge = "--" + parameter(whole.headers.value("content-type"), u"boundary"_s);
    QList<Part> parts;
    qsizetype at = edge.size() > 2 ? whole.body.indexOf(edge) : -1;
    while (at >= 0 && !whole.body.mid(at + edge.size(), 2).startsWith("--")) {
        const qsizetype begin = whole.body.indexOf('\n', at) + 1;
        const qsizetype end = begin > 0 ? whole.body.indexOf("\n" + edge, begin) : -1;
        if (begin == 0)
            break;
        parts.append(partOf(whole.body.mid(begin, end < 0 ? -1 : end - begin)));
        at = end < 0 ? -1 : end + 1;
    }
    return parts;
}

/// The first text part of that type that is not an attachment.
std::optional<QString> firstText(const Part& part, const QByteArray& type, int depth = 0)
{
    const QByteArray own = part.headers.value("content-type", "text/plain").toLower();
    if (own.startsWith("multipart/") && depth < deepestPart) {
        for (const Part& inner : partsIn(part)) {
            if (const auto text = firstText(inner, type, depth + 1))
                return text;
        }
        return std::nullopt;
    }
    const bool isAttached = part.headers.value("content-disposition").toLower().startsWith("attachment");
    return own.startsWith(type) && !isAttached ? std::optional(textOf(part)) : std::nullopt;
}

struct Address {
    QString address;
    QString name;
};

Address firstAddress(const QByteArray& value)
{
    static const QRegularExpression pattern(u"^\\s*\"?([^\"<@]*?)\"?\\s*<?([^<>\\s,;\"]+@[^<>\\s,;\"]+)>?"_s);
    const auto match = pattern.match(headerText(value));
    return { match.captured(2).toLower(), match.captured(1).trimmed() };
}

}

std::optional<ReadMail> readMail(const QByteArray& text)
{
    const Part whole = partOf(text);
    const Address from = firstAddress(whole.headers.value("from"));
    const Address to = firstAddress(whole.headers.value("to"));
    if (from.address.isEmpty() && to.address.isEmpty())
        return std::nullopt;
    QString id = headerText(whole.headers.value("message-id"));
    id.remove(u'<').remove(u'>');
    const auto plain = firstText(whole, "text/plain");
    const auto html = plain ? std::nullopt : firstText(whole, "text/html");
    const QDateTime date = QDateTime::fromString(
        QString::fromLatin1(whole.headers.value("date")).section(u" ("_s, 0, 0), Qt::RFC2822Date);
    return ReadMail { id, from.address, from.name, to.address, to.name, headerText(whole.headers.value("subject")),
        plain ? *plain : withoutTags(html.value_or(QString())), date.isValid() ? date.toMSecsSinceEpoch() : 0 };
}

std::optional<QByteArray> MailboxReader::next()
{
    QByteArray mail;
    while (!m_device.atEnd()) {
        QByteArray line = m_device.readLine(longestMail);
        const bool isSeparator = line.startsWith("From ");
        if (!m_isMailbox)
            m_isMailbox = isSeparator;
        if (*m_isMailbox && isSeparator) {
            if (!mail.isEmpty())
                return mail;
            continue;
        }
        // In mbox files, such a line of a text is quoted.
        static const QRegularExpression quotedSeparator(u"^>+From "_s);
        if (*m_isMailbox && line.startsWith('>')
            && quotedSeparator.match(QString::fromLatin1(line.left(200))).hasMatch())
            line.remove(0, 1);
        if (mail.size() + line.size() <= longestMail)
            mail += line;
    }
    return mail.isEmpty() ? std::nullopt : std::optional(mail);
}

}
