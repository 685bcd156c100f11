#include "Foundation/Literals.h"
#include "Store/Core/Table.h"

#include "Support/StoreTest.h"

namespace corvane {

namespace {

struct Thing {
    QString id;
    std::optional<QString> note;
    qint64 at = 0;
    std::optional<qint64> until;
    int count = 0;
    bool isOpen = false;
    double share = 0;
    QStringList words;
    QString error;

    bool operator==(const Thing&) const = default;
};

const Table<Thing> things("thing t",
    {
        { "t.id", &Thing::id },
        { "t.workspace" },
        { "t.note", &Thing::note },
        { "t.at", &Thing::at },
        { "t.until", &Thing::until },
        { "t.count", &Thing::count, "7" },
        { "t.state", {}, asStored, "'new'" },
        { "t.is_open", &Thing::isOpen },
        { "t.share", &Thing::share },
        { "t.words", &Thing::words },
        { "t.error", &Thing::error, "''", onlyRead },
    });

class TableTest : public StoreTest {
protected:
    TableTest()
    {
        open().exec("CREATE TABLE thing(id TEXT PRIMARY KEY, workspace TEXT, note TEXT, at INTEGER, until INTEGER,"
                    " count INTEGER, state TEXT, is_open INTEGER, share REAL, words TEXT, error TEXT);");
    }
};

}

TEST_F(TableTest, theTextsNameEachColumnOnceWithWhatStandsForNull)
{
    EXPECT_EQ(things.name(), "thing");
    EXPECT_EQ(things.select(),
        "SELECT t.id, t.note, t.at, t.until, COALESCE(t.count,7), t.is_open, t.share, t.words, COALESCE(t.error,'')\n"
        "FROM thing t\n");
    EXPECT_EQ(things.insertion(),
        "INSERT INTO thing(id, workspace, note, at, until, count, state, is_open, share, words)\n"
        "VALUES(?,?,?,?,?,?,'new',?,?,?)");
}

TEST_F(TableTest, whatIsWrittenIsReadBackMemberByMember)
{
    const GivenValues inWorkspace { { "workspace", u"w"_s } };
    const Thing full { "a", "note", 1LL << 40, 2LL << 40, 3, true, 0.5, { "x", "y" }, {} };
    const Thing bare { "b", {}, 1, {}, 0, false, 0, {}, {} };
    EXPECT_TRUE(things.insert(*m_db, full, inWorkspace));
    EXPECT_TRUE(things.insert(*m_db, bare, inWorkspace + GivenValues { { "count", {} } }));
    Thing counted = bare;
    counted.count = 7;
    EXPECT_EQ(things.rows(*m_db, "ORDER BY id;", {}), (QList<Thing> { full, counted }));
    EXPECT_EQ(things.first(*m_db, "WHERE id=?;", { u"b"_s }), counted);
    EXPECT_EQ(table("SELECT workspace, state, words FROM thing ORDER BY id;"), (QStringList { "w|new|x,y", "w|new|" }));

    Thing later = full;
    later.note = "later";
    EXPECT_TRUE(things.insert(*m_db, later, inWorkspace, "\nON CONFLICT(id) DO UPDATE SET note=excluded.note"));
    EXPECT_EQ(things.first(*m_db, "WHERE id=?;", { u"a"_s }), later);
    EXPECT_FALSE(things.insert(*m_db, full, inWorkspace)) << "it is there already";
}

}
