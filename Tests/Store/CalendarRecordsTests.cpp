#include "Store/Approvals/EventRequests.h"
#include "Store/Work/CalendarQueries.h"
#include "Store/Work/MeetingPrepQueries.h"

#include "Store/Core/Transaction.h"
#include "Store/Core/Workspaces.h"
#include "Store/People/CrmRecords.h"
#include "Store/Work/WorkRecords.h"
#include "Support/StoreTest.h"

namespace corvane {

class CalendarRecordsTest : public StoreTest {
protected:
    CalendarRecordsTest() { open(); }

    static CalEvent event(const QString& id, qint64 startMs)
    {
        CalEvent event;
        event.id = id;
        event.title = u"Event "_s + id;
        event.startMs = startMs;
        event.endMs = startMs + 10;
        event.attendeeDetails = { { u"Ana"_s, u"ana@x.example"_s, true, false }, { u"Bo"_s, {}, false, true } };
        event.attendees = 2;
        event.allDay = startMs == 0;
        return event;
    }
    QStringList shown(qint64 endingFromMs = 0, int limit = 9)
    {
        QStringList ids;
        for (const CalEvent& event : fetchCalendarEvents(*m_db, endingFromMs, limit))
            ids.append(event.id);
        return ids;
    }
};

TEST_F(CalendarRecordsTest, theMirrorIsReplacedAndThenOnlyItsDifferenceIsWritten)
{
    selectWorkspace(*m_db, u"w1"_s);
    const QList<CalEvent> first { event(u"b"_s, 20), event(u"a"_s, 0), event(u"c"_s, 40) };
    ASSERT_TRUE(replaceCalendarEvents(*m_db, first));
    EXPECT_EQ(fetchCalendarEvents(*m_db, 0, 9), (QList<CalEvent> { first.at(1), first.at(0), first.at(2) }));
    EXPECT_EQ(shown(30), (QStringList { u"b"_s, u"c"_s })) << "one that ends at that time counts";
    EXPECT_EQ(shown(31), QStringList { u"c"_s });
    EXPECT_EQ(shown(0, 1), QStringList { u"a"_s });

    CalEvent moved = first.at(2);
    moved.attendeeDetails.last().declined = false;
    const QList<CalEvent> second { first.at(0), moved, event(u"d"_s, 60) };
    const CalendarChange change = calendarChange(first, second);
    EXPECT_EQ(change.gone, QStringList { u"a"_s });
    EXPECT_EQ(change.written, second.sliced(1));
    ASSERT_TRUE(changeCalendarEvents(*m_db, change));
    EXPECT_EQ(fetchCalendarEvents(*m_db, 0, 9), second);
    EXPECT_TRUE(calendarChange(second, second).isEmpty());
    EXPECT_TRUE(changeCalendarEvents(*m_db, {}));

    selectWorkspace(*m_db, u"w2"_s);
    EXPECT_TRUE(shown().isEmpty());
    ASSERT_TRUE(replaceCalendarEvents(*m_db, {}));
    selectWorkspace(*m_db, u"w1"_s);
    EXPECT_EQ(shown().size(), 3) << "another workspace has its own";
    m_db->exec("CREATE TRIGGER refused BEFORE INSERT ON calendar_event WHEN NEW.id='x' BEGIN SELECT RAISE(ABORT,'');"
               " END;");
    EXPECT_FALSE(replaceCalendarEvents(*m_db, { event(u"y"_s, 1), event(u"x"_s, 2) }));
    EXPECT_FALSE(changeCalendarEvents(*m_db, { { u"b"_s }, { event(u"x"_s, 2) } }));
    EXPECT_EQ(fetchCalendarEvents(*m_db, 0, 9), second) << "all or nothing";
    m_db->exec("CREATE TRIGGER kept BEFORE DELETE ON calendar_event BEGIN SELECT RAISE(ABORT,''); END;");
    EXPECT_FALSE(changeCalendarEvents(*m_db, { { u"b"_s }, {} }));
    EXPECT_FALSE(m_db->inTransaction());
    m_db->close();
    EXPECT_FALSE(changeCalendarEvents(*m_db, { { u"b"_s }, {} }));
}

TEST_F(CalendarRecordsTest, anAskedEventWaitsForItsApprovalAsItWasSeen)
{
    m_db->exec("INSERT INTO calendar_command(id, title, start_ms, end_ms, created_at) VALUES('new','Plan',5,9,2),"
               "('old','Plan',5,9,1),('later','Other',5,9,3);");
    const auto waiting = fetchPendingCalendarCommands(*m_db, 2);
    ASSERT_EQ(waiting.size(), 2);
    EXPECT_EQ(waiting.first().id + waiting.last().id, u"oldnew"_s);
    const QString seen = eventHash(waiting.first());
    EXPECT_FALSE(isApproved(*m_db, waiting.first()));
    m_db->run("UPDATE calendar_command SET location='elsewhere' WHERE id='old';");
    EXPECT_EQ(approveEvent(*m_db, u"old"_s, seen), Decided::Changed);
    m_db->run("UPDATE calendar_command SET location=NULL WHERE id='old';");
    EXPECT_EQ(approveEvent(*m_db, u"old"_s, seen), Decided::Taken);
    EXPECT_TRUE(isApproved(*m_db, *fetchCalendarCommand(*m_db, u"old"_s)));
    m_db->run("UPDATE calendar_command SET notes='more' WHERE id='old';");
    EXPECT_FALSE(isApproved(*m_db, *fetchCalendarCommand(*m_db, u"old"_s))) << "that was not seen";
    EXPECT_EQ(approveEvent(*m_db, u"none"_s, seen), Decided::Refused);

    EXPECT_EQ(rejectEvent(*m_db, u"none"_s), Decided::Refused);
    EXPECT_EQ(rejectEvent(*m_db, u"new"_s), Decided::Taken);
    EXPECT_EQ(fetchCalendarCommand(*m_db, u"new"_s)->error, eventRejected);
    EXPECT_EQ(rejectEvent(*m_db, u"new"_s), Decided::AlreadySo);
    EXPECT_EQ(approveEvent(*m_db, u"new"_s, seen), Decided::Refused);
    EXPECT_TRUE(endCalendarCommand(*m_db, u"old"_s, u"pending"_s, u"done"_s, u"e"_s, {}));
    EXPECT_FALSE(endCalendarCommand(*m_db, u"old"_s, u"pending"_s, u"failed"_s, {}, u"late"_s));
    EXPECT_EQ(rejectEvent(*m_db, u"old"_s), Decided::Refused) << "the calendar has it";
    Transaction transaction(*m_db);
    ASSERT_TRUE(transaction.begun() && recordProposedEvent(*m_db, u"later"_s) && transaction.commit());
    EXPECT_TRUE(isApproved(*m_db, *fetchCalendarCommand(*m_db, u"later"_s))) << "with its proposal";
    EXPECT_EQ(table("SELECT kind, subject_id, action FROM approval_record ORDER BY seq;"),
        (QStringList { u"event|old|approve"_s, u"event|new|reject"_s, u"event|later|proposed"_s }));
}

TEST_F(CalendarRecordsTest, aBriefTellsWhatIsKnownOfAPersonAndAsksOnceForAFollowUp)
{
    m_db->exec("INSERT INTO contact(id, display_name) VALUES('ana','Ana Ruiz'),('bo','Bo'),('mute','');"
               "INSERT INTO contact_identity(id, contact_id, channel, handle, email) VALUES"
               "('i','ana','EMAIL','a','Ana@Acme.example'),('j','mute','EMAIL','m','m@x.example');"
               "INSERT INTO unified_conversation(id, channel, account_id, external_id, contact_id, last_ts) VALUES"
               "('c','SMS','s','1','ana',7),('d','EMAIL','e','2','ana',5);"
               "INSERT INTO unified_message(id, workspace_id, conversation_id, body, ts, deleted_at) VALUES"
               "('1','local','c','hello',1,NULL),('2','local','d','the last word',2,NULL),('3','local','c','',3,NULL),"
               "('4','local','c','taken back',4,1);"
               "INSERT INTO crm_deal(id, workspace_id, name, company, stage, updated_at) VALUES"
               "('x','local','Kiln','ACME Ltd','Proposal',1),('y','local','Other','Elsewhere','',2);");
    for (const QString& note : { u"one"_s, u"two"_s, u"three"_s, u"four"_s }) {
        m_clock.advance(seconds(1));
        addNote(*m_db, u"ana"_s, note);
    }
    EXPECT_EQ(meetingBrief(*m_db, u"ana@ACME.example"_s, u"A."_s),
        (AttendeeBrief {
            u"ana"_s, u"Ana Ruiz"_s, u"the last word"_s, 7, u"Kiln · Proposal"_s, u"four\nthree\ntwo"_s }));
    EXPECT_EQ(meetingBrief(*m_db, u"other@elsewhere.example"_s, u"bo"_s),
        (AttendeeBrief { u"bo"_s, u"Bo"_s, u"No local messages yet."_s, 0, u"Other"_s, u"No local notes yet."_s }));
    EXPECT_EQ(meetingBrief(*m_db, u"m@x.example"_s, u"Mila"_s)->name, u"Mila"_s);
    EXPECT_EQ(meetingBrief(*m_db, u"x@%.example"_s, u"bo"_s)->openDeal, u"No open deal found in LocalDB."_s);
    EXPECT_FALSE(meetingBrief(*m_db, {}, u"Nobody"_s));

    const MeetingPrepCacheRow brief { u"E1"_s, u"Plan"_s, u"raw"_s, u"short"_s, u"lm"_s, 9 };
    EXPECT_FALSE(fetchMeetingPrepCache(*m_db, u"E1"_s));
    EXPECT_TRUE(storeMeetingPrep(*m_db, { u"E1"_s, u"Old"_s, u"old"_s, {}, {}, 1 }));
    EXPECT_TRUE(storeMeetingPrep(*m_db, brief));
    EXPECT_EQ(fetchMeetingPrepCache(*m_db, u"E1"_s), brief);

    const auto id = proposeOutboundReview(*m_db, u"E1"_s, u"Plan"_s, u"Send the offer."_s);
    EXPECT_EQ(id, u"dec:native:gtm:e1"_s);
    m_db->run("UPDATE work_decision SET status='rejected';");
    EXPECT_EQ(proposeOutboundReview(*m_db, u"E1"_s, u"Plan"_s, u"Send it now."_s), id);
    const auto decision = fetchWorkDecision(*m_db, *id);
    EXPECT_EQ(decision->status + u' ' + decision->risk, u"rejected external"_s) << "it is asked once";
    EXPECT_TRUE(decision->proposal.endsWith("\n\nSend the offer."_L1));
    EXPECT_EQ(cell("SELECT slug || ' ' || title || ' ' || kind || ' ' || module FROM work_context;"),
        "meeting-e1 Plan meeting gtm");
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON work_decision BEGIN SELECT RAISE(ABORT,''); END;");
    EXPECT_FALSE(proposeOutboundReview(*m_db, u"E3"_s, u"Plan"_s, {}));
    m_db->exec("CREATE TRIGGER full2 BEFORE INSERT ON work_context BEGIN SELECT RAISE(ABORT,''); END;");
    EXPECT_FALSE(proposeOutboundReview(*m_db, u"E4"_s, u"Plan"_s, {}));
    m_db->exec("DROP TABLE work_decision; DROP TABLE meeting_prep_cache;");
    EXPECT_FALSE(proposeOutboundReview(*m_db, u"E2"_s, u"Plan"_s, {}));
    EXPECT_FALSE(storeMeetingPrep(*m_db, brief));
}

}
