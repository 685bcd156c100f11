#include "Care/Exchange/Export.h"

#include "Care/Exchange/TextFormats.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Platform/AppPaths.h"
#include "Platform/PrivateFile.h"
#include "Store/Core/Portable.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <utility>

namespace corvane {

namespace {

/// Removes the folder unless it was finished.
class UnfinishedFolder {
public:
    explicit UnfinishedFolder(const QString& path)
        : m_path(path)
    {
    }
    ~UnfinishedFolder()
    {
        if (!m_path.isEmpty())
            QDir(m_path).removeRecursively();
    }
    UnfinishedFolder(const UnfinishedFolder&) = delete;
    UnfinishedFolder& operator=(const UnfinishedFolder&) = delete;

    bool finish(const QString& name)
    {
        if (!QFile::rename(m_path, name))
            return false;
        m_path.clear();
        return true;
    }

private:
    QString m_path;
};

/// A spreadsheet runs a text that begins with one of these as a formula; an apostrophe before it keeps it a text.
QString withoutFormula(const QString& text)
{
    const bool isFormula = !text.isEmpty() && u"=+-@\t\r"_s.contains(text.front());
    return isFormula ? u'\'' + text : text;
}

QString csvField(const QJsonValue& value)
{
    if (value.isString())
        return withoutFormula(value.toString());
    if (!value.isDouble())
        return {};
    const qint64 whole = value.toInteger();
    return double(whole) == value.toDouble() ? QString::number(whole) : QString::number(value.toDouble());
}

class Exporter {
public:
    Exporter(SqlConnection& db, const QString& folder)
        : m_db(db)
        , m_folder(folder)
    {
    }

    Result<ExchangeCounts> run()
    {
        bool written = true;
        for (const PortableKind& kind : portableKinds())
            written = written && writeRows(kind);
        written = written && write(u"contacts.vcf"_s, cards()) && write(u"events.ics"_s, calendarFile(m_events));
        if (!written)
            return failure(m_error.isEmpty() ? u"The database cannot be read."_s : m_error);
        return m_counts;
    }

private:
    std::unique_ptr<QFile> newFile(const QString& name)
    {
        auto file = makePrivateFile(m_folder + u'/' + name);
        if (file)
            return std::move(*file);
        m_error = file.error().message;
        return nullptr;
    }

    bool put(QFile& file, const QByteArray& content)
    {
        if (file.write(content) == content.size())
            return true;
        m_error = file.errorString();
        return false;
    }

    bool write(const QString& name, const QByteArray& content)
    {
        const auto file = newFile(name);
        return file && put(*file, content);
    }

    bool writeRows(const PortableKind& kind)
    {
        const QStringList columns = portableColumns(m_db, kind);
        const auto lines = newFile(kind.name + u".jsonl"_s);
        const auto sheet = newFile(kind.name + u".csv"_s);
        bool written = lines && sheet && put(*sheet, csvLine(columns));
        qint64 count = 0;
        if (written)
            visitPortable(m_db, kind, [&](const QByteArray& json) {
                const QJsonObject row = jsonObject(json).value_or(QJsonObject());
                QStringList fields;
                for (const QString& column : columns)
                    fields.append(csvField(row[column]));
                written = put(*lines, json + '\n') && put(*sheet, csvLine(fields)) && take(kind.name, row);
                ++count;
                return written;
            });
        m_counts.insert(kind.name, count);
        return written && m_db.failure() == 0;
    }

    /// Collects the content of the files in other formats.
    bool take(const QString& kind, const QJsonObject& row)
    {
        const QString id = row[u"id"].toString();
        if (kind == "people"_L1)
            m_people.insert(id, { id, row[u"display_name"].toString(), {}, {}, {} });
        else if (kind == "handles"_L1)
            takeHandle(row);
        else if (kind == "conversations"_L1)
            m_conversations.insert(id, row);
        else if (kind == "events"_L1)
            m_events.append(row);
        else if (kind == "messages"_L1)
            return writeMail(row);
        return true;
    }

    void takeHandle(const QJsonObject& row)
    {
        const auto person = m_people.find(row[u"contact_id"].toString());
        if (person == m_people.end())
            return;
        const auto add = [](QStringList& list, const QString& text) {
            if (!text.isEmpty() && !list.contains(text))
                list.append(text);
        };
        add(person->emails, row[u"email"].toString());
        add(person->phones, row[u"phone"].toString());
        add(person->handles, row[u"channel"].toString().toLower() + u':' + row[u"handle"].toString());
    }

    QByteArray cards() const
    {
        QByteArray text;
        for (const CardPerson& person : m_people)
            text += vCard(person);
        return text;
    }

    bool writeMail(const QJsonObject& row)
    {
        const QJsonObject conversation = m_conversations.value(row[u"conversation_id"].toString());
        if (conversation[u"channel"].toString() != "EMAIL"_L1)
            return true;
        QString account = conversation[u"account_id"].toString();
        const QString other = conversation[u"external_id"].toString();
        const bool isOwn = row[u"direction"].toString() == "OUT"_L1;
        MailText mail { isOwn ? account : other, isOwn ? other : account, row[u"subject"].toString(),
            row[u"body"].toString(), row[u"provider_msg_id"].toString(), row[u"ts"].toInteger(), {}, {} };
        const QString media = row[u"media_path"].toString();
        if (const auto file = media.isEmpty() ? nullptr : openPlainFile(media)) {
            mail.attachmentName = QFileInfo(media).fileName();
            mail.attachment = file->readAll();
        }
        account.replace(u'/', u'_').replace(u'.', u'_'); // a folder name
        return write(u"mail/%1/%2.eml"_s.arg(account).arg(++m_mails, 7, 10, QChar(u'0')), mailFile(mail));
    }

    SqlConnection& m_db;
    const QString m_folder;
    QString m_error;
    ExchangeCounts m_counts;
    QMap<QString, CardPerson> m_people;
    QHash<QString, QJsonObject> m_conversations;
    QList<QJsonObject> m_events;
    qint64 m_mails = 0;
};

}

Result<ExchangeCounts> exportProfile(
    const AppPaths& paths, const QString& folder, const std::shared_ptr<std::atomic<bool>>& stopped)
{
    if (QFileInfo::exists(folder) || QFileInfo(folder).isSymLink())
        return failure(u"%1 already exists."_s.arg(folder));
    if (!QFileInfo::exists(paths.database()))
        return failure(u"There is no database at %1."_s.arg(paths.database()));
    const QString partial = folder + u".partial"_s;
    if (!QDir().mkdir(partial))
        return failure(u"The folder %1 cannot be created."_s.arg(partial));
    UnfinishedFolder unfinished(partial);
    const auto db = SqlConnection::reader(paths.database(), stopped);
    auto counts = Exporter(*db, partial).run();
    if (*stopped)
        return failure(u"Stopped."_s);
    if (counts && !unfinished.finish(folder))
        return failure(u"The folder %1 cannot be created."_s.arg(folder));
    return counts;
}

}
