#include "Foundation/Literals.h"
#include "Store/Core/Workspaces.h"
#include "Store/Messages/InboxQueries.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/Messages/ThreadQueries.h"
#include "Store/Search/SearchQueries.h"
#include "Support/StoreTest.h"

#include <random>

namespace corvane {

class InboxTest : public StoreTest {
protected:
    InboxTest() { open(); }

    QString chat(const char* channel, const char* account, const char* externalId, qint64 ts, const char* body,
        const char* title = nullptr)
    {
        IncomingMessage incoming;
        incoming.conversationExternalId = QString::fromUtf8(externalId);
        incoming.providerMsgId = u"p%1"_s.arg(++m_messages);
        incoming.body = QString::fromUtf8(body);
        incoming.ts = ts;
        if (title)
            incoming.conversationTitle = QString::fromUtf8(title);
        return storeMessage(*m_db, QString::fromUtf8(channel), QString::fromUtf8(account), incoming)->conversationId;
    }

    QList<ContactRow> list(InboxFilter filter = InboxFilter::All, const QString& account = {}, int limit = 300)
    {
        return fetchContacts(*m_db, filter, account, limit);
    }

    QStringList names(InboxFilter filter = InboxFilter::All, const QString& account = {}, int limit = 300)
    {
        QStringList result;
        for (const ContactRow& row : list(filter, account, limit))
            result.append(row.name);
        return result;
    }

    int m_messages = 0;
};

TEST_F(InboxTest, aPersonOnTwoChannelsIsOneRow)
{
    const QString whatsApp = chat("WHATSAPP", "zeta", "34@s.whatsapp.net", 100, "older", "Ana");
    const QString mail = chat("EMAIL", "alpha", "ana@x.y", 200, "newest", "ana@x.y");
    raiseUnread(*m_db, whatsApp);
    raiseUnread(*m_db, mail);
    raiseUnread(*m_db, mail);
    m_db->exec("UPDATE unified_conversation SET contact_id='ct:WHATSAPP:34@s.whatsapp.net';"
               "UPDATE contact SET avatar_path='/a.jpg' WHERE id LIKE 'ct:WHATSAPP:%';");
    ASSERT_EQ(list().size(), 1);
    ContactRow row = list().first();
    row.platforms.sort();
    EXPECT_EQ(row,
        (ContactRow { "ct:WHATSAPP:34@s.whatsapp.net", "Ana", { "EMAIL", "WHATSAPP" }, "newest", 200, 3, "alpha", false,
            "/a.jpg", false }));
    m_db->exec("UPDATE unified_message SET deleted_at=1 WHERE body='newest';");
    EXPECT_EQ(list().first().snippet, "older");
    chat("WHATSAPP", "a", "1@g.us", 300, "x", "Group");
    EXPECT_TRUE(list().first().isGroup);
}

TEST_F(InboxTest, filtersAccountsAndLimitsNarrowTheList)
{
    const qint64 midnight = startOfTodayMs(m_clock.nowMs());
    const QString unread = chat("SMS", "a", "1", midnight - 1, "x", "Yesterday");
    chat("SMS", "a", "2", midnight, "x", "Midnight");
    chat("SMS", "b", "3", midnight + 5, "x", "Later");
    raiseUnread(*m_db, unread);
    EXPECT_EQ(names(), (QStringList { "Later", "Midnight", "Yesterday" }));
    EXPECT_EQ(names(InboxFilter::All, "a"), (QStringList { "Midnight", "Yesterday" }));
    EXPECT_EQ(names(InboxFilter::All, {}, 1), QStringList { "Later" });
    EXPECT_EQ(names(InboxFilter::Today), (QStringList { "Later", "Midnight" }));
    EXPECT_EQ(names(InboxFilter::NeedsMe), QStringList { "Yesterday" });
    EXPECT_EQ(names(InboxFilter::Archived), QStringList());
    m_db->exec("UPDATE unified_conversation SET deleted_at=1 WHERE external_id='3';"
               "UPDATE contact SET deleted_at=1 WHERE display_name='Midnight';");
    EXPECT_EQ(names(), QStringList { "Yesterday" });
    m_db->exec("UPDATE contact SET workspace_id='elsewhere';");
    EXPECT_EQ(names(), QStringList());
}

/// The list in a single statement over everyone: the same rows as `fetchContacts` returns, in the same order.
QString listOfEverybody(InboxFilter filter, qint64 nowMs)
{
    const QString archived = filter == InboxFilter::Archived ? "NOT NULL" : "NULL";
    const QString having = filter == InboxFilter::NeedsMe ? u"HAVING SUM(c.unread) > 0"_s
        : filter == InboxFilter::Today                    ? u"HAVING MAX(c.last_ts) >= %1"_s.arg(startOfTodayMs(nowMs))
                                                          : QString();
    return uR"(SELECT ct.id, COALESCE(ct.display_name,''),
  (SELECT group_concat(DISTINCT c2.channel) FROM unified_conversation c2
     WHERE c2.contact_id=ct.id AND c2.deleted_at IS NULL),
  COALESCE((SELECT m.body FROM unified_message m
     JOIN unified_conversation cc ON m.conversation_id=cc.id
     WHERE cc.contact_id=ct.id AND m.deleted_at IS NULL ORDER BY m.ts DESC LIMIT 1), ''),
  MAX(c.last_ts), SUM(c.unread), MIN(c.account_id),
  MAX(CASE WHEN c.external_id LIKE '%@g.us' THEN 1 ELSE 0 END), COALESCE(ct.avatar_path,''), MAX(c.muted)
FROM contact ct JOIN unified_conversation c ON c.contact_id=ct.id
WHERE ct.workspace_id=? AND ct.deleted_at IS NULL AND c.deleted_at IS NULL
  AND (? = '' OR c.account_id = ?) AND c.archived_at IS )"_s
        + archived + "\nGROUP BY ct.id " + having + "\nORDER BY MAX(c.last_ts) DESC LIMIT ?;";
}

TEST_F(InboxTest, theNewestPeopleAreThoseOfAWalkOverEverybody)
{
    const qint64 midnight = startOfTodayMs(m_clock.nowMs());
    std::mt19937 random(7);
    const auto below = [&](int limit) {
        return int(random() % unsigned(limit));
    };
    const auto oneIn = [&](int count) {
        return below(count) == 0;
    };
    const auto person = [&] {
        return u"ct:SMS:%1"_s.arg(below(12));
    };
    for (int mirror = 0; mirror < 60; ++mirror) {
        m_db->exec("BEGIN; DELETE FROM unified_message; DELETE FROM unified_conversation; DELETE FROM contact;");
        for (int i = 0; i < 12; ++i)
            m_db->run("INSERT INTO contact(id, workspace_id, display_name, deleted_at) VALUES(?,?,?,?);",
                { u"ct:SMS:%1"_s.arg(i), QString(oneIn(8) ? "elsewhere" : "local"),
                    oneIn(4) ? SqlValue() : SqlValue(u"P%1"_s.arg(i)), oneIn(8) ? SqlValue(1) : SqlValue() });
        for (int i = 0; i < 24; ++i) {
            const QString id = u"c%1"_s.arg(i);
            const qint64 ts = midnight + below(6) - 3; // many at the same time, some of them yesterday
            m_db->run(
                "INSERT INTO unified_conversation(id, workspace_id, channel, account_id, external_id, contact_id, "
                "last_ts, unread, muted, archived_at, deleted_at) VALUES(?,?,?,?,?,?,?,?,?,?,?);",
                { id, QString(oneIn(6) ? "elsewhere" : "local"), QString(oneIn(2) ? "SMS" : "EMAIL"),
                    QString(oneIn(2) ? "a" : "b"), id + (oneIn(5) ? "@g.us" : ""),
                    oneIn(9) ? SqlValue() : SqlValue(person()), ts, below(4) - 1, below(2),
                    oneIn(4) ? SqlValue(1) : SqlValue(), oneIn(6) ? SqlValue(1) : SqlValue() });
            m_db->run("INSERT INTO unified_message(id, conversation_id, body, ts, deleted_at) VALUES(?,?,?,?,?);",
                { id, id, u"body %1"_s.arg(i), ts - below(2), oneIn(5) ? SqlValue(1) : SqlValue() });
        }
        for (int i = 0; i < 3; ++i) // a merge moves all conversations of one person to another
            m_db->run("UPDATE unified_conversation SET contact_id=? WHERE contact_id=?;", { person(), person() });
        m_db->exec("COMMIT;");
        for (const InboxFilter filter :
            { InboxFilter::NeedsMe, InboxFilter::Today, InboxFilter::All, InboxFilter::Archived })
            for (const QString& account : { QString(), u"a"_s })
                for (const int limit : { 1, 3, 5, 300 }) {
                    const auto expected = m_db->rows(listOfEverybody(filter, m_clock.nowMs()),
                        { u"local"_s, account, account, limit }, [](const SqlRow& row) {
                            return ContactRow { row.text(0), row.text(1), row.text(2).split(',', Qt::SkipEmptyParts),
                                row.text(3), row.integer(4), int(row.integer(5)), row.text(6), row.integer(7) != 0,
                                row.text(8), row.integer(9) != 0 };
                        });
                    ASSERT_EQ(list(filter, account, limit), expected) << mirror << " " << int(filter) << " " << limit;
                    if (account.isEmpty() && limit == 300)
                        for (const ContactRow& row : expected)
                            ASSERT_EQ(fetchContacts(*m_db, filter, QStringList { row.id }), QList<ContactRow> { row });
                }
    }
}

TEST_F(InboxTest, archivingHidesAPersonAndTheirUnread)
{
    raiseUnread(*m_db, chat("SMS", "a", "1", 100, "x", "Ana"));
    raiseUnread(*m_db, chat("SMS", "a", "2", 200, "x", "Bo"));
    EXPECT_EQ(totalUnread(*m_db), 2);
    const QString workspace = activeWorkspaceId(*m_db);
    const auto counted = [&](const std::optional<QStringList>& people = std::nullopt) {
        return unreadByConversation(*m_db, workspace, people).values();
    };
    EXPECT_EQ(counted(), (QList { 1, 1 }));
    archiveContact(*m_db, "ct:SMS:1");
    EXPECT_EQ(names(), QStringList { "Bo" });
    EXPECT_EQ(names(InboxFilter::Archived), QStringList { "Ana" });
    EXPECT_EQ(totalUnread(*m_db), 1);
    EXPECT_EQ(counted(), QList { 1 });
    EXPECT_EQ(counted(QStringList { "ct:SMS:1" }), QList { 0 });
    markAllRead(*m_db); // does not change archived conversations
    EXPECT_EQ(totalUnread(*m_db), 0);
    unarchiveContact(*m_db, "ct:SMS:1");
    EXPECT_EQ(names(), (QStringList { "Bo", "Ana" }));
    EXPECT_EQ(totalUnread(*m_db), 1);
    markRead(*m_db, "ct:SMS:1");
    EXPECT_EQ(totalUnread(*m_db), 0);
}

TEST_F(InboxTest, aSearchFindsBodiesTranscriptsAndSubjects)
{
    chat("SMS", "a", "1", 100, "Invoice 7 is paid", "Ana");
    chat("SMS", "a", "2", 200, "", "Bo");
    chat("SMS", "a", "3", 300, "the invoice again", "Cy");
    chat("SMS", "a", "4", 400, "invoice deleted", "Di");
    chat("SMS", "a", "5", 500, "see below", "Eve");
    m_db->exec("INSERT INTO audio_transcript(message_id, transcript, created_at, updated_at)"
               " VALUES('wa:msg:p2','send the INVOICE',1,1);"
               "UPDATE unified_message SET deleted_at=1 WHERE body='invoice deleted';"
               "UPDATE unified_message SET subject='Your invoice' WHERE id='wa:msg:p5';");
    EXPECT_EQ(searchMessages(*m_db, u"invoice"_s, 60),
        (QList<MessageHit> { { "wa:msg:p5", "ct:SMS:5", "Eve", "SMS", "Your invoice: see below", 500, "IN", "" },
            { "wa:msg:p3", "ct:SMS:3", "Cy", "SMS", "the invoice again", 300, "IN", "" },
            { "wa:msg:p2", "ct:SMS:2", "Bo", "SMS", "send the INVOICE", 200, "IN", "" },
            { "wa:msg:p1", "ct:SMS:1", "Ana", "SMS", "Invoice 7 is paid", 100, "IN", "" } }));
    EXPECT_EQ(searchMessages(*m_db, u"invoice"_s, 1).size(), 1);
    EXPECT_EQ(searchMessages(*m_db, u"nothing like it"_s, 60).size(), 0);
}

TEST_F(InboxTest, aSearchIsNarrowedByPersonPlaceContentAndTime)
{
    chat("SMS", "a", "1", 100, "the kiln", "Ana Ruiz");
    chat("WHATSAPP", "a", "2@g.us", 200, "kiln https://a.example", "Taller");
    chat("EMAIL", "a", "3", 300, "kiln", "Bo_x");
    chat("EMAIL", "a", "4", 400, "", "Cy");
    m_db->exec("UPDATE unified_message SET sender='Ana R.' WHERE ts=200; UPDATE unified_message SET direction='OUT' "
               "WHERE ts=300; UPDATE unified_message SET media_type='image' WHERE ts=400;");
    const auto found = [&](const QString& typed) {
        QList<qint64> times;
        for (const MessageHit& hit : searchMessages(*m_db, parseSearch(typed, QDate(2026, 11, 22)), 9))
            times.append(hit.ts);
        return times;
    };
    EXPECT_EQ(found(u"kiln from:ana"_s), (QList<qint64> { 200, 100 }));
    EXPECT_EQ(found(u"from:taller"_s), QList<qint64>()) << "a group writes nothing itself";
    EXPECT_EQ(found(u"from:me"_s), QList<qint64> { 300 });
    EXPECT_EQ(found(u"in:email"_s), (QList<qint64> { 400, 300 }));
    EXPECT_EQ(found(u"kiln in:o_x"_s), QList<qint64> { 300 });
    EXPECT_EQ(found(u"in:taller"_s), QList<qint64> { 200 });
    EXPECT_EQ(found(u"has:link"_s), QList<qint64> { 200 });
    EXPECT_EQ(found(u"has:file has:image"_s), QList<qint64> { 400 }) << "without a text, too";
    EXPECT_EQ(found(u"kiln before:1971 after:1970"_s).size(), 3);
    EXPECT_EQ(found(u"kiln before:1969"_s).size(), 0);
    m_db->exec("UPDATE unified_message SET media_type='audio' WHERE ts=100;"
               "UPDATE unified_message SET media_type='document' WHERE ts=200;"
               "UPDATE unified_message SET media_path='/x' WHERE ts=300;");
    EXPECT_EQ(found(u"has:audio"_s) + found(u"has:documents"_s), (QList<qint64> { 100, 200 }));
    EXPECT_EQ(found(u"has:video"_s), QList<qint64>());
    EXPECT_EQ(found(u"has:file"_s), (QList<qint64> { 400, 300, 200, 100 }));
}

TEST_F(InboxTest, aReplyGoesToTheNewestConversationOnItsChannel)
{
    chat("SMS", "old", "1", 100, "x");
    chat("SMS", "new", "1", 200, "x");
    EXPECT_EQ(replyTarget(*m_db, "ct:SMS:1", "SMS").value().account, "new");
    EXPECT_FALSE(replyTarget(*m_db, "ct:SMS:1", "EMAIL"));
}

TEST_F(InboxTest, theTabsCountPeopleAndNotConversations)
{
    const qint64 now = m_clock.nowMs();
    const QString first = chat("SMS", "a", "1", now, "new");
    raiseUnread(*m_db, first);
    raiseUnread(*m_db, chat("EMAIL", "b", "x@y.z", 1, "old"));
    raiseUnread(*m_db, chat("SMS", "a", "2", 1, "put away"));
    archiveContact(*m_db, "ct:SMS:2");
    m_db->exec("UPDATE unified_conversation SET contact_id='ct:SMS:1' WHERE contact_id LIKE 'ct:EMAIL:%';");
    EXPECT_EQ(fetchCountedPeople(*m_db).needsMe, QSet<QString> { "ct:SMS:1" });
    EXPECT_EQ(fetchCountedPeople(*m_db, QStringList { "ct:SMS:2" }).needsMe.size(), 0);
    EXPECT_EQ(fetchCountedPeople(*m_db).today.size(), 1);
    markAllRead(*m_db);
    EXPECT_EQ(fetchCountedPeople(*m_db).needsMe.size(), 0);
}

TEST_F(InboxTest, aThreadIsEveryChannelInOrderOfTime)
{
    chat("SMS", "a", "1", 300, "third");
    chat("EMAIL", "b", "x@y.z", 200, "second");
    chat("SMS", "a", "1", 100, "first");
    m_db->exec("INSERT INTO contact_merge(id, workspace_id, primary_contact_id, merged_contact_id, conv_ids_json,"
               " created_at) VALUES('mg','local','ct:SMS:1','ct:EMAIL:x@y.z','[]',1);"
               "UPDATE unified_conversation SET contact_id='ct:SMS:1';"
               "INSERT INTO audio_transcript(message_id, transcript, created_at, updated_at)"
               " VALUES('wa:msg:p1','spoken',1,1);"
               "UPDATE unified_message SET media_type='audio', media_path='/a', status=3, subject='Plan' "
               "WHERE id='wa:msg:p1';");
    setReaction(*m_db, "wa:msg:p1", "❤");
    const auto thread = fetchUnifiedThread(*m_db, "ct:EMAIL:x@y.z", 1000);
    ASSERT_EQ(thread.size(), 3);
    EXPECT_EQ(thread[1].body + thread[1].platform, "secondEMAIL");
    EXPECT_EQ(thread[2],
        (UnifiedMsgRow { "wa:msg:p1", "IN", "third", "SMS", "a", "1", "p1", 300, u"audio"_s, u"/a"_s, "", 3, "❤",
            u"spoken"_s, "Plan" }));
    EXPECT_EQ(thread[0].mediaType, std::nullopt);
    EXPECT_EQ(fetchUnifiedThread(*m_db, "ct:SMS:1", 1).first().body, "third") << "the newest where a limit cuts";
    m_db->exec("UPDATE contact_merge SET undone_at=1; UPDATE unified_message SET deleted_at=1 WHERE ts=200;");
    EXPECT_EQ(effectiveContactId(*m_db, "ct:EMAIL:x@y.z"), "ct:EMAIL:x@y.z");
    EXPECT_EQ(fetchUnifiedThread(*m_db, "ct:SMS:1", 1000).size(), 2);
}

TEST_F(InboxTest, aThreadIsWalkedInPagesBothWaysAndEqualTimesStandAsTheyCame)
{
    // Two conversations of one person, with messages of both in every second.
    for (int i = 0; i < 60; ++i)
        chat("SMS", i % 3 ? "a" : "b", "1", i / 7 * 1000, QByteArray::number(i).constData());
    m_db->exec("UPDATE unified_message SET deleted_at=1 WHERE body IN ('13','14','40');");
    const auto bodies = [](const QList<UnifiedMsgRow>& rows) {
        QStringList texts;
        for (const UnifiedMsgRow& row : rows)
            texts.append(row.body);
        return texts;
    };
    const auto walked = [&](Towards towards, ThreadPlace from) {
        QStringList all;
        for (;;) {
            const auto page = fetchThreadPage(*m_db, "ct:SMS:1", towards, from, 4);
            all = towards == Towards::Older ? bodies(page) + all : all + bodies(page);
            if (page.size() < 4)
                return all;
            const UnifiedMsgRow& last = towards == Towards::Older ? page.first() : page.last();
            from = { last.ts, last.id };
        }
    };
    QStringList stored;
    for (int i = 0; i < 60; ++i) {
        if (i != 13 && i != 14 && i != 40)
            stored.append(QString::number(i));
    }
    EXPECT_EQ(walked(Towards::Older, threadEnd), stored);
    EXPECT_EQ(walked(Towards::Newer, threadBeginning), stored);
    const auto place = placeInThread(*m_db, "ct:SMS:1", "wa:msg:p31");
    ASSERT_TRUE(place);
    EXPECT_EQ(walked(Towards::Older, *place) + QStringList("30") + walked(Towards::Newer, *place), stored);
    EXPECT_FALSE(placeInThread(*m_db, "ct:SMS:1", "wa:msg:p14")) << "deleted";
}

}
