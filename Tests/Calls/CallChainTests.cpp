#include "CallTest.h"
#include "Foundation/Literals.h"

#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Models/LoopbackLanguageModel.h"
#include "Platform/Linux/Services.h"
#include "Platform/PipeWireServer.h"
#include "Platform/SoundServer.h"
#include "Store/Approvals/CrmProposals.h"
#include "Support/LoopbackWeb.h"
#include "Support/RealVoice.h"
#include "Support/SpeechModelFile.h"

#include <QJsonArray>

using namespace corvane;

namespace {

const QString spoken = u"/usr/share/pocketsphinx/test/data/librivox/sense_and_sensibility_01_austen_64kb-"_s;

/// Plays a recording on the sink as a person or a loudspeaker would, and waits until it ends.
bool speaks(const QString& number, const QString& sink)
{
    QProcess player;
    player.start("paplay", { "--device=" + sink, spoken + number + ".wav" });
    return player.waitForStarted() && await([&] { return player.state() == QProcess::NotRunning; });
}

/// The whole chain from a call to its notes: the sound server, the recognisers and a model behind its server.
class CallChainTest : public CallTest {
protected:
    CallChainTest()
    {
        lumo.machine.now.physicalMemoryBytes = 16ULL << 30;
        web.answer("/api/version", LoopbackWeb::json({ { "version", "0.5.7" } }));
        web.answer("/api/tags", LoopbackWeb::json({ { "models", QJsonArray { QJsonObject { { "name", "m:1b" } } } } }));
        web.answer("/api/chat",
            LoopbackWeb::json({ { "message",
                                    QJsonObject { { "role", "assistant" },
                                        { "content", "Summary: They read aloud.\nFollow-up: Send the book." } } },
                { "done", true }, { "done_reason", "stop" } }));
    }

    /// Waits twice as long as `await`: recognition is slow on a busy machine.
    static bool awaitWork(const std::function<bool()>& isDone) { return await(isDone) || await(isDone); }

    void recordBothSides()
    {
        chain.setSystemAudioEnabled(true);
        chain.start("Reading", { .contactId = "ct:1" });
        ASSERT_TRUE(await([&] { return chain.isRecording() && chain.elapsed() > 0.5; }));
        EXPECT_TRUE(speaks("0880", "speaker") && speaks("0890", "room"));
        chain.stop();
        ASSERT_TRUE(awaitWork([&] { return chain.phase().kind == CallPhase::Kind::Ready; }))
            << chain.phase().message.toStdString();
        EXPECT_EQ(cell("SELECT capture_mode || ' ' || processing_status FROM call_recording;"), "mic_and_system ready");
        const QList<CallTurn> turns = readTurns(folder());
        ASSERT_GE(turns.size(), 2);
        EXPECT_EQ(turns.first().speaker, meetingSpeaker);
        EXPECT_EQ(turns.last().speaker, meSpeaker);
        EXPECT_GT(turns.last().startMs, turns.first().startMs);
        EXPECT_EQ(transcriptText(*m_db, cell("SELECT id FROM call_recording;")), textOf(turns));
        EXPECT_TRUE(QString::fromUtf8(web.requests().last().body).contains(turns.last().text));
    }

    SystemScheduler scheduler;
    LoopbackWeb web;
    LoopbackLanguageModel server { scheduler, { web.base() } };
    AIServices ai { server, lumo.machine, lumo.tools, {}, scheduler };
    CallSummarizer notes { ai.ai, m_defaults };
    RealVoice voice { lumo.machine, m_defaults, scheduler, m_home.paths().applicationSupport };
    CallProcessor work { *m_db, notes,
        [this](TranscriptionRequest request) { return voice.services.speech.transcribe(std::move(request)); },
        voice.services.store };
    const std::unique_ptr<Microphone> realMicrophone = makeMicrophone(scheduler);
    const std::unique_ptr<CallAudio> realAudio = makeCallAudio(scheduler);
    CallRecorder chain { { *recorded, work, *realMicrophone, *realAudio, sleep, lumo.machine, m_defaults, scheduler,
        m_home.paths(), background } };
};

}

TEST_F(CallChainTest, whatBothSidesSayBecomesNotesAndAppliedChanges)
{
    const SoundServer sound(Microphones::One);
    ASSERT_TRUE(SoundServer::control({ "unload-module", "module-sine" }));
    recordBothSides();
    for (const CRMUpdateProposal& proposal : fetchCRMUpdateProposals(*m_db, "pending", 10))
        EXPECT_EQ(applyCRMUpdateProposal(*m_db, proposal.id, proposalHash(proposal)), Decided::Taken);
    EXPECT_TRUE(cell("SELECT body FROM contact_note WHERE contact_id='ct:1';").contains("Summary: They read aloud."));
    EXPECT_EQ(cell("SELECT title FROM crm_task;"), "Follow-up: Send the book.");

    SpeechInstalledModel model;
    model.spec
        = { .repository = "whisper.cpp", .revision = "noise", .variant = "ggml-noise.bin", .displayName = "Noise" };
    model.localPath = m_home.path("ggml-noise.bin");
    m_home.write("ggml-noise.bin", speechModelFile());
    voice.services.store.add(model);
    const auto call = fetchCall(*m_db, cell("SELECT id FROM call_recording;"));
    work.process({ call->id, call->captureMode, call->micPath, call->systemPath, model.spec });
    ASSERT_TRUE(awaitWork([&] { return !work.isProcessing(call->id); }));
    EXPECT_TRUE(cell("SELECT text FROM call_transcript;").contains(heardWord)) << "the other way to a transcript";
    EXPECT_TRUE(cell("SELECT model FROM call_transcript;").startsWith("whisper.cpp:ggml-noise.bin"));
}

TEST_F(CallChainTest, pipeWireIsRecordedAsWell)
{
    const PipeWireServer sound;
    recordBothSides();
}
