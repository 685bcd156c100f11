#include "Platform/VCardReader.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <QIODevice>
#include <algorithm>
#include <array>

namespace corvane {

namespace {

constexpr qsizetype longestPhoto = 1024 * 1024;
constexpr qsizetype longestLine = longestPhoto / 3 * 4 + 4096; // as base64, with its parameters
constexpr qsizetype longestText = 16 * 1024;
constexpr qsizetype mostPhones = 100; ///< of one card, and as many e-mail addresses

/// The parts of "item1.TEL;TYPE="voice,home":+34 600".
struct Property {
    QByteArray name; ///< upper case, without its group
    QList<QByteArray> parameters; ///< upper case
    QByteArray value;
};

std::optional<Property> property(const QByteArray& line)
{
    Property result;
    QList<QByteArray> head(1);
    bool quoted = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const char character = line.at(i);
        if (character == '"') {
            quoted = !quoted;
        } else if (character == ':' && !quoted) {
            const QByteArray name = head.takeFirst();
            result.name = name.mid(name.lastIndexOf('.') + 1).trimmed().toUpper();
            result.parameters = head;
            result.value = line.mid(i + 1);
            return result;
        } else if (character == ';' && !quoted) {
            head.append(QByteArray());
        } else {
            head.last().append(head.size() > 1 ? char(QChar::toUpper(uint(uchar(character)))) : character);
        }
    }
    return std::nullopt;
}

/// The fields of a value, split at unescaped semicolons.
QStringList fields(const QByteArray& value)
{
    QStringList result(1);
    const QString text = QString::fromUtf8(value);
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) == u';') {
            result.append(QString());
        } else if (text.at(i) == u'\\' && i + 1 < text.size()) {
            ++i;
            result.last() += text.at(i).toLower() == u'n' ? QChar(u'\n') : text.at(i);
        } else {
            result.last() += text.at(i);
        }
    }
    for (QString& field : result)
        field = singleLine(field);
    return result;
}

/// "tel:+34-600;ext=1" and "+34 600" alike.
QString phone(const QByteArray& value)
{
    const QString text = fields(value).first();
    return text.startsWith("tel:"_L1, Qt::CaseInsensitive) ? text.mid(4) : text;
}

bool isImage(const QByteArray& bytes)
{
    return bytes.startsWith("\xFF\xD8\xFF") || bytes.startsWith("\x89PNG\r\n") || bytes.startsWith("GIF8")
        || (bytes.startsWith("RIFF") && bytes.mid(8, 4) == "WEBP");
}

/// Only a photo embedded in the card, in base64.
QByteArray photo(const Property& property)
{
    QByteArray encoded;
    if (property.value.left(5).toLower() == "data:") {
        const qsizetype comma = property.value.indexOf(',');
        if (comma > 0 && property.value.left(comma).toLower().endsWith(";base64"))
            encoded = property.value.mid(comma + 1);
    } else if (std::ranges::any_of(property.parameters, [](const QByteArray& parameter) {
                   return parameter == "ENCODING=B" || parameter == "ENCODING=BASE64" || parameter == "BASE64";
               })) {
        encoded = property.value;
    }
    encoded.replace(' ', ""); // some programs fold with several blanks
    const auto decoded = QByteArray::fromBase64Encoding(encoded, QByteArray::AbortOnBase64DecodingErrors);
    return decoded && decoded.decoded.size() <= longestPhoto && isImage(decoded.decoded) ? decoded.decoded
                                                                                         : QByteArray();
}

void take(AddressBookPerson& person, QString& fullName, const Property& property)
{
    if (property.name == "PHOTO") {
        if (person.photo.isEmpty())
            person.photo = photo(property);
        return;
    }
    if (property.value.size() > longestText)
        return;
    if (property.name == "N") {
        const QStringList names = fields(property.value);
        person.familyName = names.value(0);
        person.givenName = names.value(1);
    } else if (property.name == "FN" && fullName.isEmpty()) {
        fullName = fields(property.value).join(u' ');
    } else if (property.name == "ORG" && person.organisation.isEmpty()) {
        person.organisation = fields(property.value).first();
    } else if (property.name == "TEL" && person.phones.size() < mostPhones) {
        if (const QString number = phone(property.value); !number.isEmpty())
            person.phones.append(number);
    } else if (property.name == "EMAIL" && person.emails.size() < mostPhones) {
        if (const QString address = fields(property.value).first(); address.contains(u'@'))
            person.emails.append(address);
    }
}

bool is(const Property& property, const char* name)
{
    return property.name == name && property.value.trimmed().toUpper() == "VCARD";
}

}

std::optional<QByteArray> VCardReader::physicalLine()
{
    std::array<char, 4096> chunk;
    QByteArray line;
    bool begun = false;
    bool tooLong = false;
    while (!line.endsWith('\n')) {
        const qint64 count = m_device.readLine(chunk.data(), chunk.size());
        if (count <= 0)
            break;
        begun = true;
        // Of an overlong line only the last chunk is kept, to find its end.
        tooLong = tooLong || line.size() > longestLine;
        if (tooLong)
            line.clear();
        line.append(chunk.data(), count);
    }
    if (!begun)
        return std::nullopt;
    if (tooLong)
        return QByteArray();
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    if (line.startsWith("\xEF\xBB\xBF")) // a UTF-8 byte order mark at the start of the file
        line.remove(0, 3);
    return line;
}

std::optional<QByteArray> VCardReader::logicalLine()
{
    auto line = physicalLine();
    if (!line)
        return std::nullopt;
    bool tooLong = line->isNull();
    while (true) {
        char first = 0;
        if (m_device.peek(&first, 1) != 1 || (first != ' ' && first != '\t'))
            break;
        const auto more = physicalLine();
        tooLong = tooLong || more->isNull() || line->size() + more->size() > longestLine;
        if (!tooLong)
            line->append(more->mid(1));
    }
    return tooLong ? QByteArray() : line;
}

std::optional<AddressBookPerson> VCardReader::next()
{
    std::optional<AddressBookPerson> person;
    QString fullName;
    while (const auto line = logicalLine()) {
        const auto found = property(*line);
        if (!found)
            continue;
        if (is(*found, "BEGIN")) {
            person.emplace();
            fullName.clear();
        } else if (person && is(*found, "END")) {
            if (person->givenName.isEmpty() && person->familyName.isEmpty())
                person->givenName = fullName;
            return person;
        } else if (person) {
            take(*person, fullName, *found);
        }
    }
    return std::nullopt;
}

}
