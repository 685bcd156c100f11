#pragma once

#include "Calls/CallKeys.h"
#include "Calls/CallPlayer.h"
#include "Calls/CallRecorder.h"
#include "Calls/CallSettings.h"
#include "Calls/CallSummarizer.h"
#include "Calls/MeetingAutoRecorder.h"
#include "Calls/RecordedCalls.h"
#include "Calls/RecordingView.h"

namespace corvane {

/// What records calls and works on them, built once and wired to each other.
struct CallServices {
    /// What the machine gives; all of it outlives the services.
    struct Machine {
        Microphone& microphone;
        CallAudio& audio;
        SleepInhibitor& sleep;
        const MachineFacts& facts;
        AudioPlayer& microphonePlayer; ///< for nothing but calls, as the next
        AudioPlayer& systemPlayer;
        BackgroundQueue& background;
        GlobalShortcuts* shortcuts = nullptr;
    };

    CallServices(RecordedCalls& recorded, CalendarStore& calendar, LumoAI& ai, CallProcessor::Transcribe transcribe,
        const SpeechModelStore& models, const Machine& machine, UserDefaults& defaults, Scheduler& scheduler,
        const AppPaths& paths)
        : summarizer(ai, defaults)
        , processor(recorded.db(), summarizer, std::move(transcribe), models)
        , recorder({ recorded, processor, machine.microphone, machine.audio, machine.sleep, machine.facts, defaults,
              scheduler, paths, machine.background })
        , recording(recorder)
        , keys(recording, machine.shortcuts, defaults)
        , autoRecorder({ calendar, recorder, lookForPrograms(machine.audio, machine.background) })
        , player(machine.microphonePlayer, machine.systemPlayer)
        , settings(recorder, autoRecorder)
    {
    }

    CallSummarizer summarizer;
    CallProcessor processor;
    CallRecorder recorder;
    RecordingView recording;
    CallKeys keys;
    MeetingAutoRecorder autoRecorder;
    CallPlayer player;
    CallSettings settings;
};

}
