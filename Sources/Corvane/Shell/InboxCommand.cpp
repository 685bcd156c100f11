#include "Shell/InboxCommand.h"

#include "Care/Backup/BackupKeeper.h"
#include "Foundation/Json.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/SystemScheduler.h"
#include "Foundation/Text.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/PrivateFile.h"
#include "Platform/ProfileLock.h"
#include "Presentation/BodyText.h"
#include "Presentation/CountWords.h"
#include "Presentation/DateWords.h"
#include "Shell/TerminalText.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Core/StoreHealth.h"
#include "Store/Core/Upkeep.h"
#include "Store/Core/Workspaces.h"
#include "Store/Messages/InboxQueries.h"
#include "Store/Messages/ThreadQueries.h"
#include "Store/People/IdentityQueries.h"
#include "Store/Search/IndexedSearch.h"
#include "Store/Search/RecordQueries.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTextStream>

namespace corvane {

namespace {

using BodyText::printable;

constexpr int wrongUse = 2;
constexpr int usualLimit = 30;
constexpr int mostPeople = 100'000;
constexpr int snippetLength = 60;

/// Why the profile's database cannot be used; empty if it can.
QString troubleWith(const AppPaths& paths)
{
    const QString path = paths.database();
    const QFileInfo folder(paths.applicationSupport);
    const bool isOpenToUs = !folder.exists() || (folder.isWritable() && folder.isExecutable());
    if (isOpenToUs && !QFileInfo::exists(path))
        return folder.exists() && !ProfileLock::take(paths.applicationSupport)
            ? u"Corvane is starting. Try again."_s
            : u"There is no database at %1."_s.arg(path);
    const auto reader = SqlConnection::reader(path, std::make_shared<std::atomic<bool>>(false));
    tableColumns(*reader);
    if (isOpenToUs && reader->failure() == 0 && QFileInfo(path).isWritable())
        return {};
    if (storeFault(reader->failure()) == StoreFault::None && mayPass(reader->failure()))
        return u"Another program holds the database. Try again later."_s;
    return u"The database cannot be used. corvane doctor says why, and what to do."_s;
}

/// The database of an existing profile, and the options that these commands share.
class Inbox {
public:
    Inbox(const TextCall& call, const QString& name, const QList<QCommandLineOption>& more = {})
        : m_call(call)
        , defaults(call.paths.defaultsFile)
    {
        const QCommandLineOption json(u"json"_s);
        const QCommandLineOption most(u"limit"_s, {}, u"N"_s, QString::number(usualLimit));
        parser.addOptions(QList { json, most } + more);
        isUnderstood = parser.parse(QStringList(name) + call.arguments) && parser.value(most).toInt() > 0;
        asJson = parser.isSet(json);
        limit = parser.value(most).toInt();
        words = parser.positionalArguments().join(u' ');
        m_trouble = isUnderstood ? troubleWith(call.paths) : QString();
        if (!isUnderstood || !m_trouble.isEmpty())
            return;
        keepFilesPrivate({ call.paths.applicationSupport });
        db = std::make_unique<LocalDB>(call.paths.database(),
            LocalDB::SchemaFolders { call.paths.resources, call.paths.home }, scheduler, defaults, nobody);
    }

    /// Prints the error and returns the exit code.
    std::optional<int> refusal(const char* usage)
    {
        if (!isUnderstood) {
            m_call.errors << "Usage: corvane " << usage << '\n';
            return wrongUse;
        }
        if (m_trouble.isEmpty())
            return std::nullopt;
        m_call.errors << m_trouble << '\n';
        return 1;
    }

    QString time(qint64 ms) { return DateWords(scheduler.nowMs()).listTime(ms); }

    void printJson(const QJsonArray& array)
    {
        m_call.out << QJsonDocument(array).toJson(QJsonDocument::Compact) << '\n';
    }

    QCommandLineParser parser;
    bool isUnderstood = false;
    bool asJson = false;
    int limit = 0;
    QString words;

private:
    const TextCall& m_call;
    QString m_trouble;

public:
    SystemScheduler scheduler;
    UserDefaults defaults;
    NotificationCentre nobody;
    std::unique_ptr<LocalDB> db;
};

QString shortened(const QString& text)
{
    return firstCharacters(singleLine(printable(text)), snippetLength);
}

QString isoText(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(ms).toUTC().toString(Qt::ISODateWithMs);
}

QString nameOf(LocalDB& db, const ContactRow& person)
{
    return person.name.isEmpty() ? displayName(db, person.id) : person.name;
}

QJsonObject jsonOf(LocalDB& db, const ContactRow& person)
{
    return { { u"id"_s, person.id }, { u"name"_s, nameOf(db, person) },
        { u"channels"_s, QJsonArray::fromStringList(person.platforms) }, { u"unread"_s, person.unread },
        { u"lastMessageAt"_s, isoText(person.lastTs) }, { u"lastMessage"_s, person.snippet } };
}

QJsonObject jsonOf(const UnifiedMsgRow& message)
{
    return { { u"id"_s, message.id }, { u"at"_s, isoText(message.ts) }, { u"channel"_s, message.platform },
        { u"direction"_s, message.direction }, { u"sender"_s, message.sender }, { u"subject"_s, message.subject },
        { u"body"_s, message.body }, { u"media"_s, message.mediaPath.value_or(QString()) } };
}

QJsonObject jsonOf(const MessageHit& hit)
{
    return { { u"kind"_s, u"message"_s }, { u"id"_s, hit.id }, { u"at"_s, isoText(hit.ts) },
        { u"personId"_s, hit.contactId }, { u"person"_s, hit.contactName }, { u"channel"_s, hit.channel },
        { u"direction"_s, hit.direction }, { u"text"_s, hit.snippet } };
}

QJsonObject jsonOf(const FoundRecord& record)
{
    return { { u"kind"_s, record.kind }, { u"id"_s, record.id }, { u"at"_s, isoText(record.ts) },
        { u"personId"_s, record.personId }, { u"module"_s, record.module }, { u"title"_s, record.title },
        { u"detail"_s, record.detail }, { u"text"_s, record.text } };
}

/// The arguments as they would be typed in the search field, where a value of several words is quoted.
QString typedSearch(const QStringList& arguments)
{
    QStringList typed;
    for (const QString& argument : arguments) {
        const QString word = argument.section(u':', 0, 0);
        const QString value = argument.section(u':', 1);
        const bool narrows
            = std::ranges::find(narrowingWords(), word.toLower(), &NarrowingWord::word) != narrowingWords().end();
        typed.append(narrows && value.contains(u' ') ? word + u":\""_s + value + u'"' : argument);
    }
    return typed.join(u' ');
}

/// The person meant by the words: an id, a name, or a part of a name that matches only one person.
std::optional<ContactRow> findPerson(LocalDB& db, const QString& words, QTextStream& errors)
{
    if (const auto person = fetchContact(db, words))
        return person;
    QList<ContactRow> fitting;
    for (const InboxFilter filter : { InboxFilter::All, InboxFilter::Archived }) {
        for (const ContactRow& person : fetchContacts(db, filter, {}, mostPeople)) {
            const QString name = folded(nameOf(db, person));
            if (name == folded(words))
                return person;
            if (name.contains(folded(words)))
                fitting.append(person);
        }
    }
    if (fitting.size() == 1)
        return fitting.first();
    errors << (fitting.isEmpty() ? "Nobody is called that: " : "Several people are called that: ") << printable(words)
           << '\n';
    for (const ContactRow& person : fitting.first(std::min<qsizetype>(fitting.size(), 10)))
        errors << "  " << printable(nameOf(db, person)) << "  (" << printable(person.id) << ")\n";
    return std::nullopt;
}

}

int listPeople(const TextCall& call)
{
    const QCommandLineOption all(u"all"_s);
    Inbox inbox(call, u"list"_s, { all });
    if (const auto code = inbox.refusal("list [--all] [--limit N] [--json]"))
        return *code;
    LocalDB& db = *inbox.db;
    const InboxFilter filter = inbox.parser.isSet(all) ? InboxFilter::All : InboxFilter::NeedsMe;
    const QList<ContactRow> people = fetchContacts(db, filter, {}, inbox.limit);
    if (inbox.asJson) {
        QJsonArray array;
        for (const ContactRow& person : people)
            array.append(jsonOf(db, person));
        inbox.printJson(array);
        return 0;
    }
    for (const ContactRow& person : people) {
        call.out << coloured(inbox.time(person.lastTs).leftJustified(12), TextColour::Faint)
                 << coloured(shortened(nameOf(db, person)), TextColour::Bold);
        if (person.unread > 0)
            call.out << coloured(u" (%1)"_s.arg(person.unread), TextColour::Yellow);
        call.out << "  " << shortened(person.snippet) << '\n';
    }
    return 0;
}

int showPerson(const TextCall& call)
{
    Inbox inbox(call, u"show"_s);
    inbox.isUnderstood = inbox.isUnderstood && !inbox.words.isEmpty();
    if (const auto code = inbox.refusal("show [--limit N] [--json] PERSON"))
        return *code;
    const auto person = findPerson(*inbox.db, inbox.words, call.errors);
    if (!person)
        return 1;
    const QList<UnifiedMsgRow> thread = fetchUnifiedThread(*inbox.db, person->id, inbox.limit);
    if (inbox.asJson) {
        QJsonArray array;
        for (const UnifiedMsgRow& message : thread)
            array.append(jsonOf(message));
        inbox.printJson(array);
        return 0;
    }
    const QString name = printable(nameOf(*inbox.db, *person));
    for (const UnifiedMsgRow& message : thread) {
        const bool isOwn = message.direction == "OUT"_L1;
        call.out << coloured(inbox.time(message.ts).leftJustified(12), TextColour::Faint)
                 << coloured(isOwn ? u"You"_s : name, TextColour::Bold) << ": ";
        if (!message.subject.isEmpty())
            call.out << singleLine(printable(message.subject)) << " - ";
        call.out << printable(message.body).replace(u'\n', u"\n              "_s);
        if (message.mediaType)
            call.out << coloured(u" [%1]"_s.arg(printable(*message.mediaType)), TextColour::Faint);
        call.out << '\n';
    }
    return 0;
}

int searchInbox(const TextCall& call)
{
    Inbox inbox(call, u"search"_s);
    inbox.isUnderstood = inbox.isUnderstood && !inbox.words.isEmpty();
    if (const auto code = inbox.refusal("search [--limit N] [--json] WORDS"))
        return *code;
    LocalDB& db = *inbox.db;
    const qint64 now = inbox.scheduler.nowMs();
    const SearchQuery query = parseSearch(typedSearch(inbox.parser.positionalArguments()), DateWords(now).today());
    if (!query.hint.isEmpty()) {
        call.errors << query.hint << '\n';
        return wrongUse;
    }
    const auto never = std::make_shared<std::atomic<bool>>(false);
    const QList<MessageHit> hits = query.asksFor(SearchGroup::Messages)
        ? findMessages(db, query, inbox.limit, {}, never).hits
        : QList<MessageHit>();
    const QList<FoundRecord> records = findRecords(db, query, { activeWorkspaceId(db), now, inbox.limit }).records;
    const int code = hits.isEmpty() && records.isEmpty() ? 1 : 0; // as grep does
    if (inbox.asJson) {
        QJsonArray array;
        for (const MessageHit& hit : hits)
            array.append(jsonOf(hit));
        for (const FoundRecord& record : records)
            array.append(jsonOf(record));
        inbox.printJson(array);
        return code;
    }
    SearchGroup printed = SearchGroup::Messages; // messages need no heading
    const auto print = [&](SearchGroup group, qint64 ts, const QString& title, const QString& text) {
        if (std::exchange(printed, group) != group)
            call.out << coloured(groupLabel(group) + u':', TextColour::Faint) << '\n';
        call.out << coloured(inbox.time(ts).leftJustified(12), TextColour::Faint)
                 << coloured(shortened(title), TextColour::Bold) << "  " << shortened(text) << '\n';
    };
    for (const MessageHit& hit : hits)
        print(SearchGroup::Messages, hit.ts, hit.contactName, hit.snippet);
    for (const FoundRecord& record : records)
        print(record.group, record.ts, record.title, QStringList { record.detail, record.text }.join(u' ').trimmed());
    return code;
}

int draftMessage(const TextCall& call, const QString& typed)
{
    Inbox inbox(call, u"send"_s);
    const QStringList given = inbox.parser.positionalArguments();
    const QString text = given.size() > 1 ? given.mid(1).join(u' ') : typed.trimmed();
    inbox.isUnderstood = inbox.isUnderstood && !given.isEmpty();
    if (const auto code = inbox.refusal("send PERSON [WORDS]"))
        return *code;
    if (text.isEmpty()) {
        call.errors << "There is no text to send.\n";
        return wrongUse;
    }
    const auto person = findPerson(*inbox.db, given.first(), call.errors);
    if (!person)
        return 1;
    const auto conversation = newestConversation(*inbox.db, person->id);
    if (!conversation || !queueDraft(*inbox.db, *conversation, text, u"terminal"_s)) {
        call.errors << "The database could not be written.\n";
        return 1;
    }
    call.out << "It waits in Approvals: to " << printable(nameOf(*inbox.db, *person)) << ".\n";
    return 0;
}

int printStatus(const TextCall& call)
{
    Inbox inbox(call, u"status"_s);
    inbox.isUnderstood = inbox.isUnderstood && inbox.words.isEmpty();
    if (const auto code = inbox.refusal("status [--json]"))
        return *code;
    LocalDB& db = *inbox.db;
    const bool runs = ProfileLock::take(call.paths.applicationSupport) == nullptr;
    const int unread = totalUnread(db);
    const qsizetype waiting = fetchDrafts(db, { DraftStatus::Pending, DraftStatus::Failed }, mostPeople).size();
    const QList<KeptBackup> kept = keptBackups(backupFolder(call.paths, inbox.defaults));
    if (inbox.asJson) {
        QJsonObject status { { u"running"_s, runs }, { u"unread"_s, unread }, { u"waitingDrafts"_s, waiting } };
        if (!kept.isEmpty())
            status.insert(u"lastBackupAt"_s, isoText(kept.first().madeAtMs));
        call.out << compactJson(status) << '\n';
        return 0;
    }
    call.out << (runs ? "Corvane runs.\n" : "Corvane does not run.\n")
             << countWords(unread, u"unread message"_s, u"unread messages"_s) << ".\n"
             << countWords(waiting, u"message waits"_s, u"messages wait"_s) << " in Approvals.\n"
             << (kept.isEmpty() ? u"There is no backup yet."_s
                                : u"The last backup was made %1."_s.arg(
                                      DateWords(inbox.scheduler.nowMs()).ago(kept.first().madeAtMs)))
             << '\n';
    return 0;
}

}
