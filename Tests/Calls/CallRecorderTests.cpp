#include "CallTest.h"
#include "Calls/SystemAudioCapture.h"
#include "Foundation/Literals.h"

using namespace corvane;

namespace {

using Kind = CallPhase::Kind;

}

TEST_F(CallTest, aCallOfBothSidesBecomesNotesAndProposals)
{
    recorder->setSystemAudioEnabled(true);
    recorder->setApplication("zoom");
    says["system"] = speech({ { 0, 2000, "we can ship on Friday" }, { 9000, 9500, "bye" } });
    says["mic"] = speech({ { 300, 2100, "can ship on friday" }, { 3000, 4000, "Ana Ruiz, send the offer" } });
    lumo.model.willAnswer(u"Summary: Ship.\n- Follow-up: Send the offer."_s);
    start("  Weekly  ");
    recorder->start("second", {});
    EXPECT_EQ(rows(), QStringList("Weekly|recording|-"));
    EXPECT_EQ(recorder->statusText(), "Recording Weekly. Mic and system audio stay on this computer.");
    EXPECT_EQ(audio.recordedBinary, "zoom");
    EXPECT_EQ(sleep.held, 1);
    audio.microphone->seconds = 4.5;
    audio.microphone->loudness = 0.5;
    m_clock.advance(Milliseconds(300));
    EXPECT_EQ(recorder->elapsed(), 4.5);
    recorder->mark();
    const QString files = folder();
    EXPECT_TRUE(files.startsWith(m_home.paths().applicationSupport + "/media/calls/")) << files.toStdString();
    recorder->stop();
    EXPECT_EQ(sleep.held, 0);
    EXPECT_EQ(rows(), QStringList("Weekly|ready|-"));
    EXPECT_EQ(recorder->phase(), CallPhase { Kind::Ready });
    EXPECT_TRUE(recorder->activeCallId().isEmpty());
    const QString text = "Meeting audio: we can ship on Friday\nMe: Ana Ruiz, send the offer\nMeeting audio: bye";
    EXPECT_EQ(table("SELECT segment_index, speaker_label, speaker_kind, track, text, model FROM call_transcript;"),
        QStringList("0|Meeting audio|mixed|system|" + text + u'|' + transcriptModel(basicRecogniserSpec())));
    EXPECT_EQ(readTurns(files).value(1), (CallTurn { 3000, 4000, "Me", "Ana Ruiz, send the offer" }));
    EXPECT_TRUE(webVtt(readTurns(files)).contains("00:00:03.000 --> 00:00:04.000\n<v Me>Ana Ruiz, send the offer\n"));
    EXPECT_EQ(readCallNotes(files).marksMs, QList<qint64> { 4500 });
    EXPECT_FLOAT_EQ(readWaveform(files).microphone(1).value(0), 127.F / 255.F);
    EXPECT_TRUE(lumo.model.asked.value(0).prompt.startsWith("Summarize Weekly.\n\nReturn exactly:\nSummary: 1-2"));
    EXPECT_TRUE(lumo.model.asked.value(0).prompt.endsWith("Transcript:\n" + text));
    EXPECT_EQ(table("SELECT kind, contact_id, title, confidence FROM crm_update_proposal ORDER BY kind;"),
        QStringList({ "note|ct:1|Add call note|1.0", "task|ct:1|Create follow-up task|1.0" }));
    EXPECT_EQ(recorded->pendingProposals().size(), 2);
    EXPECT_TRUE(cell("SELECT payload_json FROM crm_update_proposal WHERE kind='task';")
            .contains(R"("title":"Follow-up: Send the offer.")"));
    EXPECT_EQ(findCallRecordings(*m_db, "local", "send the OFFER", 10).size(), 1);
    EXPECT_TRUE(findCallRecordings(*m_db, "local", "100%", 10).isEmpty());
}

TEST_F(CallTest, withoutTheSystemsSoundTheMicrophoneGoesOn)
{
    recorder->setSystemAudioEnabled(true);
    audio.noOutput = "no server";
    lumo.model.setUnavailable(u"none"_s);
    says["mic"] = speech({ { 0, 1000, "hello" } });
    start(" ");
    EXPECT_EQ(recorder->activeTitle(), "Manual recording");
    EXPECT_EQ(recorder->systemAudioStatus(),
        "System audio unavailable; mic fallback active. System audio capture requires a sound output (no server).");
    recorder->stop();
    EXPECT_EQ(cell("SELECT capture_mode || ' ' || system_audio_path FROM call_recording;"), "mic_only ");
    EXPECT_EQ(table("SELECT speaker_label, track, text FROM call_transcript;"), QStringList("Me|mic|hello"));
    EXPECT_EQ(cell("SELECT processing_status FROM call_recording;"), "transcribed") << "there is no summary";
    EXPECT_EQ(recorder->phase(), CallPhase { Kind::Ready });
    EXPECT_EQ(cell("SELECT COUNT(*) FROM crm_update_proposal WHERE title LIKE 'Link contact%' OR kind='task';"), "2");

    audio.noOutput.clear();
    start("second");
    m_clock.advance(Milliseconds(1));
    audio.system->failing = "no sound came.";
    recorder->stop();
    EXPECT_EQ(recorder->systemAudioStatus(),
        "System audio failed; using mic recording. System audio capture failed: no sound came.");
    EXPECT_EQ(heard, QStringList({ "mic", "mic" }));
}

TEST_F(CallTest, anEarlierCallNeverChangesTheOneThatRecords)
{
    says["mic"] = speech({ { 0, 1000, "hello" } });
    const Arrival<bool> later;
    arrivals.insert("mic", later);
    lumo.model.willAnswer(u"Summary: hello."_s);
    start("first");
    renameCall(*m_db, recorder->activeCallId(), "renamed");
    recorder->stop();
    m_clock.advance(Milliseconds(5));
    start("second");
    const QString second = recorder->activeCallId();
    later.arrive(true);
    EXPECT_EQ(rows(), QStringList({ "renamed|ready|-", "second|recording|-" }));
    EXPECT_TRUE(lumo.model.asked.value(0).prompt.startsWith("Summarize renamed."));
    EXPECT_EQ(recorder->phase(), CallPhase { Kind::Recording });
    EXPECT_EQ(recorder->activeCallId(), second);
}

TEST_F(CallTest, whatEndsARecordingLeavesItsWord)
{
    recorder->start("refused", {});
    microphone.answer(MicrophoneAccess::Denied);
    EXPECT_EQ(recorder->phase(), (CallPhase { Kind::Failed, "Microphone access is denied." }));
    start("cancelled");
    const QString files = folder();
    recorder->cancelActiveRecording();
    EXPECT_EQ(QDir(files).entryList(QDir::Files), QStringList());
    m_clock.advance(Milliseconds(1));
    start("quit");
    recorder->stopForQuit();
    m_clock.advance(Milliseconds(1));
    start("silent");
    recorder->stop();
    m_clock.advance(Milliseconds(1));
    lumo.machine.now.freeDiskBytes = 400'000'000;
    start("full");
    m_clock.advance(Milliseconds(300));
    EXPECT_EQ(recorder->warningText(), "The disk is almost full. The recording stops when it is full.");
    lumo.machine.now.freeDiskBytes = 90'000'000;
    m_clock.advance(Milliseconds(6000));
    EXPECT_FALSE(recorder->isRecording());
    start("no room");
    EXPECT_EQ(recorder->statusText(), "The disk is full. Make room for the recording.");
    const QString silent = describe(SpeechTranscriberError { .kind = SpeechTranscriberError::Kind::EmptyTranscript });
    EXPECT_EQ(rows(),
        QStringList({ "cancelled|cancelled|User cancelled before processing.",
            "quit|interrupted|Corvane quit while recording.", "silent|failed|" + silent, "full|failed|" + silent }));
    EXPECT_TRUE(recorded->pendingProposals().isEmpty());
}

TEST_F(CallTest, aLongTranscriptIsSummarisedInPiecesOfWhichOneMayFail)
{
    const QString turn = "Ana: " + QString(5990, u'x');
    says["mic"] = speech({ { 0, 1000, turn + "\nBo: " + QString(5990, u'y') } });
    lumo.model.willAnswer(u"notes of one"_s);
    lumo.model.willFail(u"no words"_s);
    lumo.model.willAnswer(u"Summary: both."_s);
    start("long");
    recorder->stop();
    ASSERT_EQ(lumo.model.asked.size(), 3);
    EXPECT_TRUE(
        lumo.model.asked[1].prompt.startsWith("Summarize segment 2 of 2 for map-reduce call notes.\n\nSegment"));
    const QString input = lumo.model.asked[2].prompt.section("Transcript:\n", 1);
    EXPECT_TRUE(input.startsWith("Segment 1/2:\nnotes of one\n\nSegment 2/2:\n[unsummarized segment] LumoAI chunk "
                                 "summary failed: no words\nBo: yyy"));
    EXPECT_EQ(input.section("no words\n", 1).size(), 1200);

    m_db->run("UPDATE crm_update_proposal SET status='applied' WHERE kind='note';", {});
    lumo.model.willAnswer(u"again"_s);
    lumo.model.willAnswer(u"again"_s);
    lumo.model.willAnswer(u"next: call Bo"_s);
    processor->summarizeAgain(cell("SELECT id FROM call_recording;"));
    EXPECT_FALSE(cell("SELECT payload_json FROM crm_update_proposal WHERE kind='note';").contains("call Bo"));
    EXPECT_TRUE(cell("SELECT payload_json FROM crm_update_proposal WHERE kind='task';").contains("call Bo"));
}

TEST_F(CallTest, whatCannotBeRecordedIsSaid)
{
    const auto refused = [&] {
        start("call");
        EXPECT_FALSE(recorder->isRecording() || recorder->isStarting());
        EXPECT_EQ(sleep.held, 0);
        EXPECT_EQ(recorder->phase(), (CallPhase { Kind::Failed, recorder->statusText() }));
        return recorder->statusText();
    };
    audio.broken = true;
    EXPECT_EQ(refused(), "Could not start the microphone recorder.");
    SystemAudioCapture capture(audio);
    QString words;
    capture.start(
        m_home.path("system.m4a"), "", 0, [&](const Result<void>& started) { words = started.error().message; });
    EXPECT_EQ(words, "Could not prepare system audio writer: the file cannot be created.");
    capture.close();
    capture.cancel();
    audio.broken = false;
    m_db->exec("ALTER TABLE call_recording RENAME TO away;");
    EXPECT_EQ(refused(), "Local database is not ready.");
    m_db->exec("ALTER TABLE away RENAME TO call_recording;");
    EXPECT_EQ(rows(), QStringList());
    QDir(m_home.paths().applicationSupport + "/media/calls").removeRecursively();
    m_home.write("share/Corvane/media/calls", "a file");
    EXPECT_TRUE(
        refused().startsWith("The folder for the recording can't be created: " + m_home.paths().applicationSupport));
    QFile::remove(m_home.paths().applicationSupport + "/media/calls");
    lumo.machine.now.freeDiskBytes = 99'999'999;
    EXPECT_EQ(refused(), "The disk is full. Make room for the recording.");
    lumo.machine.now.freeDiskBytes = 100'000'000;
    start("call");
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_EQ(recorder->warningText(), "");
    m_clock.advance(Milliseconds(300));
    EXPECT_EQ(recorder->warningText(), "The disk is almost full. The recording stops when it is full.");
    lumo.machine.now.freeDiskBytes = 500'000'000;
    m_clock.advance(Milliseconds(4800));
    EXPECT_NE(recorder->warningText(), "") << "looked at every five seconds";
    m_clock.advance(Milliseconds(300));
    EXPECT_EQ(recorder->warningText(), "");
    lumo.machine.now.freeDiskBytes = -1;
    m_clock.advance(Milliseconds(6000));
    EXPECT_TRUE(recorder->isRecording()) << "it is unknown";
    recorder->cancelActiveRecording();
    EXPECT_EQ(recorder->statusText(), "Recording cancelled.");
    EXPECT_EQ(recorder->phase(), CallPhase {});
    EXPECT_EQ(sleep.held, 0);
}

TEST_F(CallTest, aCallIsSilentOnlyIfBothSidesAre)
{
    recorder->setSystemAudioEnabled(true);
    const auto error = [](const QString& words) {
        return TranscriptionOutcome(std::unexpected(SpeechTranscriberError::unavailable(words)));
    };
    const auto outcome = [&](const TranscriptionOutcome& system, const TranscriptionOutcome& mic) {
        says["system"] = system;
        says["mic"] = mic;
        m_clock.advance(Milliseconds(1));
        start("call");
        const QString id = recorder->activeCallId();
        recorder->stop();
        return table("SELECT processing_status, processing_error FROM call_recording WHERE id=?;", { id }).value(0);
    };
    const TranscriptionOutcome nothing = silence();
    EXPECT_EQ(outcome(nothing, nothing), "failed|Transcript was empty; summary skipped.");
    EXPECT_EQ(recorder->statusText(), "Transcript was empty. Summary skipped.");
    EXPECT_EQ(outcome(nothing, error("mic")), "failed|mic");
    EXPECT_EQ(outcome(error("system"), nothing), "failed|system");
    EXPECT_EQ(outcome(error("system"), error("mic")), "failed|system");
    lumo.model.willAnswer(u"Summary: hello."_s);
    EXPECT_EQ(outcome(error("system"), speech({ { 0, 1000, "hello" } })), "ready|-");
    EXPECT_EQ(readTurns(QFileInfo(cell("SELECT mic_audio_path FROM call_recording ORDER BY started_at DESC;")).path()),
        (QList<CallTurn> { { 0, 1000, "Me", "hello" } }));
    EXPECT_EQ(heard.size(), 10);
    EXPECT_EQ(sleep.held, 0);
}
