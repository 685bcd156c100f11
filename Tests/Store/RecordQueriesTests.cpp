#include "Store/Search/RecordQueries.h"

#include "Store/People/CrmRecords.h"
#include "Store/Work/CallWrites.h"
#include "Store/Work/WorkWrites.h"
#include "Support/StoreTest.h"

namespace corvane {

namespace {

class RecordQueriesTest : public StoreTest {
protected:
    RecordQueriesTest()
    {
        open();
        m_db->exec("INSERT INTO contact(id, display_name) VALUES('ana','Ana Ruiz'),('bo','Bo Lind');"
                   "INSERT INTO call_recording(id, title, contact_id, started_at, created_at, updated_at)"
                   " VALUES('call','About the kiln','ana',3000,1,1);"
                   "INSERT INTO call_transcript(id, call_id, segment_index, text, created_at, updated_at) VALUES('t',"
                   "'call',0,replace(hex(zeroblob(200)),'0','x') || ' the KILN again',1,1);"
                   "INSERT INTO calendar_event(id, workspace_id, title, start_ms, end_ms, calendar, attendees_json, "
                   "updated_at) VALUES('e1','local','Open the kiln',9000,9100,'Taller','[{\"name\":\"Bo\"}]',1),"
                   "('e2','local','Open the kiln',2000,2100,'Taller','[]',1);");
        addNote(*m_db, u"ana"_s, u"Wants a 100% kiln_dry bowl"_s);
        insertCRMDeal(*m_db, u"bo"_s, { u"Kiln repair"_s, u"Won"_s, u"900"_s, u"Lind"_s, {} });
        insertCRMTask(*m_db, NewTask { u"Sweep the kiln"_s, {} });
        const auto context = upsertWorkContext(*m_db, { "ops", "process", "kiln", "Kiln log", "", "Ana" });
        insertWorkItem(
            *m_db, { "ops", WorkContextId(context->id), "task", "Order kiln wash", "high", "Ana", "ui", "" });
    }

    QStringList found(const QString& typed, int limit = 9)
    {
        const auto records
            = findRecords(*m_db, parseSearch(typed, QDate(2026, 11, 22)), { u"local"_s, 1500, limit }).records;
        QStringList lines;
        for (const FoundRecord& record : records)
            lines.append(record.kind + u' ' + record.title);
        return lines;
    }
};

}

TEST_F(RecordQueriesTest, findsEachKindInItsGroup)
{
    EXPECT_EQ(found(u"kiln"_s),
        QStringList({ u"call About the kiln"_s, u"transcript About the kiln"_s, u"note Ana Ruiz"_s,
            u"deal Kiln repair"_s, u"task Sweep the kiln"_s, u"event Open the kiln"_s, u"context Kiln log"_s,
            u"item Order kiln wash"_s }));
    EXPECT_EQ(found(u"100% kiln_d"_s), QStringList(u"note Ana Ruiz"_s)) << "signs of LIKE are letters";
    EXPECT_EQ(found(u"kiln in:work"_s, 1), QStringList(u"context Kiln log"_s));

    const auto records = findRecords(*m_db, u"kiln"_s, { u"local"_s, 1500, 9 }).records;
    EXPECT_EQ(records.at(1).id, u"call"_s);
    EXPECT_TRUE(records.at(1).text.startsWith(u"…xx"_s) && records.at(1).text.endsWith(u"the KILN again"_s));
    EXPECT_EQ(records.at(5).id, u"e2"_s) << "of a series the nearest one";
    EXPECT_EQ(records.last().module + records.last().detail, u"opsopen"_s);
}

TEST_F(RecordQueriesTest, theNewestCallsComeFirstEachWithItsFirstPart)
{
    m_db->exec("INSERT INTO call_recording(id, title, started_at, created_at, updated_at) VALUES('b','B',5000,1,1),"
               "('a','A',5000,1,1),('old','Old',1,1,1);"
               "INSERT INTO call_transcript(id, call_id, segment_index, text, created_at, updated_at) VALUES"
               "('b2','b',2,'glaze two',1,1),('b1','b',1,'glaze one',1,1),('a1','a',1,'glaze one',1,1),"
               "('a0','a',0,'nothing',1,1),('o','old',0,'glaze',1,1);");
    EXPECT_EQ(found(u"glaze"_s), QStringList({ u"transcript A"_s, u"transcript B"_s, u"transcript Old"_s }));
    EXPECT_EQ(found(u"glaze"_s, 2), QStringList({ u"transcript A"_s, u"transcript B"_s }));
    const auto records = findRecords(*m_db, u"glaze"_s, { u"local"_s, 1500, 9 }).records;
    EXPECT_EQ(records.at(0).text + records.at(1).text, u"glaze oneglaze one"_s);
    EXPECT_EQ(found(u"in:transcripts from:ana"_s), QStringList(u"transcript About the kiln"_s));
}

TEST_F(RecordQueriesTest, narrowsByPersonPlaceAndTime)
{
    EXPECT_EQ(found(u"from:ana"_s),
        QStringList({ u"call About the kiln"_s, u"transcript About the kiln"_s, u"note Ana Ruiz"_s,
            u"context Kiln log"_s, u"item Order kiln wash"_s }));
    EXPECT_EQ(found(u"from:bo in:taller"_s), QStringList(u"event Open the kiln"_s));
    EXPECT_EQ(found(u"in:ops wash"_s), QStringList(u"item Order kiln wash"_s));
    EXPECT_EQ(found(u"kiln before:1971 after:1970"_s),
        QStringList({ u"call About the kiln"_s, u"transcript About the kiln"_s, u"event Open the kiln"_s }));
    EXPECT_EQ(found(u"kiln from:me"_s), QStringList());
    EXPECT_EQ(found(u"kiln has:file"_s), QStringList());
}

TEST_F(RecordQueriesTest, missingTablesHoldNothingAndAFileThatCannotBeReadIsAFailure)
{
    m_db->exec("UPDATE contact_note SET deleted_at=1; DROP TABLE work_item; DROP TABLE ask; DROP TABLE project;");
    EXPECT_EQ(found(u"kiln in:work"_s), QStringList(u"context Kiln log"_s));
    EXPECT_EQ(found(u"kiln in:notes"_s), QStringList());
    const auto never = std::make_shared<std::atomic<bool>>(false);
    EXPECT_FALSE(findRecords(*SqlConnection::reader(path(), never), u"kiln"_s, { u"local"_s, 0, 9 }).failed);
    EXPECT_TRUE(findRecords(*SqlConnection::reader(path() + u"/no"_s, never), u"kiln"_s, { u"local"_s, 0, 9 }).failed);
}

}
