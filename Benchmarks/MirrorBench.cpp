#include "MirrorBench.h"

#include "Foundation/Literals.h"
#include "Mirror.h"

#include "Foundation/Ids.h"
#include "Store/Messages/InboxQueries.h"

#include <QFile>

namespace corvane::bench {

namespace {

/// The list of people in a single statement over everyone: the result of `fetchContacts`, computed the simple way.
constexpr char listOfEverybody[] = R"(SELECT ct.id, COALESCE(ct.display_name,''),
  (SELECT group_concat(DISTINCT c2.channel) FROM unified_conversation c2
     WHERE c2.contact_id=ct.id AND c2.deleted_at IS NULL),
  COALESCE((SELECT m.body FROM unified_message m
     JOIN unified_conversation cc ON m.conversation_id=cc.id
     WHERE cc.contact_id=ct.id AND m.deleted_at IS NULL ORDER BY m.ts DESC LIMIT 1), ''),
  MAX(c.last_ts), SUM(c.unread),
  MIN(c.account_id),
  MAX(CASE WHEN c.external_id LIKE '%@g.us' THEN 1 ELSE 0 END),
  COALESCE(ct.avatar_path,''),
  MAX(c.muted)
FROM contact ct JOIN unified_conversation c ON c.contact_id=ct.id
WHERE ct.workspace_id=? AND ct.deleted_at IS NULL AND c.deleted_at IS NULL
  AND (? = '' OR c.account_id = ?) AND c.archived_at IS NULL
GROUP BY ct.id
ORDER BY MAX(c.last_ts) DESC LIMIT ?;)";

/// The statements that the store ran, so that the baseline runs exactly these.
QList<QByteArray> tracedStatements;

int traceConnection(sqlite3* db, char**, const void*)
{
    const auto onStatement = [](unsigned, void*, void* statement, void*) {
        tracedStatements.append(sqlite3_sql(static_cast<sqlite3_stmt*>(statement)));
        return 0;
    };
    return sqlite3_trace_v2(db, SQLITE_TRACE_STMT, onStatement, nullptr);
}

}

MirrorBench::MirrorBench()
{
    QFile::copy(sharedMirror(QStringLiteral(CORVANE_MIRROR_FOLDER)), path());
    m_store = open();
    sqlite3_open(path().toUtf8().constData(), &m_bare);
    for (const char* pragma : { "PRAGMA busy_timeout=5000;", "PRAGMA foreign_keys=ON;" })
        sqlite3_exec(m_bare, pragma, nullptr, nullptr, nullptr);
    learnStatements();
    m_handles = m_store->rows("SELECT external_id FROM unified_conversation WHERE channel='WHATSAPP' AND "
                              "account_id='main' ORDER BY last_ts DESC LIMIT 2000;",
        {}, [](const SqlRow& row) { return row.text(0); });
}

MirrorBench::~MirrorBench()
{
    m_ingestPrepared.clear();
    sqlite3_close(m_bare);
}

QByteArray MirrorBench::contactsStatement() const
{
    return listOfEverybody;
}

IncomingMessage MirrorBench::nextMessage()
{
    ++m_messages;
    IncomingMessage message;
    message.conversationExternalId = m_handles[m_messages * 7919 % m_handles.size()];
    message.providerMsgId = u"LIVE%1"_s.arg(m_messages);
    message.body = u"See you tomorrow at the usual place, thanks for the invoice"_s;
    message.ts = m_scheduler.nowMs();
    message.conversationTitle = u"Person %1"_s.arg(m_messages % 500);
    message.sender = message.conversationTitle;
    return message;
}

void MirrorBench::ingestBare(Prepared prepared, Age age)
{
    const IncomingMessage message = nextMessage();
    const QByteArray handle = message.conversationExternalId.toUtf8();
    const QByteArray title = message.conversationTitle->toUtf8();
    const QByteArray body = message.body.toUtf8();
    const QByteArray providerId = message.providerMsgId.toUtf8();
    const QByteArray conversation = "wa:main:" + handle;
    const QByteArray contact = "ct:WHATSAPP:" + handle;
    const QByteArray identity = "id:WHATSAPP:" + handle;
    const QByteArray id = "wa:msg:" + providerId;
    const qint64 now = message.ts;
    const auto run = [&](int which, const auto&... values) {
        if (prepared == Prepared::Once)
            m_ingestPrepared[static_cast<size_t>(which)].run(values...);
        else
            BareStatement(m_bare, m_ingest[which]).run(values...);
    };
    run(0, conversation, "local", "WHATSAPP", "main", handle, title, now, now);
    run(1, contact, "local", title, now);
    run(2, identity, "local", contact, "WHATSAPP", handle, nullptr, "34600", now);
    run(3, id, "local", conversation, "IN", body, title, now, providerId, nullptr, nullptr, "local", now, "main");
    if (age == Age::Live)
        run(4, conversation);
}

std::unique_ptr<LocalDB> MirrorBench::open()
{
    return std::make_unique<LocalDB>(
        path(), LocalDB::SchemaFolders { resourceFolder(), {} }, m_scheduler, m_defaults, m_centre);
}

QByteArray MirrorBench::statementOf(const std::function<void(LocalDB&)>& work)
{
    const auto traced = openTraced();
    tracedStatements.clear();
    work(*traced);
    return tracedStatements.last();
}

std::unique_ptr<LocalDB> MirrorBench::openTraced()
{
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(traceConnection));
    auto traced = open();
    sqlite3_reset_auto_extension();
    return traced;
}

void MirrorBench::learnStatements()
{
    const auto traced = openTraced();
    for (const char* providerId : { "first", "second" }) { // the second one finds its conversation linked
        tracedStatements.clear();
        IncomingMessage message;
        message.conversationExternalId = u"learn"_s;
        message.providerMsgId = QString::fromUtf8(providerId);
        raiseUnread(*traced, storeMessage(*traced, u"WHATSAPP"_s, u"main"_s, message)->conversationId);
    }
    for (const QByteArray& sql : std::as_const(tracedStatements)) {
        if (sql.startsWith("INSERT") || sql.startsWith("UPDATE"))
            m_ingest.append(sql);
    }
    for (const QByteArray& sql : std::as_const(m_ingest))
        m_ingestPrepared.emplace_back(m_bare, sql);
    if (m_ingest.size() != 5)
        qFatal("a live message takes five statements, not %d", static_cast<int>(m_ingest.size()));
}
}
