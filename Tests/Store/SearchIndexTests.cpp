#include "Store/Search/SearchIndexer.h"

#include "Foundation/Literals.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/Search/IndexedSearch.h"
#include "Store/Search/SearchIndexFile.h"
#include "Support/Await.h"
#include "Support/StoreTest.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <random>

namespace corvane {

namespace {

class SearchIndexTest : public StoreTest {
protected:
    SearchIndexTest()
    {
        open();
        m_conversations = { ensureConversation(*m_db, u"SMS"_s, u"a"_s, u"1"_s, u"Ana"_s, 1),
            ensureConversation(*m_db, u"WHATSAPP"_s, u"a"_s, u"2@g.us"_s, u"Winter market"_s, 1),
            ensureConversation(*m_db, u"EMAIL"_s, u"a"_s, u"b@x.example"_s, u"Bo"_s, 1) };
        m_db->watch().messageChanges().onChange([] { });
    }

    void write(int number, const QString& body, qint64 ts)
    {
        m_db->run("INSERT INTO unified_message(id, workspace_id, conversation_id, direction, body, ts, sender, "
                  "media_type, media_path, updated_at) VALUES(?1, 'local', ?2, ?3, ?4, ?5, "
                  "CASE ?6 % 4 WHEN 0 THEN 'Ana Ruiz' WHEN 1 THEN 'Bo' WHEN 2 THEN '' END, "
                  "CASE ?6 % 7 WHEN 0 THEN 'image' WHEN 1 THEN 'Video' END, CASE ?6 % 9 WHEN 0 THEN '/x' END, 1);",
            { u"m:%1"_s.arg(number), m_conversations.at(number / 2 % 3), number % 3 == 0 ? u"OUT"_s : u"IN"_s, body, ts,
                qint64(number) });
    }

    IndexState advance()
    {
        MessageChanges& changes = m_db->watch().messageChanges();
        SearchIndex index(m_path, m_never);
        IndexState state;
        do
            state = index.advance(*SqlConnection::reader(m_db->path(), m_never), changes.take());
        while (state.usable && state.more);
        changes.taken();
        return state;
    }

    std::optional<QList<MessageHit>> find(const SearchQuery& query, int limit = 60)
    {
        return searchByIndex(*SqlConnection::reader(m_db->path(), m_never), *SqlConnection::reader(m_path, m_never),
            query, limit, m_db->watch().messageChanges().all());
    }

    void expectTheSame(const SearchQuery& query, int limit = 60)
    {
        const auto found = find(query, limit);
        ASSERT_TRUE(found) << query.text.toStdString();
        EXPECT_EQ(*found, searchMessages(*m_db, query, limit)) << query.text.toStdString();
    }

    QStringList m_conversations;
    const SearchIndex::Stopped m_never = std::make_shared<std::atomic<bool>>(false);
    const QString m_path = SearchIndex::pathBeside(path());
};

}

// Random texts over a small alphabet in several scripts, with equal times, empty texts and wildcards in the queries.
// Rows are added, changed, deleted and transcribed between searches; some searches are filtered.
TEST_F(SearchIndexTest, findsWhatReadingEveryMessageFinds)
{
    std::mt19937 random(20);
    const QStringList pieces { u"an"_s, u"ka"_s, u" "_s, u"Ä"_s, u"ß"_s, u"会"_s, u"议"_s, u"\""_s, u"%"_s, u"_"_s,
        u"👍"_s, u"é"_s, u"И"_s, u"'"_s };
    const auto words = [&](int most) {
        QString text;
        for (int i = int(random() % (most + 1)); i > 0; --i)
            text += pieces.at(int(random() % pieces.size()));
        return text;
    };
    int number = 0;
    for (; number < 600; ++number)
        write(number, words(14), 1'700'000'000'000 + qint64(random() % 300));
    write(++number, u"far away kan"_s, -5);
    advance();
    int answered = 0;
    for (int round = 0; round < 300; ++round) {
        if (round % 3 == 0)
            write(++number, words(14), 1'700'000'000'000 + qint64(random() % 400));
        const QString one = u"m:%1"_s.arg(random() % number);
        if (round % 5 == 0)
            m_db->run("UPDATE unified_message SET body=?, sender='Ana' WHERE id=?;", { words(14), one });
        if (round % 7 == 0)
            m_db->run("UPDATE unified_message SET deleted_at=1 WHERE id=?;", { one });
        if (round % 11 == 0)
            m_db->run("INSERT OR REPLACE INTO audio_transcript(id, message_id, transcript, created_at, updated_at) "
                      "VALUES(?,?,?,1,1);",
                { one, one, words(14) });
        if (round % 13 == 0)
            advance();
        SearchQuery query(words(5));
        if (round % 3 == 1) { // a piece of a message, usually a long one
            const QString body
                = m_db->scalar("SELECT body FROM unified_message WHERE id=?;", { one }).value_or(QString());
            query.text = body.mid(int(random() % 4), int(random() % 40));
        }
        if (round % 2 == 0)
            query.afterMs = 1'700'000'000'000 + qint64(random() % 300);
        if (round % 3 == 0)
            query.beforeMs = 1'700'000'000'000 + qint64(random() % 300);
        query.fromMe = round % 5 == 0;
        if (round % 7 == 0)
            query.from = { round % 2 == 0 ? u"ANA"_s : u"Bo"_s };
        if (round % 4 == 1)
            query.places = { round % 3 == 0 ? u"ana"_s : u"market"_s };
        if (round % 6 == 2)
            query.has = { round % 4 == 2 ? MessageContent::File : MessageContent::Video };
        if (round % 10 == 3)
            query.channels = { u"EMAIL"_s };
        if (!find(query))
            continue;
        expectTheSame(query, 1 + int(random() % 70));
        ++answered;
    }
    EXPECT_GT(answered, 150);
    expectTheSame(u"kan"_s);
    const QDate today(2026, 11, 22);
    for (const auto& typed : { u"from:ruiz"_s, u"from:nobody"_s, u"in:winter"_s, u"in:winter from:bo"_s,
             u"in:sms has:image"_s, u"in:telegram"_s, u"an in:winter"_s, u"has:link"_s })
        expectTheSame(parseSearch(typed, today));
    EXPECT_EQ(find(parseSearch(u"from:ruiz in:winter"_s, today), 9)->size(), 9);
    EXPECT_FALSE(find(parseSearch(u"from:me after:2020"_s, today)));
}

TEST_F(SearchIndexTest, leavesToOthersWhatItCannotAnswer)
{
    write(1, u"the needle"_s, 1);
    EXPECT_FALSE(find(u"needle"_s)) << "nothing is built yet";
    const IndexState built = SearchIndex(m_path, m_never).advance(*SqlConnection::reader(m_db->path(), m_never), {});
    EXPECT_EQ(built.indexed, 1);
    EXPECT_EQ(built.total, 1);
    EXPECT_TRUE(advance().complete);
    expectTheSame(u"needle"_s);
    EXPECT_FALSE(find(u"ne"_s));
    EXPECT_FALSE(find(u"ne%dl%"_s));
    m_db->run("DELETE FROM unified_message;");
    write(2, u"another database"_s, 1);
    EXPECT_FALSE(find(u"needle"_s)) << "the rows are not those that were indexed";
    advance();
    expectTheSame(u"another"_s);
    EXPECT_EQ(find(u"needle"_s)->size(), 0);
}

TEST_F(SearchIndexTest, moreMessagesOfOneMillisecondThanItNumbers)
{
    m_db->run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<4200) "
              "INSERT INTO unified_message(id, workspace_id, conversation_id, direction, body, ts, updated_at) "
              "SELECT 'c:' || i, 'local', ?, 'IN', 'crowd ' || i, 7, i FROM n;",
        { m_conversations.first() });
    advance();
    expectTheSame(u"crowd 4199"_s);
    expectTheSame(u"crowd"_s, 5);
}

// Another program changes rows without notifying this one.
TEST_F(SearchIndexTest, aSweepFindsWhatOthersChanged)
{
    write(1, u"before"_s, 1);
    advance();
    m_db->run("UPDATE unified_message SET body='afterwards' WHERE id='m:1';");
    m_db->watch().messageChanges().take();
    m_db->watch().messageChanges().taken();
    EXPECT_EQ(find(u"afterwards"_s)->size(), 0);
    EXPECT_FALSE(SearchIndex(m_path, m_never).sweep(*SqlConnection::reader(m_db->path(), m_never), 0, 1));
    expectTheSame(u"afterwards"_s);
    EXPECT_EQ(find(u"before"_s)->size(), 0);
}

// Another process, such as `corvane search`, finds out from the rows what the index may not contain yet.
TEST_F(SearchIndexTest, anotherProcessFindsTheRowsOfTheStatement)
{
    const qint64 now = m_clock.nowMs();
    const auto update = [&](const char* sql) {
        m_db->run(QString::fromLatin1(sql), { now });
    };
    const auto found = [&](const QString& words) {
        const auto database = SqlConnection::reader(m_db->path(), m_never);
        QStringList ids;
        for (const MessageHit& hit : findMessages(*database, words, 9, std::nullopt, m_never).hits)
            ids.append(hit.id);
        return ids.join(u' ');
    };
    for (int number = 1; number < 5; ++number)
        write(number, u"needle %1"_s.arg(number), number);
    EXPECT_EQ(found(u"needle"_s), "m:4 m:3 m:2 m:1") << "there is no index";
    EXPECT_FALSE(QFile::exists(m_path));
    advance();
    m_db->run("UPDATE unified_message SET body='unseen' WHERE id='m:1';");
    EXPECT_EQ(found(u"unseen"_s), "m:1") << "it was never compared with the messages";
    SearchIndex(m_path, m_never).sweep(*SqlConnection::reader(m_db->path(), m_never), 0, now);
    m_db->run("UPDATE unified_message SET body='secret' WHERE id='m:1';");
    EXPECT_EQ(found(u"secret"_s), QString()) << "the index answers; the row does not say that it changed";

    update("UPDATE unified_message SET body='needlework', updated_at=? WHERE id='m:2';");
    update("UPDATE unified_message SET deleted_at=1, updated_at=? WHERE id='m:3';");
    update("INSERT INTO audio_transcript(message_id, transcript, created_at, updated_at) VALUES('m:4','spoken',1,?);");
    write(5, u"a new needle"_s, 5);
    EXPECT_EQ(found(u"needle"_s), "m:5 m:4 m:2");
    EXPECT_EQ(found(u"needlework"_s) + found(u"spoken"_s), "m:2m:4");
    m_db->run("DELETE FROM unified_message WHERE id NOT IN ('m:1');");
    EXPECT_EQ(found(u"secret"_s), "m:1") << "the index is another database's";
}

TEST_F(SearchIndexTest, theIndexerFollowsAndAFaultyFileIsBuiltAnew)
{
    QFile broken(m_path);
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly) && broken.write(QByteArray(8192, 'x')) > 0);
    broken.close();
    write(1, u"the needle"_s, 1);
    m_db->watch().messageChanges().onChange({});
    SearchIndexer indexer(*m_db, m_clock);
    indexer.start();
    const auto follows = [&] {
        m_clock.advance(std::chrono::seconds(2));
        return indexer.state().complete;
    };
    ASSERT_TRUE(await(follows));
    expectTheSame(u"needle"_s);
    EXPECT_EQ(QFile::permissions(m_path) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
}

// Another program changes a row without notifying this one.
TEST_F(SearchIndexTest, theIndexerComparesEveryMessageAtItsStartAndAfterTenMinutes)
{
    write(1, u"before"_s, 1);
    m_db->watch().messageChanges().onChange({});
    SearchIndexer indexer(*m_db, m_clock);
    const QSignalSpy told(&indexer, &SearchIndexer::stateChanged);
    indexer.start();
    indexer.start();
    const auto value = [&](const QString& name) {
        return indexValue(*SqlConnection::reader(m_path, m_never), name).value_or(0);
    };
    const qint64 start = m_clock.nowMs();
    const auto reaches = [&](const QString& name, qint64 least) {
        return await([&] {
            m_clock.advance(Milliseconds(m_clock.nowMs() < start + 300'000 ? 50 : 0));
            return value(name) >= least;
        });
    };
    ASSERT_TRUE(reaches(u"swept"_s, start));
    const qint64 first = value(u"swept"_s);
    EXPECT_TRUE(indexer.state().complete);
    EXPECT_GE(told.size(), 2) << "when it was built, and when nothing more was to do";
    OtherProcess(path()).exec("UPDATE unified_message SET body='afterwards';");
    for (int number = 2; number < 5; ++number) {
        m_db->watch().tell(StoreSubject::Messages);
        write(number, u"more"_s, number);
        ASSERT_TRUE(reaches(u"rowid"_s, number));
    }
    EXPECT_EQ(value(u"swept"_s), first) << "not so soon";
    EXPECT_EQ(find(u"afterwards"_s)->size(), 0);
    m_clock.setNowMs(first + 600'000);
    m_db->watch().tell(StoreSubject::Messages);
    ASSERT_TRUE(await([&] {
        m_clock.advance(Milliseconds(10));
        return value(u"swept"_s) > first;
    }));
    EXPECT_EQ(find(u"afterwards"_s)->size(), 1);
}

TEST_F(SearchIndexTest, anIndexThatCannotBeKeptIsGivenUp)
{
    ASSERT_TRUE(QDir().mkpath(m_path)); // a folder where the file would be
    write(1, u"the needle"_s, 1);
    m_db->watch().messageChanges().onChange({});
    SearchIndexer indexer(*m_db, m_clock);
    const QSignalSpy told(&indexer, &SearchIndexer::stateChanged);
    indexer.start();
    const QString givenUp = u"SearchIndexer: the search index cannot be kept; searches read every message"_s;
    ASSERT_TRUE(await([&] {
        m_clock.advance(Milliseconds(500));
        return m_log.contains(givenUp);
    }));
    EXPECT_EQ(m_log.lines().count(givenUp), 1);
    EXPECT_EQ(told.size(), 0);
    ASSERT_TRUE(QDir().rmdir(m_path));
    write(2, u"another needle"_s, 2);
    m_clock.advance(seconds(60));
    EXPECT_EQ(m_clock.pendingTimers(), 0) << "nothing more is tried";
    EXPECT_FALSE(QFile::exists(m_path));
    EXPECT_EQ(findMessages(*m_db, u"needle"_s, 9, std::nullopt, m_never).hits.size(), 2);
}

TEST_F(SearchIndexTest, aLargeStoreIsTakenInStepsAndASearchSaysHowFarItIs)
{
    const auto writeMany = [&](int from, int count) {
        m_db->run("WITH RECURSIVE n(i) AS (SELECT ?1 UNION ALL SELECT i+1 FROM n WHERE i<?1+?2-1) "
                  "INSERT INTO unified_message(id, workspace_id, conversation_id, direction, body, ts, updated_at) "
                  "SELECT 's:' || i, 'local', ?3, 'IN', 'crowd ' || i, i, i FROM n;",
            { from, count, m_conversations.first() });
    };
    writeMany(1, 4200);
    SearchIndex index(m_path, m_never);
    const auto database = SqlConnection::reader(m_db->path(), m_never);
    const auto search = [&] {
        return findMessages(*database, u"crowd 4"_s, 3, MessageChanges::Rows(), m_never);
    };
    IndexState state = index.advance(*database, {});
    EXPECT_TRUE(state.usable && state.more);
    EXPECT_FALSE(state.complete || state.faulty);
    EXPECT_EQ(state.indexed, 4000);
    EXPECT_EQ(state.total, 4200);
    EXPECT_EQ(search().indexPercent, 95);
    EXPECT_EQ(search().hits.size(), 3);
    state = index.advance(*database, {});
    EXPECT_TRUE(state.complete && state.more);
    EXPECT_EQ(state.indexed, 4200);
    state = index.advance(*database, {});
    EXPECT_TRUE(state.usable && state.complete);
    EXPECT_FALSE(state.more);
    EXPECT_EQ(search().indexPercent, std::nullopt);
    EXPECT_EQ(search().hits.size(), 3);
    EXPECT_EQ(index.sweep(*database, 0, 5), 4000);
    EXPECT_EQ(indexValue(index, u"swept"_s), std::nullopt);
    EXPECT_EQ(index.sweep(*database, 4000, 5), std::nullopt);
    EXPECT_EQ(indexValue(index, u"swept"_s), 5);
    writeMany(4201, 4000);
    EXPECT_TRUE(index.advance(*database, {}).more);
    EXPECT_FALSE(index.advance(*database, {}).more);
    EXPECT_EQ(indexValue(index, u"rowid"_s), 8200);

    const auto stopped = std::make_shared<std::atomic<bool>>(true);
    SearchIndex other(m_path, stopped);
    m_db->exec("UPDATE unified_message SET body='changed';");
    state = other.advance(*database, m_db->watch().messageChanges().all());
    EXPECT_FALSE(state.usable || state.faulty) << "a step that was stopped is no fault of the file";
    EXPECT_EQ(find(u"crowd 81"_s)->size(), 0) << "the rows that changed are read one by one";
}

}
