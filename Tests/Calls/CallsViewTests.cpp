#include "Calls/CallsView.h"
#include "Foundation/Literals.h"

#include "CallTest.h"
#include "Calls/CallExport.h"
#include "Calls/CallSettings.h"
#include "Support/Await.h"
#include "Support/Environment.h"
#include "Support/FakeAudioPlayer.h"
#include "Support/Rows.h"

#include <QSignalSpy>

using namespace corvane;

namespace {

class CallsViewTest : public CallTest {
protected:
    CallsViewTest()
    {
        says["system"] = speech({ { 1000, 4000, "we ship on Friday" }, { 9000, 9500, "bye" } });
        says["mic"] = speech({ { 5000, 8000, "Ana Ruiz, send the offer" } });
        m_clock.advance(std::chrono::hours(24 * 365));
    }

    /// Records a call on both sides, with transcript and summary.
    QString record(const QString& title)
    {
        recorder->setSystemAudioEnabled(true);
        lumo.model.willAnswer(u"**Summary:** Ship.\n\nDecisions:\n- Friday\nFollow-up: Send the offer."_s);
        start(title);
        const QString id = recorder->activeCallId();
        m_clock.advance(Milliseconds(10'000));
        recorder->stop();
        m_clock.advance(Milliseconds(200));
        return id;
    }

    FakeAudioPlayer microphonePlayer;
    FakeAudioPlayer systemPlayer;
    CallPlayer player { microphonePlayer, systemPlayer };
    RecordingView recordingView { *recorder };
    CallsView calls { recordingView, player };
    CallPage& page = *calls.page();
    CallTranscriptView& transcript = *page.transcript();
    CallSoundView& sound = *page.sound();
    CallProcessing& processing = *page.processing();
    CallProposalsView& proposals = *page.proposals();
};

}

TEST_F(CallsViewTest, aCallShowsWhoSaidWhatAndPlaysFromThere)
{
    const QString id = record("Weekly");
    calls.select(id);
    EXPECT_EQ(column(*calls.rows(), "detail"), QStringList("0:10 · Ready"));
    EXPECT_EQ(column(*transcript.turns(), "speaker"), QStringList({ "Meeting audio", "Me", "Meeting audio" }));
    EXPECT_EQ(column(*transcript.turns(), "time"), QStringList({ "0:01", "0:05", "0:09" }));
    const QList<CallSummarySection> sections { { "Summary", "Ship." }, { "Decisions", "- Friday" },
        { "Follow-up", "Send the offer." } };
    EXPECT_EQ(page.summary(), sections);
    EXPECT_EQ(transcript.currentTurn(), -1);

    calls.setQuery("OFFER");
    EXPECT_EQ(transcript.firstHit(), 1);
    EXPECT_EQ(player.positionText(), "0:05") << "a search leads to its second";
    player.toggle();
    EXPECT_EQ(microphonePlayer.position, 5000);
    EXPECT_EQ(systemPlayer.position, 5000);
    EXPECT_EQ(transcript.currentTurn(), 1);
    microphonePlayer.moveTo(9100);
    EXPECT_EQ(transcript.currentTurn(), 2);
    player.setMicrophoneOn(false);
    EXPECT_EQ(microphonePlayer.current, AudioPlayer::State::Idle);
    EXPECT_EQ(player.state(), "playing");
    player.setSystemOn(false);
    EXPECT_TRUE(player.microphoneOn()) << "one side is always heard";
    player.toggle();
    EXPECT_EQ(player.state(), "paused");

    calls.setQuery("nothing like it");
    EXPECT_TRUE(await([&] { return calls.rows()->rowCount() == 0; }));
    EXPECT_EQ(calls.emptyTitle(), "No calls match “nothing like it”");
    EXPECT_EQ(calls.emptyText(), "Titles, people, transcripts and summaries are searched.");
    const QSignalSpy changed(&calls, &CallsView::changed);
    calls.setQuery("nothing like it");
    EXPECT_EQ(changed.size(), 0);
    calls.setQuery({});
    EXPECT_EQ(calls.rows()->rowCount(), 1);
}

TEST_F(CallsViewTest, whatACallProposesIsAppliedOnItsPage)
{
    const QString id = record("Weekly");
    calls.select(id);
    ASSERT_EQ(proposals.rows().size(), 2);
    m_db->run("UPDATE crm_update_proposal SET payload_json='{}' WHERE kind='task';", {});
    proposals.applyProposal("proposal:" + id + ":task");
    EXPECT_EQ(page.doneText(), "It was changed in the meantime. Please read it again.");
    EXPECT_EQ(proposals.rows().value(0).state + proposals.rows().value(1).state, "");
    EXPECT_EQ(page.personName(), "") << "a person links it";
    page.people()->begin(id);
    page.people()->choose("ct:1");
    EXPECT_EQ(page.personName(), "Ana Ruiz");
    proposals.applyProposal("proposal:" + id + ":note");
    EXPECT_TRUE(cell("SELECT body FROM contact_note;").startsWith("Call note: Weekly"));
    proposals.rejectProposal("proposal:" + id + ":task");
    EXPECT_EQ(proposals.rows().value(0).state + proposals.rows().value(1).state, "AppliedRejected");
    EXPECT_TRUE(recorded->pendingProposals().isEmpty());
    page.rename("  Renamed ");
    m_clock.advance(Milliseconds(200));
    EXPECT_EQ(column(*calls.rows(), "title"), QStringList("Renamed"));
    page.setNotes("bring the invoice");
    EXPECT_TRUE(callAsText(*fetchCall(*m_db, id), readTurns(folder()), readCallNotes(folder()))
            .contains("NOTES\n\nbring the invoice\n\nTRANSCRIPT\n\n[0:01] Meeting audio: we ship"));
    const QString files = folder();
    const QByteArray home = QFile::encodeName(m_home.path("home"));
    const Environment places { { "HOME", home }, { "XDG_CONFIG_HOME", home } };
    page.exportSound();
    EXPECT_TRUE(await([&] { return page.doneText().startsWith("Saved to "); })) << page.doneText().toStdString();
    EXPECT_EQ(QDir(m_home.path("home/Downloads")).entryList(QDir::Files),
        QStringList({ "Renamed - mic.m4a", "Renamed - system.m4a" }));
    page.remove();
    EXPECT_FALSE(QDir(files).exists());
    EXPECT_EQ(calls.rows()->rowCount(), 0);
}

TEST_F(CallsViewTest, whatACrashLeftIsMadeWholeAndTranscribed)
{
    lumo.model.setUnavailable("none");
    recorder->setSystemAudioEnabled(true);
    start("Weekly");
    const QString id = recorder->activeCallId();
    audio.microphone->loudness = 0.5;
    m_clock.advance(seconds(1));
    EXPECT_FALSE(readWaveform(folder()).isEmpty()) << "it is kept while the call runs";
    recorder->stopForQuit();
    m_db->run("UPDATE call_recording SET processing_status='recording', ended_at=NULL, duration_ms=NULL;", {});
    calls.select(id);
    EXPECT_EQ(page.stateText(), "Interrupted");
    EXPECT_EQ(processing.label(), "Recover");
    processing.start();
    EXPECT_EQ(audio.repaired.size(), 2);
    EXPECT_EQ(page.stateText(), "Transcribed, no summary");
    EXPECT_GE(cell("SELECT ended_at - started_at FROM call_recording;").toLongLong(), 0);
    EXPECT_EQ(processing.label(), "Transcribe again");
    EXPECT_TRUE(processing.models().isEmpty()) << "there is nothing to choose";
    SpeechInstalledModel small;
    small.spec
        = { .repository = "whisper.cpp", .revision = "abc", .variant = "ggml-small.bin", .displayName = "Small" };
    small.localPath = m_home.paths().defaultsFile;
    models.add(small);
    EXPECT_EQ(processing.models().first(), (Choice { "whisper.cpp:ggml-small.bin", "Small" }));
    EXPECT_EQ(processing.model(), processing.models().last().id) << "which made this transcript";
    const Arrival<bool> later;
    arrivals.insert("mic", later);
    processing.startWith("whisper.cpp:ggml-small.bin");
    EXPECT_EQ(page.stateText(), "Transcribing");
    EXPECT_TRUE(processing.busy());
    later.arrive(true);
    EXPECT_FALSE(processing.busy());
    EXPECT_EQ(heard.last(), "mic whisper.cpp:ggml-small.bin");
}

TEST_F(CallsViewTest, theFirstRecordingAsksAndTheSourceIsChosen)
{
    RecordingView& recording = recordingView;
    audio.applications = { { "zoom", "Zoom", true, true }, { "mpv", "mpv", false, false } };
    recording.findSources();
    EXPECT_EQ(recording.sources().last(), (Choice { "zoom", "Microphone and Zoom" }));
    recording.setSource("zoom");
    EXPECT_EQ(recording.sourceText(), "Record: microphone and Zoom");
    QSignalSpy asked(&recording, &RecordingView::consentAsked);
    recording.start();
    EXPECT_EQ(asked.size(), 1);
    EXPECT_FALSE(recording.recording());
    recording.acceptConsent();
    microphone.answer(MicrophoneAccess::Granted);
    EXPECT_EQ(audio.recordedBinary, "zoom");
    EXPECT_EQ(calls.selected(), recorder->activeCallId()) << "it is opened";
    EXPECT_EQ(processing.label(), "");
    page.setNotes("bring tea");
    recording.mark();
    EXPECT_EQ(readCallNotes(folder()).text, "bring tea") << "a mark leaves what is noted";
    EXPECT_EQ(sound.markTimes(), QStringList("0:00"));
    recording.discard();
    recording.start();
    EXPECT_EQ(asked.size(), 1) << "once";
}

TEST_F(CallsViewTest, soundThatIsOldEnoughGoesAndItsTextStays)
{
    record("old");
    m_defaults.setInteger("Corvane.calls.keepSoundDays", 30);
    EXPECT_EQ(deleteOldSound(*recorder), 0);
    m_clock.advance(std::chrono::hours(24 * 31));
    EXPECT_EQ(deleteOldSound(*recorder), 2);
    calls.select(cell("SELECT id FROM call_recording;"));
    EXPECT_FALSE(sound.hasSound());
    EXPECT_EQ(sound.noSoundText(), "The sound of this call is no longer here.");
    EXPECT_EQ(transcript.turns()->rowCount(), 3);
}

TEST_F(CallsViewTest, everyStateOfACallHasItsWordAndItsAction)
{
    EXPECT_EQ(calls.emptyTitle(), "No call recordings yet.");
    EXPECT_TRUE(calls.emptyText().startsWith("Record a call, and its transcript"));
    calls.step(1);
    EXPECT_EQ(calls.selected(), "") << "there is none";
    EXPECT_EQ(calls.proposalsText(), "No pending call CRM proposals.");
    const QString first = record("First");
    EXPECT_EQ(calls.proposalsText(), "2 pending proposals ready for review.");
    m_clock.advance(seconds(60));
    const QString second = record("Second");
    calls.step(-9);
    EXPECT_EQ(calls.selected(), second) << "the newest stands first";
    calls.step(1);
    calls.step(1);
    EXPECT_EQ(calls.selected(), first);
    const auto shown = [&](const QString& status, const QString& error) {
        m_db->run("UPDATE call_recording SET processing_status=?, processing_error=?;", { status, error });
        recorded->refresh();
        m_clock.advance(Milliseconds(200));
        return column(*calls.rows(), "detail").value(1).section(" · ", 1) + '|' + processing.label() + '|'
            + page.errorText();
    };
    EXPECT_EQ(shown("ready", {}), "Ready|Transcribe again|");
    EXPECT_EQ(shown("cancelled", "Taken back."), "Discarded|Transcribe now|Taken back.");
    EXPECT_EQ(shown("interrupted", {}), "Interrupted|Recover|");
    EXPECT_EQ(shown("failed", "No speech was found."), "No speech|Transcribe now|No speech was found.");
    EXPECT_EQ(shown("failed", "No model."), "No transcript|Transcribe now|No model.");
    EXPECT_EQ(shown("recorded", {}), "Not transcribed|Transcribe now|");
    EXPECT_EQ(summarySections("They met.\n**Action items:** Send\n- one\nWARNING:\n").size(), 2)
        << "without the empty one";
    EXPECT_EQ(summarySections("They met.\n**Action items:** Send\n- one"),
        (QList<CallSummarySection> { { "Summary", "They met." }, { "Action items", "Send\n- one" } }));
}

TEST_F(CallsViewTest, aCallIsRenamedSavedAndNeverRemovedWhileItRuns)
{
    const QString id = record("Weekly");
    calls.select(id);
    page.rename("  ");
    EXPECT_EQ(page.title(), "Weekly");
    EXPECT_TRUE(page.deleteQuestion().startsWith("“Weekly” is removed with its sound"));
    EXPECT_TRUE(page.whenText().endsWith(" · 0:10"));
    const QByteArray home = QFile::encodeName(m_home.path("home"));
    const Environment places { { "HOME", home }, { "XDG_CONFIG_HOME", home } };
    page.exportText();
    EXPECT_EQ(page.doneText(), "Saved to " + m_home.path("home/Downloads/Weekly.txt"));
    page.exportSubtitles();
    EXPECT_TRUE(m_home.read("home/Downloads/Weekly.vtt").startsWith("WEBVTT"));
    start("Other");
    const QString other = recorder->activeCallId();
    EXPECT_EQ(calls.selected(), other);
    EXPECT_EQ(page.emptySummaryText(), "The summary follows the transcript.");
    page.exportSubtitles();
    EXPECT_EQ(page.doneText(), transcript.emptyText()) << "there is nothing to save yet";
    page.remove();
    EXPECT_EQ(column(*calls.rows(), "title"), QStringList({ "Other", "Weekly" }));
    recorder->cancelActiveRecording();
    page.remove();
    EXPECT_EQ(column(*calls.rows(), "title"), QStringList("Weekly"));
}

TEST_F(CallsViewTest, theRecordingSaysWhatRunsAndWhyItDoesNot)
{
    RecordingView& recording = recordingView;
    lumo.model.setUnavailable("none");
    EXPECT_EQ(recording.source() + '|' + recording.sourceText(), "none|Record: microphone only");
    recording.setSource("gone");
    EXPECT_EQ(recording.source(), "none");
    recording.setSource("everything");
    EXPECT_EQ(recording.sourceText(), "Record: microphone and all sound");
    recorder->setApplication("zoom");
    EXPECT_EQ(recording.sourceText(), "Record: zoom") << "which plays nothing now";
    EXPECT_EQ(recording.marksText() + recording.aloudText() + recording.title(), "");
    recorder->start("Weekly", {});
    microphone.answer(MicrophoneAccess::Missing);
    EXPECT_EQ(recording.errorText(), "No microphone was found.");
    start("Weekly", { .startMode = "calendar_auto" });
    EXPECT_EQ(recording.errorText(), "") << "it runs now";
    EXPECT_EQ(recording.aloudText(), "Recording Weekly");
    EXPECT_TRUE(recording.beganByItself());
    const QSignalSpy elapsed(&recording, &RecordingView::elapsed);
    audio.microphone->loudness = 0.5;
    for (const double at : { 0.4, 0.9, 1.1 }) {
        audio.microphone->seconds = at;
        m_clock.advance(Milliseconds(300));
    }
    EXPECT_EQ(elapsed.size(), 1) << "once a second";
    EXPECT_EQ(recording.elapsedText(), "0:01");
    EXPECT_GT(recording.level(), 0);
    recording.mark();
    EXPECT_EQ(recording.marksText(), "1 mark");
    recording.mark();
    EXPECT_EQ(recording.marksText(), "2 marks");
    audio.microphone->source = false;
    m_clock.advance(Milliseconds(300));
    EXPECT_EQ(recording.warningText(), "") << "it may still come";
    audio.microphone->seconds = 4;
    m_clock.advance(Milliseconds(300));
    EXPECT_TRUE(recording.warningText().startsWith("The microphone is disconnected."));
    Q_EMIT audio.microphone->failed("no room.");
    EXPECT_FALSE(recording.recording());
    EXPECT_EQ(recording.errorText(), "The recording could not be written and was stopped: no room.");
    EXPECT_EQ(recording.level(), 0);
    EXPECT_EQ(sleep.held, 0);
    const QSignalSpy ticked(&recording, &RecordingView::ticked);
    start("By hand");
    EXPECT_GT(ticked.size(), 0) << "at once";
    EXPECT_FALSE(recording.beganByItself());
}

TEST_F(CallsViewTest, theSoundShowsItsMarksAndPlaysFromThere)
{
    recorder->setSystemAudioEnabled(true);
    lumo.model.willAnswer(u"Summary: Ship."_s);
    start("Weekly");
    const QString id = recorder->activeCallId();
    for (const double at : { 2.5, 30.0 }) {
        audio.microphone->seconds = at;
        audio.microphone->loudness = 1;
        m_clock.advance(Milliseconds(300));
        recorder->mark();
    }
    EXPECT_EQ(sound.noSoundText(), "The sound can be played after the recording.");
    m_clock.advance(Milliseconds(9400));
    recorder->stop();
    m_clock.advance(Milliseconds(200));
    calls.select(id);
    EXPECT_TRUE(sound.hasSound());
    EXPECT_EQ(sound.noSoundText(), "");
    EXPECT_EQ(sound.markTimes(), QStringList({ "0:02", "0:30" }));
    const double all = double(player.durationMs());
    EXPECT_EQ(all, 10'000);
    EXPECT_EQ(sound.marks(), QList<double>({ 0.25, 1 })) << "no mark is beyond the end";
    EXPECT_EQ(sound.microphoneBars().size(), 240);
    EXPECT_EQ(sound.systemBars().size(), 240);
    EXPECT_EQ(sound.microphoneBars().last(), 1);
    sound.playMark(-1);
    sound.playMark(2);
    EXPECT_EQ(player.state(), "idle");
    sound.playMark(0);
    EXPECT_EQ(player.state() + player.positionText(), "playing0:02");
    transcript.playTurn(-1);
    transcript.playTurn(3);
    EXPECT_EQ(player.positionText(), "0:02");
    transcript.playTurn(1);
    EXPECT_EQ(player.positionText(), "0:05");
    calls.select({});
    EXPECT_EQ(sound.noSoundText(), "") << "no call is shown";
    EXPECT_TRUE(sound.marks().isEmpty());
}

TEST_F(CallsViewTest, aSummaryIsAskedForBeforeItLeavesTheComputer)
{
    const QString id = record("Weekly");
    calls.select(id);
    EXPECT_FALSE(processing.asksCodex());
    const auto notReady = [&](const QString& status, const QString& error) {
        m_db->run("UPDATE call_recording SET processing_status=?, processing_error=?;", { status, error });
        recorded->refresh();
        m_clock.advance(Milliseconds(200));
        return processing.asksCodex();
    };
    const QString waits = "Summary not ready: Corvane may not send transcripts to the Codex CLI yet.";
    EXPECT_FALSE(notReady("failed", waits));
    EXPECT_FALSE(notReady("transcribed", "Summary not ready."));
    EXPECT_TRUE(notReady("transcribed", waits));
    EXPECT_TRUE(processing.codexQuestion().startsWith("No model runs on this computer."));
    const QSignalSpy refused(&processing, &CallProcessing::refused);
    processing.answerCodex(false);
    EXPECT_EQ(refused.count(), 1);
    EXPECT_EQ(summarizer->codexAllowed(), false);
    EXPECT_EQ(rows(),
        QStringList("Weekly|transcribed|Summary not ready: Corvane may not send transcripts to the Codex CLI."));
    m_clock.advance(Milliseconds(200));
    EXPECT_FALSE(processing.asksCodex());
    lumo.model.willAnswer(u"Summary: Again."_s);
    processing.answerCodex(true);
    EXPECT_EQ(summarizer->codexAllowed(), true);
    EXPECT_EQ(refused.count(), 1);
    EXPECT_EQ(cell("SELECT processing_status FROM call_recording;"), "ready");
    EXPECT_EQ(cell("SELECT summary FROM call_summary;"), "Summary: Again.");
}

TEST(CallPlayers, bothSidesStayTogetherAndOneIsAlwaysHeard)
{
    FakeAudioPlayer mine;
    FakeAudioPlayer theirs;
    CallPlayer player(mine, theirs);
    EXPECT_EQ(player.durationText(), "");
    player.open("mic", "system", 10'000);
    EXPECT_TRUE(player.hasBoth());
    player.seek(0.5);
    EXPECT_EQ(player.positionText() + QString::number(mine.played.size()), "0:050") << "only where it will start";
    player.toggle();
    EXPECT_EQ(mine.played + theirs.played, (QStringList { "mic", "system" }));
    EXPECT_EQ(mine.position + theirs.position, 10'000);
    EXPECT_EQ(player.actionText(), "Pause");
    EXPECT_EQ(player.progress(), 0.5);
    player.skip(-60);
    EXPECT_EQ(mine.position + theirs.position, 0);
    player.skip(60);
    EXPECT_EQ(theirs.position, 10'000) << "no further than the end";
    player.startFrom(1000);
    EXPECT_EQ(player.positionText(), "0:10") << "it plays already";
    player.toggle();
    EXPECT_EQ(mine.current, AudioPlayer::State::Paused);
    EXPECT_EQ(theirs.current, AudioPlayer::State::Paused);
    EXPECT_EQ(player.actionText(), "Play");
    player.playFrom(2000);
    EXPECT_EQ(player.state() + player.positionText(), "playing0:02");
    player.setMicrophoneOn(false);
    theirs.moveTo(3000);
    player.setMicrophoneOn(true);
    EXPECT_EQ(mine.played.size(), 2);
    EXPECT_EQ(mine.position, 3000) << "where the other one is";
    theirs.duration = 12'000;
    EXPECT_EQ(player.durationText(), "0:12") << "the longer one counts";
    player.setSystemOn(false);
    mine.enter(AudioPlayer::State::Failed);
    EXPECT_EQ(player.problem(), "This machine has no sound output.");
    player.setSystemOn(true);
    player.setMicrophoneOn(true);
    for (const auto& [first, second, ms] :
        { std::tuple { "mic", "other", 10'000 }, { "new", "other", 10'000 }, { "new", "other", 9000 } }) {
        player.playFrom(1000);
        player.open(first, second, ms);
        EXPECT_EQ(player.state(), "idle") << "another sound";
        player.playFrom(1000);
        player.open(first, second, ms);
        EXPECT_EQ(player.state(), "playing") << "the same one goes on";
    }
    player.open("other", {}, 0);
    EXPECT_TRUE(player.systemOn());
    EXPECT_FALSE(player.hasBoth());
    EXPECT_EQ(player.state() + player.problem(), "idle");
}
