#include "Store/Work/CallQueries.h"
#include "Store/Work/CallRecordingRule.h"
#include "Store/Work/CallWrites.h"

#include "Store/Core/Workspaces.h"
#include "Support/StoreTest.h"

namespace corvane {

class CallRecordsTest : public StoreTest {
protected:
    CallRecordsTest()
    {
        open();
        m_db->exec("INSERT INTO contact(id, display_name, updated_at) VALUES('ana','Ana',1),('bo','Bo',2),('no','',3);"
                   "INSERT INTO contact_identity(id, contact_id, channel, handle, email, updated_at) VALUES"
                   "('i1','bo','EMAIL','x','Ana@X.example',1),('i2','ana','EMAIL','x','ana@x.example',2);");
        selectWorkspace(*m_db, u"w1"_s); // the first one takes over what is there
    }

    bool insert(const QString& id, qint64 startedAtMs, const QString& mode = u"mic_only"_s)
    {
        NewCall call;
        call.id = id;
        call.title = u"Call "_s + id;
        call.captureMode = mode;
        call.startedAtMs = startedAtMs;
        call.micPath = u"/mic"_s;
        call.consentGranted = true;
        call.consentNote = u"asked"_s;
        return insertCall(*m_db, call);
    }
    void propose(const QString& id, const QString& kind, const QString& title, double confidence = 0.5)
    {
        EXPECT_TRUE(upsertCallProposal(*m_db, { id, u"c"_s, {}, kind, title, u"{}"_s, confidence }));
    }
};

TEST_F(CallRecordsTest, aCallIsRecordedEndedTranscribedAndReadAgain)
{
    ASSERT_TRUE(insert(u"old"_s, 500));
    ASSERT_TRUE(insert(u"c"_s, 1000, u"mic_and_system"_s));
    EXPECT_FALSE(insert(u"c"_s, 1000)) << "there is one of that id";
    EXPECT_EQ(recentCallRecordings(*m_db, 9).first().processingStatus, u"recording"_s);
    EXPECT_TRUE(updateCallProcessing(*m_db, u"c"_s, u"failed"_s, u"no model"_s));
    EXPECT_EQ(fetchCall(*m_db, u"c"_s)->processingError, u"no model"_s);
    EXPECT_TRUE(endCall(*m_db, u"c"_s, 1000, 61'000, u"transcribing"_s));
    EXPECT_TRUE(linkCall(*m_db, u"c"_s, u"ana"_s));
    EXPECT_TRUE(callsWithSoundBefore(*m_db, 61'001).isEmpty()) << "its sound is all there is of it";
    for (const QString& text : { u"first try"_s, u"what was said"_s })
        EXPECT_TRUE(replaceCallTranscript(*m_db, { u"c"_s, u"mic_and_system"_s, text, u"base"_s }));
    EXPECT_TRUE(replaceCallTranscript(*m_db, { u"old"_s, u"mic_only"_s, u"mine"_s, u"base"_s }));
    EXPECT_EQ(table("SELECT call_id, speaker_label, speaker_kind, track FROM call_transcript ORDER BY call_id;"),
        (QStringList { u"c|Meeting audio|mixed|system"_s, u"old|Me|me|mic"_s }));
    for (const QString& summary : { u"a draft"_s, u"in short"_s })
        EXPECT_TRUE(storeCallSummary(*m_db, u"c"_s, summary, u"lm"_s, { u"a warning"_s }));
    EXPECT_EQ(cell("SELECT warnings_json FROM call_summary;"), u"[\"a warning\"]"_s);
    EXPECT_EQ(fetchCall(*m_db, u"c"_s),
        (CallDetails { u"c"_s, u"Call c"_s, u"ana"_s, u"Ana"_s, 1000, 61'000, 60'000, u"/mic"_s, {},
            u"mic_and_system"_s, u"transcribing"_s, {}, u"asked"_s, u"what was said"_s, u"base"_s, u"in short"_s }));
    EXPECT_TRUE(renameCall(*m_db, u"old"_s, u"Renamed"_s));
    const auto recent = recentCallRecordings(*m_db, 9);
    ASSERT_EQ(recent.size(), 2);
    EXPECT_EQ(recent.first().id + recent.first().summary + recent.last().title, u"cin shortRenamed"_s);
    EXPECT_EQ(recent.last().endedAt, 0) << "it is running";
    EXPECT_EQ(recentCallRecordings(*m_db, 1).size(), 1);
    EXPECT_TRUE(callsWithSoundBefore(*m_db, 61'000).isEmpty());
    EXPECT_EQ(callsWithSoundBefore(*m_db, 61'001).size(), 1);
    EXPECT_EQ(transcriptText(*m_db, u"c"_s), u"what was said"_s);
    const auto found = [&](const QString& text, const QString& workspace = u"w1"_s) {
        QStringList ids;
        for (const CallRecordingRow& row : findCallRecordings(*m_db, workspace, text, 9))
            ids.append(row.id);
        return ids.join(u',');
    };
    EXPECT_EQ(found(u"CALL c"_s) + u'|' + found(u"in short"_s) + u'|' + found(u"mine"_s) + u'|' + found(u"ana"_s),
        u"c|c|old|c"_s)
        << "by title, summary, transcript and name";
    EXPECT_EQ(found({}), u"c,old"_s);
    EXPECT_EQ(found(u"%"_s) + found(u"in short"_s, u"w2"_s), QString());

    selectWorkspace(*m_db, u"w2"_s);
    EXPECT_FALSE(fetchCall(*m_db, u"c"_s)) << "it is another workspace's";
    EXPECT_TRUE(recentCallRecordings(*m_db, 9).isEmpty());
}

TEST_F(CallRecordsTest, aLinkReachesWhatWaitsAndADeletedCallRejectsIt)
{
    insert(u"c"_s, 1000);
    propose(u"note"_s, u"note"_s, u"Link contact, then add the note"_s);
    propose(u"task"_s, u"task"_s, u"Link contact, as a task"_s, 0.99);
    propose(u"done"_s, u"note"_s, u"Link contact, done"_s);
    m_db->run("UPDATE crm_update_proposal SET status='applied' WHERE id='done';");
    propose(u"done"_s, u"note"_s, u"another"_s);
    propose(u"task"_s, u"task"_s, u"Link contact, a task"_s, 0.99);
    EXPECT_EQ(callContact(*m_db, u"c"_s), QString());
    ASSERT_TRUE(linkCall(*m_db, u"c"_s, u"ana"_s));
    EXPECT_EQ(callContact(*m_db, u"c"_s), u"ana"_s);
    EXPECT_EQ(table("SELECT id, contact_id, title, confidence FROM crm_update_proposal ORDER BY id;"),
        (QStringList { u"done|-|Link contact, done|0.5"_s, u"note|ana|Add call note|0.98"_s,
            u"task|ana|Link contact, a task|0.99"_s }));
    ASSERT_TRUE(linkCall(*m_db, u"c"_s, {}));
    EXPECT_EQ(cell("SELECT COUNT(*) FROM crm_update_proposal WHERE contact_id IS NULL;"), u"3"_s);
    ASSERT_TRUE(deleteCall(*m_db, u"c"_s));
    EXPECT_FALSE(fetchCall(*m_db, u"c"_s));
    EXPECT_EQ(table("SELECT id, status FROM crm_update_proposal ORDER BY id;"),
        (QStringList { u"done|applied"_s, u"note|rejected"_s, u"task|rejected"_s }));

    EXPECT_EQ(contactWithEmail(*m_db, u"ANA@x.example"_s), u"ana"_s) << "the last one that was changed";
    EXPECT_EQ(contactWithEmail(*m_db, u"nobody@x.example"_s), QString());
    QStringList named;
    for (const NamedContact& contact : namedContacts(*m_db, 9))
        named.append(contact.name);
    EXPECT_EQ(named, (QStringList { u"Bo"_s, u"Ana"_s }));
}

TEST_F(CallRecordsTest, everyWorkspaceHasItsRuleAndEveryEventWhatCameOfIt)
{
    auto rule = fetchCallRecordingRule(*m_db);
    ASSERT_TRUE(rule);
    EXPECT_FALSE(rule->enabled);
    EXPECT_TRUE(rule->consentRequired);
    rule->enabled = true;
    rule->consentRequired = false;
    rule->requireMeetingApp = true;
    rule->startLeadSeconds = 601;
    rule->stopGraceSeconds = -1;
    ASSERT_TRUE(updateCallRecordingRule(*m_db, *rule));
    const auto kept = fetchCallRecordingRule(*m_db);
    EXPECT_TRUE(kept->enabled && kept->requireMeetingApp && !kept->consentRequired);
    EXPECT_EQ(kept->startLeadSeconds, 600);
    EXPECT_EQ(kept->stopGraceSeconds, 0);
    selectWorkspace(*m_db, u"w2"_s);
    const auto other = fetchCallRecordingRule(*m_db);
    ASSERT_TRUE(other);
    EXPECT_FALSE(other->enabled) << "another workspace's rule counts there alone";
    EXPECT_EQ(fetchCallRecordingRule(*m_db), other);
    selectWorkspace(*m_db, u"w1"_s);
    EXPECT_EQ(fetchCallRecordingRule(*m_db), kept);

    const auto tell = [&](const QString& status, const QString& call, const QString& reason) {
        m_clock.advance(seconds(1));
        EXPECT_TRUE(upsertCallAutoRecordState(*m_db, { {}, u"e"_s, u"Plan"_s, status, call, {}, reason, 0 }));
        return m_clock.nowMs();
    };
    EXPECT_FALSE(callAutoRecordState(*m_db, u"e"_s));
    const qint64 started = tell(u"started"_s, {}, {});
    tell(u"recording"_s, u"c"_s, {});
    EXPECT_EQ(
        table("SELECT started_at, stopped_at FROM call_auto_record_state;"), QStringList { u"%1|-"_s.arg(started) });
    const qint64 stopped = tell(u"complete"_s, {}, u"the end"_s);
    EXPECT_EQ(table("SELECT started_at, stopped_at FROM call_auto_record_state;"),
        QStringList { u"%1|%2"_s.arg(started).arg(stopped) });
    EXPECT_EQ(callAutoRecordState(*m_db, u"e"_s),
        (CallAutoRecordStateRow { u"auto:e"_s, u"e"_s, u"Plan"_s, u"complete"_s, u"c"_s, {}, u"the end"_s, stopped }));
}

}
