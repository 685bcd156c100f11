#include "CallTest.h"

#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Services.h"
#include "Platform/SoundServer.h"
#include "Support/RealVoice.h"

using namespace corvane;

namespace {

const QString spoken
    = QStringLiteral("/usr/share/pocketsphinx/test/data/librivox/sense_and_sensibility_01_austen_64kb-");

/// A voice in a room, or from the loudspeaker.
std::unique_ptr<QProcess> speak(const QString& number, const QString& sink)
{
    auto player = std::make_unique<QProcess>();
    player->start("paplay", { "--device=" + sink, spoken + number + ".wav" });
    return player;
}

}

/// The whole way with real sound: both sides are heard, recorded, told apart and recognised.
TEST_F(CallTest, whatBothSidesSayBecomesTheirWords)
{
    SoundServer server(Microphones::One);
    ASSERT_TRUE(SoundServer::control({ "unload-module", "module-sine" }));
    SystemScheduler scheduler;
    lumo.machine.now.physicalMemoryBytes = 16ULL << 30;
    const auto realMicrophone = makeMicrophone(scheduler);
    const auto realAudio = makeCallAudio(scheduler);
    RealVoice voice(lumo.machine, m_defaults, scheduler, m_home.paths().applicationSupport);
    CallProcessor realProcessor(*m_db, *summarizer,
        [&voice](TranscriptionRequest request) { return voice.services.speech.transcribe(std::move(request)); });
    CallRecorder real({ *recorded, realProcessor, *realMicrophone, *realAudio, sleep, lumo.machine, m_defaults,
        scheduler, m_home.paths() });
    lumo.model.willAnswer(QStringLiteral("Summary: they read aloud."));
    real.setSystemAudioEnabled(true);
    real.start("Reading", {});
    ASSERT_TRUE(await([&] { return real.isRecording() && real.elapsed() > 0.5; }));
    const auto theirs = speak("0880", "speaker");
    ASSERT_TRUE(theirs->waitForStarted() && await([&] { return theirs->state() == QProcess::NotRunning; }));
    const auto mine = speak("0890", "room");
    ASSERT_TRUE(mine->waitForStarted() && await([&] { return mine->state() == QProcess::NotRunning; }));
    real.stop();
    ASSERT_TRUE(await([&] { return real.phase().kind == CallPhase::Kind::Ready; }))
        << real.phase().message.toStdString();
    EXPECT_EQ(cell("SELECT capture_mode || ' ' || processing_status FROM call_recording;"), "mic_and_system ready");
    const QList<CallTurn> turns = readTurns(folder());
    ASSERT_GE(turns.size(), 2);
    EXPECT_EQ(turns.first().speaker, meetingSpeaker);
    EXPECT_EQ(turns.last().speaker, meSpeaker);
    EXPECT_GT(turns.last().startMs, turns.first().startMs);
    EXPECT_EQ(transcriptText(*m_db, cell("SELECT id FROM call_recording;")), textOf(turns));
    EXPECT_TRUE(lumo.model.asked.value(0).prompt.endsWith(textOf(turns)));
}
