#include "Store/Core/Snapshot.h"

#include "Store/Core/Portable.h"
#include "Store/Core/Upkeep.h"
#include "Support/StoreTest.h"

#include <QFileInfo>
#include <QJsonDocument>

namespace corvane {

class SnapshotTest : public StoreTest {
protected:
    SnapshotTest()
    {
        open();
        m_db->exec("INSERT INTO contact(id, display_name, deleted_at) VALUES('a','Ana',NULL),('b','Bo',5);"
                   "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<400) "
                   "INSERT INTO unified_message(id, workspace_id, conversation_id, body, ts) "
                   "SELECT 'm' || i, 'local', 'c', hex(randomblob(1000)), i FROM n;");
    }

    const std::shared_ptr<std::atomic<bool>> m_stopped = std::make_shared<std::atomic<bool>>(false);
    const QString m_copy = m_home.path(u"copy.db"_s);
};

TEST_F(SnapshotTest, aCopyHoldsEveryRowAndAFailedOneLeavesNothing)
{
    ASSERT_TRUE(copyDatabase(path(), m_copy, m_stopped));
    const auto copy = SqlConnection::reader(m_copy, m_stopped);
    EXPECT_EQ(countRows(*copy), countRows(*m_db));
    EXPECT_EQ(countRows(*copy).value(u"unified_message"_s), 400);
    EXPECT_EQ(integrityTrouble(*copy), QString());
    EXPECT_EQ(newestMessageMs(*copy), 400);
    EXPECT_FALSE(copyDatabase(m_home.path(u"none.db"_s), m_home.path(u"x.db"_s), m_stopped));

    m_stopped->store(true);
    const auto stopped = copyDatabase(path(), m_home.path(u"stopped.db"_s), m_stopped);
    ASSERT_FALSE(stopped);
    EXPECT_EQ(stopped.error().message, u"Stopped."_s);
    EXPECT_FALSE(QFile::exists(m_home.path(u"stopped.db"_s)));
    m_stopped->store(false);
    const qint64 size = QFileInfo(path()).size();
    careWhileIdle(*m_db);
    EXPECT_GT(QFileInfo(path()).size(), size) << "the log is taken into the file";

    m_db->exec("DELETE FROM unified_message WHERE ts>10;");
    const FileFigures before = fileFigures(*m_db);
    EXPECT_GT(before.freeBytes(), 400'000);
    EXPECT_TRUE(compact(*m_db));
    EXPECT_EQ(fileFigures(*m_db).freeBytes(), 0);
    EXPECT_EQ(fileFigures(*m_db).bytes(), QFileInfo(path()).size());

    m_db.reset();
    QFile file(m_copy);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.seek(file.size() / 2) && file.write(QByteArray(200'000, 'x')) > 0);
    file.close();
    const QString second = m_home.path(u"second.db"_s);
    const auto damaged = copyDatabase(m_copy, second, m_stopped);
    ASSERT_FALSE(damaged);
    EXPECT_EQ(damaged.error().message, u"The database is damaged."_s);
    EXPECT_FALSE(QFile::exists(second) || QFile::exists(second + u"-journal"_s));
    EXPECT_NE(integrityTrouble(*SqlConnection::reader(m_copy, m_stopped)), QString());
}

TEST_F(SnapshotTest, anExportedRowIsAddedOnceAndDeletedOnesStay)
{
    const PortableKind people { u"people"_s, u"contact"_s };
    QList<QByteArray> rows;
    const auto read = [&](bool goesOn) {
        rows.clear();
        visitPortable(*m_db, people, [&](const QByteArray& json) {
            rows.append(json);
            return goesOn;
        });
    };
    m_db->exec("INSERT INTO contact(id, display_name, updated_at) VALUES('q','\"Q\" – it''s',7);");
    read(true);
    ASSERT_EQ(rows.size(), 2) << "a deleted one is none";
    const QJsonObject last = QJsonDocument::fromJson(rows.last()).object();
    EXPECT_EQ(last["display_name"_L1].toString(), u"\"Q\" – it's"_s);
    read(false);
    EXPECT_EQ(rows.size(), 1);
    EXPECT_FALSE(addPortable(*m_db, people, last)) << "it is there";
    m_db->exec("DELETE FROM contact;");
    QJsonObject foreign = last;
    foreign[u"no such column"_s] = 1;
    EXPECT_TRUE(addPortable(*m_db, people, foreign));
    EXPECT_EQ(table("SELECT id, display_name, typeof(updated_at), updated_at, deleted_at FROM contact;"),
        QStringList { u"q|\"Q\" – it's|integer|7|-"_s });
    EXPECT_TRUE(
        addPortable(*m_db, people, { { u"id"_s, u"t"_s }, { u"updated_at"_s, 1.5 }, { u"deleted_at"_s, true } }));
    EXPECT_EQ(table("SELECT updated_at, deleted_at FROM contact WHERE id='t';"), QStringList { u"1.5|-"_s })
        << "no column holds a truth value";
    EXPECT_FALSE(addPortable(*m_db, people, { { u"other"_s, 1 } }));
    visitPortable(*m_db, { u"x"_s, u"no_table"_s }, [](const QByteArray&) {
        ADD_FAILURE() << "a table that is missing holds nothing";
        return true;
    });
    EXPECT_FALSE(addPortable(*m_db, { u"x"_s, u"no_table"_s }, last));
    const QStringList tables = tableColumns(*m_db).keys();
    for (const PortableKind& kind : portableKinds())
        EXPECT_TRUE(tables.contains(kind.table)) << qPrintable(kind.table);
}

}
