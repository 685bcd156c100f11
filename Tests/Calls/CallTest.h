#pragma once

#include "Calls/CallRecorder.h"

#include "Calls/CallNotes.h"
#include "Calls/CallSummarizer.h"
#include "Calls/CallTurns.h"
#include "Calls/RecordedCalls.h"
#include "Foundation/BackgroundQueue.h"
#include "Platform/AppPaths.h"
#include "Store/Work/CallWrites.h"
#include "Support/FakeCallAudio.h"
#include "Support/FakeLanguageModel.h"
#include "Support/FakeMicrophone.h"
#include "Support/StoreTest.h"
#include "Voice/SpeechModelStore.h"

#include <QDir>

namespace corvane {

using Outcomes = QHash<QString, TranscriptionOutcome>;

inline std::unexpected<SpeechTranscriberError> silence()
{
    return std::unexpected(SpeechTranscriberError { .kind = SpeechTranscriberError::Kind::EmptyTranscript });
}

class CallTest : public StoreTest {
protected:
    CallTest()
    {
        open();
        m_db->exec("INSERT INTO contact(id, workspace_id, display_name, updated_at)"
                   " VALUES('ct:1', 'local', 'Ana Ruiz', 1);");
        recorded.emplace(*m_db);
        summarizer.emplace(lumo.ai, m_defaults);
        processor.emplace(
            *m_db, *summarizer, [this](TranscriptionRequest request) { return hear(std::move(request)); }, models);
        recorder.emplace(CallRecorder::Surroundings { *recorded, *processor, microphone, audio, sleep, lumo.machine,
            m_defaults, m_clock, m_home.paths(), background });
    }

    QCoro::Task<TranscriptionOutcome> hear(TranscriptionRequest request)
    {
        const QString track = QFileInfo(request.audioPath).baseName();
        heard.append(request.model ? track + u' ' + request.model->id() : track);
        const auto later = arrivals.value(track);
        if (arrivals.contains(track))
            co_await later;
        co_return says.value(track, TranscriptionOutcome(silence()));
    }

    static TranscriptionOutcome speech(const QList<SpeechSegment>& segments)
    {
        QStringList texts;
        for (const SpeechSegment& segment : segments)
            texts.append(segment.text);
        return SpeechTranscriptResult { texts.join(u' '), basicRecogniserSpec(), segments };
    }

    void start(const QString& title, const CallRecordingContext& context = {})
    {
        recorder->start(title, context);
        microphone.answer(MicrophoneAccess::Granted);
    }

    QString folder() const
    {
        return QFileInfo(m_db->scalar("SELECT mic_audio_path FROM call_recording;").value_or("")).path();
    }
    QStringList rows()
    {
        return table("SELECT title, processing_status, processing_error FROM call_recording ORDER BY "
                     "started_at, id;");
    }

    FakeMicrophone microphone;
    FakeCallAudio audio;
    FakeSleepInhibitor sleep;
    FakeLumo lumo;
    Outcomes says;
    QHash<QString, Arrival<bool>> arrivals; ///< tracks whose transcript arrives later
    QStringList heard;
    SpeechModelStore models { m_home.paths().applicationSupport, m_defaults, m_clock };
    std::optional<RecordedCalls> recorded;
    std::optional<CallSummarizer> summarizer;
    std::optional<CallProcessor> processor;
    BackgroundQueue background;
    std::optional<CallRecorder> recorder;
};

}
