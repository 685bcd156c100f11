#include "Foundation/Literals.h"
#include "Support/StoreTest.h"

#include <QDir>
#include <QFile>
#include <QThread>

namespace corvane {

using LocalDBTest = StoreTest;

TEST_F(LocalDBTest, everyKindOfValueBindsAsItself)
{
    LocalDB& db = open();
    db.exec("CREATE TABLE t (a, b, c, d, e, f);");
    EXPECT_TRUE(db.run("INSERT INTO t VALUES(?,?,?,?,?,?);",
        { u"é\"'"_s, qint64(1) << 40, 7, 0.5, std::optional<QString>(), QString() }));
    EXPECT_EQ(table("SELECT typeof(a), typeof(b), typeof(c), typeof(d), typeof(e), typeof(f) FROM t"),
        QStringList { "text|integer|integer|real|null|text" });
    EXPECT_EQ(table("SELECT a, b, c, d, e, f FROM t"), QStringList { "é\"'|1099511627776|7|0.5|-|" });
    EXPECT_EQ(db.scalar("PRAGMA journal_mode;"), u"wal"_s);
    EXPECT_EQ(db.scalar("PRAGMA foreign_keys;"), u"1"_s);
}

TEST_F(LocalDBTest, aScalarBindsOnlyTextAnd64BitIntegers)
{
    LocalDB& db = open();
    EXPECT_EQ(db.scalar("SELECT 'hit' WHERE 5=?;", { qint64(5) }), u"hit"_s);
    EXPECT_EQ(db.scalar("SELECT 'hit' WHERE 'x'=?;", { u"x"_s }), u"hit"_s);
    EXPECT_EQ(db.scalar("SELECT 'hit' WHERE 5=?;", { 5 }), std::nullopt);
    EXPECT_EQ(db.scalar("SELECT NULL;"), std::nullopt);
    EXPECT_EQ(db.scalar("nonsense"), std::nullopt);
    EXPECT_EQ(m_log.lines(), QStringList());
}

TEST_F(LocalDBTest, severalProgramsMayOpenANewFileAtOnce)
{
    const LocalDB::SchemaFolders folders { m_home.paths().resources, m_home.paths().home };
    for (int round = 0; round < 4; ++round) {
        const QString file = m_home.path(u"new-%1.db"_s.arg(round));
        std::vector<std::unique_ptr<QThread>> programs;
        for (int program = 0; program < 4; ++program) {
            programs.emplace_back(QThread::create([&] {
                VirtualScheduler clock;
                NotificationCentre centre;
                EXPECT_TRUE(LocalDB(file, folders, clock, m_defaults, centre).tableExists(u"approval_record"_s));
            }));
            programs.back()->start();
        }
        for (const auto& program : programs)
            program->wait();
    }
    EXPECT_EQ(m_log.lines(), QStringList());
}

TEST_F(LocalDBTest, failuresAreLoggedAndLeaveTheRestStanding)
{
    LocalDB& db = open();
    EXPECT_FALSE(db.run("INSERT INTO nowhere VALUES(?);", { 1 }));
    EXPECT_FALSE(db.run("INSERT INTO contact_note(id) VALUES(?);", { u"n"_s }));
    db.exec("CREATE TABLE t (a); nonsense; CREATE TABLE u (a);");
    EXPECT_EQ(m_log.lines(),
        (QStringList { "LocalDB.run prepare failed: no such table: nowhere — INSERT INTO nowhere VALUES(?);",
            "LocalDB.run step failed (rc=19): NOT NULL constraint failed: contact_note.contact_id — INSERT INTO "
            "contact_note(id) VALUES(?);",
            "LocalDB exec error: near \"nonsense\": syntax error" }));
    EXPECT_TRUE(db.tableExists("t"));
    EXPECT_FALSE(db.tableExists("u"));
    EXPECT_FALSE(db.columnExists("contact_note", "ID"));
    EXPECT_TRUE(db.columnExists("contact_note", "id"));
}

TEST_F(LocalDBTest, aFileThatCannotBeOpenedGivesAnEmptyStore)
{
    QDir().mkpath(path()); // a folder at the file's path
    LocalDB& db = open();
    EXPECT_FALSE(db.isOpen());
    EXPECT_FALSE(db.inTransaction());
    EXPECT_EQ(m_log.lines(), QStringList { "LocalDB: failed to open " + path() });
    EXPECT_FALSE(db.run("SELECT 1;"));
    EXPECT_EQ(db.scalar("SELECT 1;"), std::nullopt);
    EXPECT_FALSE(db.tableExists("contact"));
    db.exec("SELECT 1;");
}

TEST_F(LocalDBTest, aFileThatIsNoDatabaseStaysAsItIs)
{
    const QByteArray letter = QByteArray("Dear diary, ").repeated(500);
    m_home.write("share/Corvane/nimblocal.db", letter);
    EXPECT_FALSE(open().run("SELECT * FROM contact;"));
    EXPECT_TRUE(m_log.contains("LocalDB exec error: file is not a database"));
    m_db.reset();
    EXPECT_EQ(m_home.read("share/Corvane/nimblocal.db"), letter);
}

TEST_F(LocalDBTest, aFileThatAnotherProcessHoldsIsReadAtOnceAndWrittenLater)
{
    EXPECT_TRUE(open().run("INSERT INTO contact(id) VALUES('ct:SMS:1');"));
    OtherProcess other(path());
    other.exec("BEGIN IMMEDIATE;");
    LocalDB& db = open(); // writing fails after five seconds
    ASSERT_EQ(m_log.lines().size(), 1);
    EXPECT_TRUE(m_log.contains("LocalDB.run step failed (rc=5): database is locked — UPDATE unified_conversation"));
    EXPECT_EQ(cell("SELECT id FROM contact;"), "ct:SMS:1");
    EXPECT_TRUE(db.isHeldElsewhere());
    other.exec("COMMIT;");
    EXPECT_FALSE(db.isHeldElsewhere());
    EXPECT_FALSE(db.inTransaction());
    EXPECT_EQ(db.scalar("PRAGMA busy_timeout;"), u"5000"_s);
    EXPECT_TRUE(db.run("INSERT INTO contact(id) VALUES('ct:SMS:2');"));
}

TEST_F(LocalDBTest, aFullDiskRefusesTheNewRowAndKeepsTheOldOnes)
{
    LocalDB& db = open();
    const QString insert = "INSERT INTO contact_note(id, contact_id, body) VALUES(?,'c',?);";
    EXPECT_TRUE(db.run(insert, { u"small"_s, u"kept"_s }));
    db.exec(u"PRAGMA max_page_count=%1;"_s.arg(cell("PRAGMA page_count;")));
    EXPECT_FALSE(db.run(insert, { u"large"_s, QString(1 << 20, u'x') }));
    EXPECT_TRUE(m_log.contains("LocalDB.run step failed (rc=13): database or disk is full"));
    db.exec("PRAGMA max_page_count=1000000;");
    EXPECT_TRUE(db.run(insert, { u"again"_s, QString(1 << 20, u'x') }));
    open();
    EXPECT_EQ(table("SELECT id, length(body) FROM contact_note"), (QStringList { "small|4", "again|1048576" }));
    EXPECT_EQ(cell("PRAGMA integrity_check;"), "ok");
}

TEST(StoreHelpers, listsBecomeJsonAndLoseTheirDoubles)
{
    EXPECT_EQ(jsonString({ "a", "b\"c", "é" }), "[\"a\",\"b\\\"c\",\"é\"]");
    EXPECT_EQ(jsonString({}), "[]");
    EXPECT_EQ(orderedUnique({ "Ana", "bo", "ANA", "Bo", "" }), (QList<QString> { "Ana", "bo", "" }));
}

TEST(StoreHelpers, todayBeginsAtLocalMidnight)
{
    const qint64 noonUtc = 1'760'011'200'000; // 2025-10-09 12:00 UTC, 14:00 in Berlin
    EXPECT_EQ(startOfTodayMs(noonUtc), noonUtc - 14 * 3'600'000LL);
    EXPECT_EQ(startOfTodayMs(startOfTodayMs(noonUtc)), startOfTodayMs(noonUtc));
}

}
