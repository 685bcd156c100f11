#include "Calls/MeetingAutoRecorder.h"

#include "Calendar/CalendarStore.h"
#include "CallTest.h"
#include "Calls/CallSettings.h"
#include "Support/Await.h"
#include "Support/FakeCalendarSource.h"

#include <QSignalSpy>

using namespace corvane;

namespace {

class AutoRecordTest : public CallTest {
protected:
    AutoRecordTest()
    {
        launch();
        calendar.requestAccess();
    }

    void launch()
    {
        automatic.emplace(MeetingAutoRecorder::Surroundings { calendar, *recorder, [this](const auto& answer) {
                                                                 answer(programs);
                                                             } });
        automatic->start();
    }

    /// A meeting that starts in `inSeconds` seconds.
    CalendarEntry meeting(const QString& title, qint64 inSeconds, qint64 lastsSeconds, const QString& with = "Somebody")
    {
        CalendarEntry entry;
        entry.calendarId = "work";
        entry.uid = entry.title = title;
        entry.startMs = m_clock.nowMs() + inSeconds * 1000;
        entry.endMs = entry.startMs + lastsSeconds * 1000;
        entry.people = { { "Me", "me@x.example" }, { with, "ana@x.example" } };
        return entry;
    }

    void plan(const QList<CalendarEntry>& entries)
    {
        source.set({ { { .id = "work", .title = "Work" } }, entries, {} });
        calendar.refresh();
        ASSERT_TRUE(await([&] { return calendar.events().size() == entries.size(); }));
    }

    /// Advances the clock, and grants microphone access if it was requested.
    QString after(qint64 secondsFromNow)
    {
        m_clock.advance(seconds(secondsFromNow));
        if (recorder->isStarting())
            microphone.answer(MicrophoneAccess::Granted);
        return automatic->statusText();
    }

    QString state()
    {
        return table("SELECT status, reason FROM call_auto_record_state ORDER BY updated_at;").join('\n');
    }

    FakeCalendarSource source;
    BackgroundQueue reading;
    CalendarStore calendar { { *m_db, source, reading, m_clock, m_defaults, m_centre, [] {
                                  return QStringList("me@x.example");
                              } } };
    ProgramsSeen programs;
    std::optional<MeetingAutoRecorder> automatic;
};

}

TEST_F(AutoRecordTest, aMeetingIsRecordedFromItsLeadToItsGraceAndOnlyOnce)
{
    m_db->exec("INSERT INTO contact(id, workspace_id, display_name, updated_at) VALUES('ct:2', 'local', 'Bo', 1);"
               "INSERT INTO contact_identity(id, workspace_id, contact_id, channel, handle, email, updated_at)"
               " VALUES('id:2', 'local', 'ct:2', 'EMAIL', 'a', 'Ana@X.example', 1);");
    plan({ meeting("Weekly", 75, 60, "Ana Ruiz") });
    EXPECT_EQ(after(15), "Auto-record is off.");
    EXPECT_EQ(cell("SELECT COUNT(*) FROM call_auto_record_state;"), "0");
    automatic->setEnabled(true);
    EXPECT_EQ(after(0), "Starting auto-record for Weekly with a linked CRM contact.") << "at its lead";
    EXPECT_EQ(state(), "started|Calendar rule matched; linked CRM contact by attendee email.");
    EXPECT_EQ(recorder->statusText(), "Auto-recording Weekly. Audio stays on this computer.");
    EXPECT_EQ(table("SELECT calendar_event_id, contact_id, source_app, consent_required, consent_granted FROM "
                    "call_recording;"),
        QStringList("work:Weekly|ct:2|Calendar|1|0"));
    EXPECT_TRUE(cell("SELECT consent_note FROM call_recording;").startsWith("Auto-started by an enabled calendar"));
    EXPECT_EQ(after(15), "Auto-recording Weekly.");
    EXPECT_EQ(state(), "recording|Recording is active.");
    EXPECT_EQ(after(210), "Auto-recording Weekly.") << "the grace";
    EXPECT_EQ(after(15), "Stopped auto-record for Weekly. Processing locally.");
    EXPECT_EQ(state(), "complete|Event ended and stop grace elapsed.");
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_EQ(cell("SELECT call_id || source_app FROM call_auto_record_state;"),
        cell("SELECT id FROM call_recording;") + "Calendar");
    EXPECT_EQ(after(15), "Watching calendar for eligible meetings.");
}

TEST_F(AutoRecordTest, whatAPersonStoppedOrARestartBrokeOffIsNotRecordedAgain)
{
    automatic->setEnabled(true);
    plan({ meeting("Weekly", 61, 3600), meeting("Overlapping", 300, 7200) });
    automatic->refresh();
    EXPECT_EQ(after(0), "Watching calendar for eligible meetings.");
    EXPECT_EQ(after(15), "Starting auto-record for Weekly.");
    (void)after(15);
    recorder->stop();
    EXPECT_EQ(after(15), "Already handled Weekly for this calendar event.");
    EXPECT_EQ(state(), "stopped|Recording stopped before the scheduled auto-stop.");
    EXPECT_EQ(after(3630), "Starting auto-record for Overlapping.") << "it waited, and still runs";
    (void)after(15);
    recorder->stopForQuit();
    launch();
    EXPECT_EQ(automatic->statusText(), "Previous auto-record for Overlapping was interrupted.");
    EXPECT_EQ(after(15), "Already handled Overlapping for this calendar event.");
    EXPECT_EQ(rows().size(), 2);

    m_clock.advance(seconds(7200));
    plan({ meeting("Third", 0, 600) });
    start("by hand");
    EXPECT_EQ(after(15), "Waiting for the running recording to end before recording Third.");
    recorder->stop();
    EXPECT_EQ(after(15), "Starting auto-record for Third.");
    plan({});
    EXPECT_EQ(after(3600), "Recording a calendar meeting that is no longer in the current mirror.");
    EXPECT_TRUE(recorder->isRecording());
}

TEST_F(AutoRecordTest, aMeetingAppIsWaitedForAndABrowserHasToRecord)
{
    CallSettings settings(*recorder, *automatic);
    settings.setAutoRecord(true);
    settings.setRequireMeetingApp(true);
    programs.running = { { "firefox-esr", "" }, { "gedit", "" } };
    programs.sound = { { "firefox-esr", "Firefox", true, false } };
    plan({ meeting("Weekly", 0, 600) });
    EXPECT_EQ(after(15), "Waiting for a meeting app before recording Weekly.");
    programs.running.append(RunningProgram { "electron", "us.zoom.Zoom" });
    programs.sound.first().records = true;
    EXPECT_EQ(after(15), "Starting auto-record for Weekly.");
    const QList<MeetingAppCandidate> apps { { "org.mozilla.firefox", "Firefox" }, { "us.zoom.Zoom", "Zoom" } };
    EXPECT_EQ(automatic->runningMeetingApps(), apps) << "who uses the microphone comes first";
    EXPECT_EQ(
        table("SELECT source_app, source_bundle_id FROM call_recording;"), QStringList("Firefox|org.mozilla.firefox"));
    programs.sound.clear();
    EXPECT_EQ(meetingApps(programs, false), apps);
    EXPECT_EQ(meetingApps(programs, true), QList { apps.last() });
}

TEST_F(AutoRecordTest, theRuleIsKeptPerWorkspaceWithinItsLimits)
{
    CallSettings settings(*recorder, *automatic);
    automatic->setStartLeadSeconds(5000);
    automatic->setStopGraceSeconds(-1);
    EXPECT_EQ(table("SELECT id, workspace_id, start_lead_seconds, stop_grace_seconds FROM call_recording_rule;"),
        QStringList("calendar-default|local|600|0"));
    EXPECT_EQ(settings.lead() + ' ' + settings.grace(), "600 0");
    automatic->setStartLeadSeconds(45);
    EXPECT_EQ(settings.leads().value(1), (Choice { "45", "45 seconds before" }));
    EXPECT_EQ(settings.leads().value(2), (Choice { "60", "1 minute before" }));

    m_db->exec("UPDATE call_recording_rule SET workspace_id='other';");
    automatic->setEnabled(true);
    EXPECT_EQ(table("SELECT workspace_id, enabled FROM call_recording_rule ORDER BY workspace_id;"),
        QStringList({ "local|1", "other|0" }));
}

TEST_F(AutoRecordTest, theSettingsReadAndWriteWhatTheRecorderUses)
{
    CallSettings settings(*recorder, *automatic);
    const QSignalSpy changed(&settings, &CallSettings::changed);
    EXPECT_FALSE(settings.autoRecord());
    EXPECT_EQ(settings.autoRecordText(), "Auto-record is off.");
    settings.setAutoRecord(true);
    EXPECT_TRUE(settings.autoRecord());
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(settings.autoRecordText(), "Watching calendar for eligible meetings.");
    EXPECT_FALSE(settings.requireMeetingApp());
    const QString hint = "Such as Zoom, Teams or Signal; a browser counts while it uses the microphone.";
    EXPECT_EQ(settings.requireMeetingAppHint(), hint);
    programs.running = { { "ZOOM", "" }, { "", "org.signal.Signal" }, { "gedit", "" } };
    settings.setRequireMeetingApp(true);
    EXPECT_TRUE(settings.requireMeetingApp());
    EXPECT_EQ(settings.requireMeetingAppHint(), hint + " Now: Signal, Zoom.");
    settings.setLead("120");
    settings.setGrace("0");
    EXPECT_EQ(settings.lead() + ' ' + settings.grace(), "120 0");
    EXPECT_EQ(settings.leads().size(), 5) << "it is one of them";
    EXPECT_EQ(settings.leads().first(), (Choice { "0", "At its start" }));
    EXPECT_EQ(settings.graces().first(), (Choice { "0", "At its end" }));
    EXPECT_EQ(settings.graces().value(1), (Choice { "60", "1 minute after" }));
    EXPECT_EQ(settings.graces().value(2), (Choice { "120", "2 minutes after" }));
    EXPECT_FALSE(settings.systemAudio());
    settings.setSystemAudio(true);
    EXPECT_TRUE(settings.systemAudio());
    EXPECT_EQ(settings.systemAudioStatus(), "System audio will be captured when a sound output is available.");
    settings.setSystemAudio(false);
    EXPECT_EQ(settings.systemAudioStatus(), "System audio capture is off.");
    settings.setAutoRecord(false);
    EXPECT_EQ(settings.requireMeetingAppHint(), hint) << "nobody looks for them";

    auto before = changed.count();
    EXPECT_FALSE(settings.alsoOnBattery() || settings.codexAllowed());
    settings.setAlsoOnBattery(true);
    settings.setCodexAllowed(true);
    EXPECT_TRUE(settings.alsoOnBattery() && settings.codexAllowed());
    EXPECT_EQ(changed.count(), before + 2);
    says["mic"] = speech({ { 0, 1000, "hello" } });
    lumo.model.willAnswer(QString("Summary: hello."));
    start("old");
    const QString sound = folder() + "/mic.m4a";
    recorder->stop();
    m_clock.setNowMs(m_clock.nowMs() + 8LL * 24 * 3600 * 1000);
    before = changed.count();
    settings.setKept("8");
    settings.setKept("0");
    EXPECT_EQ(changed.count(), before) << "no choice, and no change";
    settings.setKept("30");
    EXPECT_EQ(settings.kept(), "30");
    EXPECT_GT(changed.count(), before);
    EXPECT_TRUE(QFile::exists(sound));
    settings.setKept("7");
    EXPECT_FALSE(QFile::exists(sound)) << "at once";
    EXPECT_EQ(settings.keeping().size(), 5);
}

TEST_F(AutoRecordTest, withoutACalendarOrADatabaseNothingIsRecorded)
{
    automatic->setEnabled(true);
    plan({ meeting("Weekly", 0, 600) });
    m_db->exec("ALTER TABLE call_auto_record_state RENAME TO away;");
    EXPECT_EQ(after(15), "Weekly is not recorded: the database cannot be written.");
    EXPECT_FALSE(recorder->isRecording());
    m_db->exec("ALTER TABLE away RENAME TO call_auto_record_state;");
    source.given = CalendarAccess::None;
    calendar.refresh();
    EXPECT_EQ(after(15), "Connect Calendar before auto-record can watch meetings.");
    source.given = CalendarAccess::Full;
    calendar.refresh();
    CalendarEntry early = meeting("Early", -60, 600);
    CalendarEntry whole = meeting("Whole", -120, 600);
    whole.allDay = true;
    plan({ meeting("Weekly", 0, 600), early, whole, meeting("Over", -600, 600) });
    EXPECT_EQ(after(15), "Starting auto-record for Early.") << "the first of those that run";
}
