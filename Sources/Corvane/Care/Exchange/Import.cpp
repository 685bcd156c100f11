#include "Care/Exchange/Import.h"

#include "Care/Exchange/MailReader.h"
#include "Foundation/Ids.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Platform/PrivateFile.h"
#include "Platform/VCardReader.h"
#include "Store/Core/Portable.h"
#include "Store/Core/Transaction.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/IdentityQueries.h"

#include <QCryptographicHash>
#include <QFile>

namespace corvane {

namespace {

constexpr qsizetype longestLine = 64 * 1024 * 1024;

const QString notWritten = u"The database could not be written."_s;

Result<qint64> importRows(LocalDB& db, const PortableKind& kind, QFile& file)
{
    qint64 added = 0;
    for (qint64 number = 1; !file.atEnd(); ++number) {
        const QByteArray line = file.readLine(longestLine).trimmed();
        if (line.isEmpty())
            continue;
        const auto row = jsonObject(line);
        if (!row)
            return failure(u"Line %1 of %2.jsonl is not a JSON object."_s.arg(number).arg(kind.name));
        added += addPortable(db, kind, *row) ? 1 : 0;
    }
    return added;
}

/// False if the person exists.
bool addPerson(LocalDB& db, const QString& channel, const QString& handle, const QString& name)
{
    if (contactExists(db, contactId(channel, handle)))
        return false;
    ensureContactId(db, channel, handle, name.isEmpty() ? handle : name);
    return true;
}

QString providerId(const ReadMail& mail, const QByteArray& text)
{
    if (!mail.messageId.isEmpty())
        return u'<' + mail.messageId + u'>';
    return u"imported:"_s + QString::fromLatin1(QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex());
}

}

Result<ExchangeCounts> importFolder(LocalDB& db, const QString& folder)
{
    Transaction transaction(db);
    if (!transaction.begun())
        return failure(notWritten);
    ExchangeCounts counts;
    for (const PortableKind& kind : portableKinds()) {
        const auto file = openPlainFile(folder + u'/' + kind.name + u".jsonl"_s);
        if (!file)
            continue;
        const auto added = importRows(db, kind, *file);
        if (!added)
            return std::unexpected(added.error());
        counts.insert(kind.name, *added);
    }
    if (counts.isEmpty())
        return failure(u"%1 is not an export."_s.arg(folder));
    return transaction.commit() ? Result<ExchangeCounts>(counts) : failure(notWritten);
}

Result<ExchangeCounts> importMails(
    LocalDB& db, const QString& file, const QString& account, const QStringList& ownAddresses)
{
    const auto source = openPlainFile(file);
    if (!source)
        return failure(u"There is no file %1."_s.arg(file));
    Transaction transaction(db);
    if (!transaction.begun())
        return failure(notWritten);
    qint64 added = 0;
    qint64 unreadable = 0;
    MailboxReader reader(*source);
    while (const auto text = reader.next()) {
        const auto mail = readMail(*text);
        const bool isOwn = mail && ownAddresses.contains(mail->from, Qt::CaseInsensitive);
        const QString other = !mail ? QString() : isOwn ? mail->to : mail->from;
        if (other.isEmpty()) {
            ++unreadable;
            continue;
        }
        const QString name = isOwn ? mail->toName : mail->fromName;
        const IncomingMessage message { other, providerId(*mail, *text), mail->body, isOwn, mail->atMs,
            name.isEmpty() ? other : name, mail->fromName.isEmpty() ? mail->from : mail->fromName, {}, {},
            mail->subject };
        const auto stored = storeMessage(db, u"EMAIL"_s, account, message);
        added += stored && stored->isNew ? 1 : 0;
    }
    if (!transaction.commit())
        return failure(notWritten);
    return ExchangeCounts { { u"messages"_s, added }, { u"unreadable"_s, unreadable } };
}

Result<ExchangeCounts> importCards(LocalDB& db, const QString& file)
{
    const auto source = openPlainFile(file);
    if (!source)
        return failure(u"There is no file %1."_s.arg(file));
    Transaction transaction(db);
    if (!transaction.begun())
        return failure(notWritten);
    qint64 added = 0;
    VCardReader reader(*source);
    while (const auto person = reader.next()) {
        QString name = (person->givenName + u' ' + person->familyName).simplified();
        if (name.isEmpty())
            name = person->organisation;
        for (const QString& email : person->emails)
            added += addPerson(db, u"EMAIL"_s, email, name) ? 1 : 0;
        for (const QString& phone : person->phones)
            added += addPerson(db, u"SMS"_s, phone, name) ? 1 : 0;
    }
    return transaction.commit() ? Result<ExchangeCounts>({ { u"people"_s, added } }) : failure(notWritten);
}

}
