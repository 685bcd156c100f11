#include "Store/Core/DamagedFile.h"
#include "Store/Core/Salvage.h"
#include "Store/Core/StoreHealth.h"
#include "Support/StoreTest.h"

#include <QFile>

namespace corvane {

namespace {

constexpr int pageBytes = 4096;

class SalvageTest : public StoreTest {
protected:
    /// Writes 4,000 messages and an engine's own table, then overwrites the given leaf pages; a negative page is the
    /// file header.
    void damage(const QList<int>& pages)
    {
        open();
        m_db->exec("PRAGMA foreign_keys=OFF; BEGIN;");
        for (int n = 1; n <= 4000; ++n)
            m_db->run("INSERT INTO unified_message(id, conversation_id, body, ts) VALUES(?,'c',?,?);",
                { QString::number(n), QString(200, u'x'), n });
        m_db->exec("COMMIT; CREATE TABLE engine_notes(key TEXT PRIMARY KEY, blob BLOB);"
                   "INSERT INTO engine_notes VALUES('k', x'00ff');"
                   "ALTER TABLE contact ADD COLUMN engines_own TEXT;"
                   "INSERT INTO contact(id, display_name, engines_own) VALUES('ct','Ana','kept');"
                   "PRAGMA wal_checkpoint(TRUNCATE);");
        QList<qint64> leaves
            = m_db->rows("SELECT pageno FROM dbstat WHERE name='unified_message' AND pagetype='leaf' ORDER BY path;",
                {}, [](const SqlRow& row) { return row.integer(0); });
        ASSERT_GT(leaves.size(), 100);
        m_db->close();
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        for (const int page : pages) {
            file.seek(page < 0 ? 0 : (leaves.value(page) - 1) * pageBytes);
            file.write(QByteArray(page < 0 ? 64 : pageBytes, '\xa5'));
        }
    }

    /// Recovers the data into a new file, and opens it.
    Result<Salvaged> save()
    {
        const auto aside = moveAside(path());
        EXPECT_TRUE(aside);
        QFile before(*aside);
        EXPECT_TRUE(before.open(QIODevice::ReadOnly));
        const QByteArray content = before.readAll();
        EXPECT_TRUE(m_db->makeEmpty(path() + ".new"));
        SalvageProgress progress;
        auto result = salvage(*aside, path() + ".new", progress);
        EXPECT_TRUE(QFile::rename(path() + ".new", path()));
        before.seek(0);
        EXPECT_EQ(before.readAll(), content) << "what was moved aside is only read";
        EXPECT_EQ(QFileInfo(path()).dir().entryList({ "*.copy*" }).size(), 0);
        open();
        return result;
    }
};

}

TEST_F(SalvageTest, rowsOnBothSidesOfDamagedPagesAreSavedAndWithThemWhatEnginesMade)
{
    damage({ 40, 41, 90 });
    EXPECT_EQ(awaitingChoice(path()), std::nullopt);
    const auto result = save();
    ASSERT_TRUE(result) << result.error().message.toStdString();
    EXPECT_EQ(result->tornTables, QStringList("unified_message"));
    const int saved = cell("SELECT COUNT(*) FROM unified_message;").toInt();
    EXPECT_LT(saved, 4000);
    EXPECT_GT(saved, 3900) << "three pages hold some fifty rows";
    EXPECT_EQ(cell("SELECT COUNT(*) FROM unified_message WHERE rowid IN (1, 2000, 4000);"), "3");
    EXPECT_EQ(cell("SELECT hex(blob) FROM engine_notes;"), "00FF");
    EXPECT_EQ(cell("SELECT engines_own FROM contact;"), "kept");
    EXPECT_EQ(cell("PRAGMA integrity_check;"), "ok");
}

TEST_F(SalvageTest, whatStoodInTheLogAloneIsSavedAndWhatDoesNotFitIsTold)
{
    const QString aside = path() + ".aside";
    const QString target = path() + ".new";
    open();
    m_db->exec("INSERT INTO contact(id, display_name) VALUES('a','Ana'),('b','Bo');");
    ASSERT_TRUE(QFile::copy(path(), aside) && QFile::copy(path() + "-wal", aside + "-wal"));
    const auto saved = [&](const char* before) {
        EXPECT_TRUE(m_db->makeEmpty(target));
        OtherProcess(target).exec(before);
        SalvageProgress progress;
        const Result<Salvaged> result = salvage(aside, target, progress);
        EXPECT_EQ(progress.tables == progress.allTables && progress.allTables > 10, result.has_value());
        if (result)
            EXPECT_EQ(result->rows, progress.rows);
        return result;
    };
    const auto whole = saved("");
    ASSERT_TRUE(whole);
    EXPECT_TRUE(whole->tornTables.isEmpty());
    EXPECT_GE(whole->rows, 2);
    EXPECT_EQ(m_db->rows("SELECT 1;", {}, [](const SqlRow&) { return 1; }).size(), 1);
    const auto names = [&] {
        const auto file = SqlConnection::reader(target, std::make_shared<std::atomic<bool>>(false));
        return file
            ->rows(
                "SELECT display_name FROM contact ORDER BY rowid;", {}, [](const SqlRow& row) { return row.text(0); })
            .join(',');
    };
    EXPECT_EQ(names(), "Ana,Bo");
    EXPECT_FALSE(QFile::exists(target + ".copy-wal"));
    for (const char* suffix : { "", "-wal", "-shm" })
        QFile::remove(target + suffix);
    const auto torn = saved("INSERT INTO contact(id, display_name) VALUES('a','Here first');");
    ASSERT_TRUE(torn);
    EXPECT_EQ(torn->tornTables, QStringList("contact"));
    EXPECT_EQ(torn->rows, whole->rows - 1);
    EXPECT_EQ(names(), "Here first,Bo");
    for (const char* suffix : { "", "-wal", "-shm" })
        QFile::remove(target + suffix);
    const auto refused = saved("CREATE TRIGGER full BEFORE INSERT ON contact BEGIN SELECT RAISE(ABORT, 'full'); END;");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().message, "The new file cannot be written: full.");
}

TEST_F(SalvageTest, aRecoveryThatIsStoppedOrHasNothingToReadSaysSo)
{
    open();
    m_db->exec("INSERT INTO contact(id) VALUES('a');");
    m_db->close();
    ASSERT_TRUE(m_db->makeEmpty(path() + ".new"));
    SalvageProgress progress;
    const auto gone = salvage(path() + ".gone", path() + ".new", progress);
    ASSERT_FALSE(gone);
    EXPECT_EQ(gone.error().message, path() + ".gone cannot be copied.");
    progress.stopped = true;
    const auto stopped = salvage(path(), path() + ".new", progress);
    EXPECT_FALSE(stopped);
    EXPECT_EQ(progress.rows, 0);
    EXPECT_EQ(QFileInfo(path()).dir().entryList({ "*.copy*" }).size(), 0);
}

TEST_F(SalvageTest, aFileWhoseBeginningIsLostIsReadAllTheSame)
{
    damage({ -1 });
    open();
    EXPECT_EQ(m_db->health().fault(), StoreFault::NotADatabase);
    m_db->close();
    const auto result = save();
    ASSERT_TRUE(result) << result.error().message.toStdString();
    EXPECT_EQ(cell("SELECT COUNT(*) FROM unified_message;"), "4000");
}

TEST_F(SalvageTest, nothingLiesInThePlaceOfAFileThatWasMovedUntilSomethingIsPutThere)
{
    open();
    m_db->close();
    QFile(path() + "-wal").open(QIODevice::WriteOnly);
    const QString aside = moveAside(path()).value_or("none");
    EXPECT_EQ(aside, path() + ".damaged");
    EXPECT_TRUE(QFile::exists(aside + "-wal"));
    EXPECT_FALSE(QFile::exists(path() + "-wal"));
    EXPECT_FALSE(m_db->reopen());
    open();
    EXPECT_FALSE(m_db->isOpen());
    EXPECT_EQ(awaitingChoice(path()), aside);
    EXPECT_FALSE(QFile::exists(path()));

    m_db->makeEmpty(path() + ".new");
    EXPECT_TRUE(QFile::rename(path() + ".new", path()));
    EXPECT_TRUE(m_db->reopen());
    m_db->close();
    EXPECT_EQ(moveAside(path()), path() + ".damaged-2");
    EXPECT_EQ(awaitingChoice(path()), path() + ".damaged-2");

    m_home.write("share/Corvane/garbage.db", "no database at all");
    ASSERT_TRUE(m_db->makeEmpty(path() + ".new"));
    SalvageProgress progress;
    EXPECT_FALSE(salvage(m_home.path("share/Corvane/garbage.db"), path() + ".new", progress));
}

}
