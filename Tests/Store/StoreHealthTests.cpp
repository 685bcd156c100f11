#include "Store/Core/StoreHealth.h"

#include "Support/StoreTest.h"

#include <QFile>
#include <QSignalSpy>

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
