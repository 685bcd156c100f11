#include "Store/Core/StoreHealth.h"

#include "Support/StoreTest.h"

#include <QFile>
#include <QSignalSpy>
#include <tuple>

namespace corvane {

using StoreHealthTest = StoreTest;

TEST_F(StoreHealthTest, aFullFileIsToldOnceAndTakesWritesAgainWhenThereIsRoom)
{
    LocalDB& db = open();
    QSignalSpy changed(&db.health(), &StoreHealth::changed);
    db.exec("PRAGMA max_page_count=1;"); // no more than now
    while (db.run("INSERT INTO contact(id, display_name) VALUES(hex(randomblob(16)), hex(zeroblob(1000)));")) { }
    EXPECT_EQ(db.health().fault(), StoreFault::Full);
    EXPECT_EQ(changed.size(), 0) << "not out of a statement";
    m_clock.advance(Milliseconds(60'000));
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(db.health().fault(), StoreFault::Full) << "a small write may find room, a message would not";

    db.exec("PRAGMA max_page_count=1000000;");
    m_clock.advance(Milliseconds(4000));
    EXPECT_EQ(db.health().fault(), StoreFault::None);
    EXPECT_EQ(changed.size(), 2);
    EXPECT_FALSE(db.tableExists("write_probe"));
    EXPECT_FALSE(db.run("nonsense;"));
    EXPECT_EQ(db.health().fault(), StoreFault::None);
}

TEST_F(StoreHealthTest, aFileThatIsNoDatabaseHealsOnlyByAnother)
{
    m_home.write("share/Corvane/nimblocal.db", QByteArray("Dear diary, ").repeated(500));
    LocalDB& db = open();
    m_clock.advance(Milliseconds(60'000));
    EXPECT_EQ(db.health().fault(), StoreFault::NotADatabase);

    db.close();
    EXPECT_FALSE(db.run("SELECT 1;"));
    EXPECT_TRUE(QFile::rename(path(), path() + ".aside"));
    EXPECT_TRUE(db.reopen());
    EXPECT_TRUE(db.run("INSERT INTO contact(id) VALUES('ct:SMS:1');"));
    EXPECT_EQ(db.health().fault(), StoreFault::None);
}

TEST(StoreHealth, aResultCodeTellsWhatIsWrongWithTheFile)
{
    for (const auto& [code, fault, passes] : { std::tuple(SQLITE_OK, StoreFault::None, false),
             std::tuple(SQLITE_FULL, StoreFault::Full, true), std::tuple(SQLITE_READONLY, StoreFault::ReadOnly, true),
             std::tuple(SQLITE_PERM, StoreFault::ReadOnly, true), std::tuple(SQLITE_CORRUPT, StoreFault::Damaged, true),
             std::tuple(SQLITE_NOTADB, StoreFault::NotADatabase, true),
             std::tuple(SQLITE_IOERR_WRITE, StoreFault::InputOutput, true),
             std::tuple(SQLITE_CANTOPEN, StoreFault::InputOutput, true),
             std::tuple(SQLITE_IOERR_NOMEM, StoreFault::None, true), std::tuple(SQLITE_BUSY, StoreFault::None, true),
             std::tuple(SQLITE_LOCKED, StoreFault::None, true), std::tuple(SQLITE_NOMEM, StoreFault::None, true),
             std::tuple(SQLITE_INTERRUPT, StoreFault::None, true), std::tuple(SQLITE_PROTOCOL, StoreFault::None, true),
             std::tuple(SQLITE_CONSTRAINT, StoreFault::None, false),
             std::tuple(SQLITE_ERROR, StoreFault::None, false) }) {
        EXPECT_EQ(storeFault(code), fault) << code;
        EXPECT_EQ(mayPass(code), passes) << code;
    }
}

TEST(StoreHealth, aWriteIsTriedAtGrowingPausesAndAFaultThatReturnsSoonWaitsOn)
{
    VirtualScheduler clock;
    QList<qint64> tries;
    bool works = false;
    const qint64 start = clock.nowMs();
    StoreHealth health(clock, [&] {
        tries.append(clock.nowMs() - start);
        return works;
    });
    QSignalSpy changed(&health, &StoreHealth::changed);
    health.note(SQLITE_BUSY);
    EXPECT_EQ(clock.pendingTimers(), 0);
    health.note(SQLITE_FULL);
    health.note(SQLITE_FULL);
    clock.advance(Milliseconds(16'000));
    EXPECT_EQ(tries, (QList<qint64> { 250, 750, 1750, 3750, 7750, 11'750, 15'750 }));
    EXPECT_EQ(changed.size(), 1);
    works = true;
    clock.advance(Milliseconds(4000)); // healed at 19,750
    EXPECT_EQ(health.fault(), StoreFault::None);
    EXPECT_EQ(changed.size(), 2);
    tries.clear();
    clock.advance(Milliseconds(9750)); // 29,750: ten seconds later, no more
    health.note(SQLITE_FULL);
    clock.advance(Milliseconds(3999));
    EXPECT_TRUE(tries.isEmpty()) << "it was never mended";
    clock.advance(Milliseconds(1));
    EXPECT_EQ(tries.size(), 1);
    clock.advance(Milliseconds(10'001));
    health.note(SQLITE_READONLY);
    EXPECT_EQ(health.fault(), StoreFault::ReadOnly);
    clock.advance(Milliseconds(250));
    EXPECT_EQ(tries.size(), 2) << "a fault after a while is a new one";
    EXPECT_EQ(health.fault(), StoreFault::None);

    works = false;
    health.note(SQLITE_IOERR);
    health.note(SQLITE_CORRUPT);
    health.note(SQLITE_FULL);
    EXPECT_EQ(health.fault(), StoreFault::Damaged) << "only another file helps";
    tries.clear();
    clock.advance(Milliseconds(60'000));
    EXPECT_TRUE(tries.isEmpty());
    health.forget();
    EXPECT_EQ(health.fault(), StoreFault::None);
    clock.advance(Milliseconds(60'000));
    EXPECT_TRUE(tries.isEmpty());
}

TEST_F(StoreHealthTest, aFileThatCannotBeOpenedIsTriedAgain)
{
    QDir().mkpath(path());
    LocalDB& db = open();
    EXPECT_EQ(db.health().fault(), StoreFault::InputOutput);
    m_clock.advance(Milliseconds(10'000));
    EXPECT_FALSE(db.isOpen());
    QDir().rmdir(path());
    m_clock.advance(Milliseconds(4000));
    EXPECT_EQ(db.health().fault(), StoreFault::None);
    EXPECT_TRUE(db.tableExists("contact"));
}

}
