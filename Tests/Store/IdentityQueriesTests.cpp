#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/Messages/ThreadQueries.h"
#include "Store/People/IdentityQueries.h"
#include "Support/StoreTest.h"

#include <algorithm>
#include <array>
#include <random>

namespace corvane {

class IdentityTest : public StoreTest {
protected:
    IdentityTest() { open(); }

    /// A person with one conversation, on an account named after the channel. Returns the contact's id.
    QString person(const char* channel, const char* handle, const char* name)
    {
        const QString id = contactId(channel, handle);
        ensureConversation(*m_db, channel, channel, handle, QString::fromUtf8(name), 1);
        return id;
    }

    QString ownerOf(const QString& conversation)
    {
        return m_db->scalar("SELECT contact_id FROM unified_conversation WHERE id=?;", { conversation }).value_or("-");
    }
};

TEST_F(IdentityTest, aMergeMovesTheConversationsAndAnUnmergeReturnsExactlyThose)
{
    const QString ana = person("EMAIL", "ana@example.com", "Ana");
    const QString anaToo = person("GMAIL", "ana@example.com", "Ana");
    EXPECT_EQ(mergeContacts(*m_db, ana, ana, "email"), std::nullopt);
    EXPECT_EQ(mergeContacts(*m_db, ana, "ct:SMS:nobody", "name"), std::nullopt);
    EXPECT_EQ(cell("SELECT COUNT(*) FROM contact_merge;"), "0");

    const auto merge = mergeContacts(*m_db, ana, anaToo, "email");
    ASSERT_TRUE(merge);
    EXPECT_TRUE(merge->startsWith(u"mg:%1:"_s.arg(m_clock.nowMs())));
    EXPECT_EQ(activeMerges(*m_db, ana), (QList<LiveMerge> { { *merge, ana, anaToo, "email", m_clock.nowMs() } }));
    EXPECT_EQ(cell("SELECT conv_ids_json FROM contact_merge;"), R"(["wa:GMAIL:ana@example.com"])");
    EXPECT_EQ(effectiveContactId(*m_db, anaToo), ana);
    EXPECT_TRUE(contactExists(*m_db, anaToo)) << "the contact stays";
    EXPECT_EQ(identitiesFor(*m_db, anaToo).size(), 1);

    ensureConversation(*m_db, "EMAIL", "main", "later@example.com", {}, 5);
    m_db->run("UPDATE unified_conversation SET contact_id=? WHERE external_id='later@example.com';", { ana });
    EXPECT_TRUE(unmergeContacts(*m_db, *merge));
    EXPECT_FALSE(unmergeContacts(*m_db, *merge)) << "only a live merge can be undone";
    EXPECT_FALSE(unmergeContacts(*m_db, "mg:1:1000"));
    EXPECT_EQ(ownerOf("wa:GMAIL:ana@example.com"), anaToo);
    EXPECT_EQ(ownerOf("wa:main:later@example.com"), ana);
    EXPECT_EQ(activeMerges(*m_db, ana), QList<LiveMerge>());
    EXPECT_EQ(effectiveContactId(*m_db, anaToo), anaToo);
}

TEST_F(IdentityTest, aPictureIsLentToWhoHasNoneAndTakenBack)
{
    const QString plain = person("EMAIL", "ana@example.com", "Ana");
    const QString pictured = person("SMS", "1", "Ana");
    const QString late = person("SMS", "2", "Ana");
    const auto picture = [&](const QString& contact) {
        return m_db->scalar("SELECT COALESCE(avatar_path,'') FROM contact WHERE id=?;", { contact }).value_or("-");
    };
    setContactAvatar(*m_db, pictured, "/1.jpg");
    const auto merge = mergeContacts(*m_db, plain, pictured, "name");
    EXPECT_EQ(picture(plain), "/1.jpg");
    ASSERT_TRUE(merge && unmergeContacts(*m_db, *merge));
    EXPECT_EQ(picture(plain) + picture(pictured), "/1.jpg");

    ASSERT_TRUE(mergeContacts(*m_db, plain, late, "name"));
    setContactAvatar(*m_db, late, "/2.jpg");
    EXPECT_EQ(picture(plain), "/2.jpg") << "one that comes after the merge";
    setContactAvatar(*m_db, plain, "/own.jpg");
    setContactAvatar(*m_db, late, "/3.jpg");
    EXPECT_EQ(picture(plain), "/own.jpg");
}

TEST_F(IdentityTest, aMergeIsRepeatedForWhatCameBackAndForWhatIsNew)
{
    const QString ana = person("EMAIL", "ana@example.com", "Ana");
    const QString bo = person("SMS", "1", "Ana");
    const QString cy = person("TELEGRAM", "2", "Ana");
    const auto first = mergeContacts(*m_db, ana, bo, "name");
    const auto second = mergeContacts(*m_db, cy, ana, "name");
    ASSERT_TRUE(first && second);
    EXPECT_EQ(personBehind(*m_db, bo), cy);
    person("SMS", "1", "Ana"); // a new message moves the conversation back
    ensureConversation(*m_db, "SMS", "other", "1", "Ana", 1);
    EXPECT_EQ(ownerOf("wa:SMS:1"), bo);
    repeatMerges(*m_db);
    for (const QString& conversation : { "wa:SMS:1", "wa:other:1", "wa:EMAIL:ana@example.com" })
        EXPECT_EQ(ownerOf(conversation), cy) << qPrintable(conversation);

    EXPECT_TRUE(unmergeContacts(*m_db, *second));
    EXPECT_TRUE(unmergeContacts(*m_db, *first));
    EXPECT_EQ(ownerOf("wa:SMS:1"), bo);
    EXPECT_EQ(ownerOf("wa:other:1"), bo) << "it came after the merge, and goes back with it";
    EXPECT_EQ(ownerOf("wa:EMAIL:ana@example.com"), ana);

    m_db->exec("UPDATE contact_merge SET undone_at=NULL, conv_ids_json='{';");
    repeatMerges(*m_db);
    EXPECT_EQ(ownerOf("wa:SMS:1"), bo) << "what cannot be recorded does not move";
    m_db->exec("UPDATE contact_merge SET conv_ids_json='[]';");
    m_db->run("UPDATE contact_merge SET primary_contact_id=? WHERE id=?;", { bo, *second });
    repeatMerges(*m_db);
    EXPECT_EQ(ownerOf("wa:SMS:1"), bo) << "a circle leads nowhere";
    EXPECT_EQ(personBehind(*m_db, bo), bo);
}

TEST_F(IdentityTest, whereTheRecordCannotBeWrittenNothingMoves)
{
    const QString ana = person("EMAIL", "ana@example.com", "Ana");
    const QString bo = person("SMS", "1", "Ana");
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON contact_merge BEGIN SELECT RAISE(ABORT, 'disk full'); END;");
    EXPECT_EQ(mergeContacts(*m_db, ana, bo, "name"), std::nullopt);
    EXPECT_EQ(ownerOf("wa:SMS:1"), bo);
}

TEST_F(IdentityTest, aMergeOrUnmergeThatWasCutShortCanStillBeUndone)
{
    const QString ana = person("EMAIL", "ana@example.com", "Ana");
    const QString bo = person("SMS", "1", "Ana");
    ensureConversation(*m_db, "SMS", "other", "1", "Ana", 1);
    // The state of the file if the process ends after the first of two moves.
    m_db->exec("CREATE TRIGGER cut BEFORE UPDATE ON unified_conversation WHEN OLD.id='wa:other:1' "
               "BEGIN SELECT RAISE(ABORT, 'cut'); END;");
    const auto merge = mergeContacts(*m_db, ana, bo, "name");
    ASSERT_TRUE(merge);
    EXPECT_EQ(ownerOf("wa:SMS:1"), ana);
    EXPECT_EQ(ownerOf("wa:other:1"), bo);
    EXPECT_FALSE(unmergeContacts(*m_db, *merge)) << "one could not be returned";
    EXPECT_EQ(activeMerges(*m_db, ana).size(), 1);

    open().exec("DROP TRIGGER cut;");
    EXPECT_TRUE(unmergeContacts(*m_db, *merge));
    EXPECT_EQ(ownerOf("wa:SMS:1"), bo);
    EXPECT_EQ(ownerOf("wa:other:1"), bo);

    m_db->exec("UPDATE contact_merge SET undone_at=NULL, conv_ids_json='{';");
    EXPECT_FALSE(unmergeContacts(*m_db, *merge));
    EXPECT_EQ(activeMerges(*m_db, ana).size(), 1) << "a record that does not read stays live";
}

TEST_F(IdentityTest, aPersonIsCalledByNameThenTitleThenAddress)
{
    const QString ana = person("EMAIL", "ana@example.com", "Ana");
    EXPECT_EQ(displayName(*m_db, ana), "Ana");
    m_db->exec("UPDATE contact SET display_name='';UPDATE unified_conversation SET title='Ana, work';");
    EXPECT_EQ(displayName(*m_db, ana), "Ana, work");
    m_db->exec("UPDATE unified_conversation SET title=NULL;");
    EXPECT_EQ(displayName(*m_db, ana), "ana@example.com");
    EXPECT_EQ(displayName(*m_db, "ct:EMAIL:nobody"), "?");
    EXPECT_FALSE(contactExists(*m_db, "ct:EMAIL:nobody"));
}

// Merges, unmerges, repeated merges and new messages in random order: each conversation that a merge moved returns to
// the owner that the last message or unmerge gave it, and no row is lost.
TEST(MergeProperty, noOrderOfMergesUnmergesAndMessagesLosesAnything)
{
    const TemporaryHome home;
    VirtualScheduler clock;
    UserDefaults defaults(home.paths().defaultsFile);
    NotificationCentre centre;
    LocalDB db(":memory:", { home.paths().resources, home.paths().home }, clock, defaults, centre);
    const auto seed = std::random_device()();
    RecordProperty("seed", QString::number(seed).toStdString());
    SCOPED_TRACE("seed " + QString::number(seed).toStdString());
    std::mt19937 random(seed);
    const auto below = [&](qsizetype limit) {
        return static_cast<qsizetype>(random() % static_cast<quint32>(limit));
    };

    constexpr int people = 60;
    constexpr int conversations = 80; // some people have two accounts
    constexpr int steps = 100'000;
    const auto contact = [](qsizetype person) {
        return contactId("SMS", QString::number(person));
    };
    const auto accountOf = [](qsizetype index) {
        return QString(index < people ? "main" : "other");
    };

    // For each conversation: its owner now, and the owner that the last message or unmerge gave it.
    std::array<qsizetype, conversations> owner {};
    std::array<qsizetype, conversations> given {};
    struct Merge {
        QString id;
        qsizetype primary;
        qsizetype merged;
        QList<std::size_t> moved;
    };
    QList<Merge> live;

    const auto ingest = [&](std::size_t index) {
        const auto person = static_cast<qsizetype>(index % people);
        ensureConversation(
            db, "SMS", accountOf(qsizetype(index)), QString::number(person), std::nullopt, clock.nowMs());
        owner[index] = given[index] = person;
    };
    const auto unmerge = [&](qsizetype index) {
        const Merge merge = live.takeAt(index);
        ASSERT_TRUE(unmergeContacts(db, merge.id));
        for (const std::size_t conversation : merge.moved)
            owner[conversation] = given[conversation] = merge.merged;
    };
    const auto merge = [&](qsizetype primary, qsizetype merged) {
        QList<std::size_t> moving;
        for (std::size_t index = 0; index < conversations; ++index) {
            if (owner[index] == merged)
                moving.append(index);
        }
        const auto id = mergeContacts(db, contact(primary), contact(merged), "name");
        ASSERT_EQ(id.has_value(), primary != merged && !moving.isEmpty());
        if (!id)
            return;
        live.append({ *id, primary, merged, moving });
        for (const std::size_t index : moving)
            owner[index] = primary;
    };
    const auto repeat = [&] {
        repeatMerges(db);
        for (std::size_t index = 0; index < conversations; ++index) {
            QList<Merge*> chain;
            QList<qsizetype> passed { owner[index] };
            for (;;) {
                const auto next = std::ranges::find(live, passed.last(), &Merge::merged);
                if (next == live.end())
                    break;
                if (passed.contains(next->primary)) {
                    chain.clear();
                    break;
                }
                chain.append(&*next);
                passed.append(next->primary);
            }
            for (Merge* each : std::as_const(chain)) {
                if (!each->moved.contains(index))
                    each->moved.append(index);
                owner[index] = each->primary;
            }
        }
    };
    const auto isStoredAs = [&](const std::array<qsizetype, conversations>& expected) {
        for (qsizetype index = 0; index < conversations; ++index) {
            const QString id = conversationId(accountOf(index), QString::number(index % people));
            EXPECT_EQ(
                db.scalar("SELECT contact_id FROM unified_conversation WHERE id=? AND deleted_at IS NULL;", { id }),
                contact(expected[static_cast<std::size_t>(index)]));
        }
    };

    for (std::size_t index = 0; index < conversations; ++index)
        ingest(index);
    qsizetype merges = 0;
    for (int step = 0; step < steps && !testing::Test::HasFatalFailure(); ++step) {
        clock.setNowMs(clock.nowMs() + 1);
        const auto choice = below(7);
        const qsizetype before = live.size();
        if (choice == 0)
            ingest(static_cast<std::size_t>(below(conversations)));
        else if (choice == 6)
            repeat();
        else if (choice <= 3 && before > 0)
            unmerge(below(before));
        else
            merge(below(people), below(people));
        merges += live.size() > before ? 1 : 0;
    }
    isStoredAs(owner);
    while (!live.isEmpty() && !testing::Test::HasFatalFailure())
        unmerge(below(live.size()));
    isStoredAs(given);
    EXPECT_EQ(db.scalar("SELECT COUNT(*) FROM contact WHERE deleted_at IS NULL;"), QString::number(people));
    EXPECT_EQ(db.scalar("SELECT COUNT(*) FROM contact_identity WHERE deleted_at IS NULL;"), QString::number(people));
    EXPECT_EQ(db.scalar("SELECT COUNT(*) FROM contact_merge WHERE undone_at IS NOT NULL;"), QString::number(merges));
    EXPECT_GT(merges, steps / 10);
}

}
