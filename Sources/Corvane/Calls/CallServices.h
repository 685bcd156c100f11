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

/// The services that record and process calls, built once and connected.
struct CallServices {
    /// All references outlive the services.
    struct Speech {
        CallProcessor::Transcribe transcribe;
        const SpeechModelStore& models;
    };
    struct Program {
        UserDefaults& defaults;
        Scheduler& scheduler;
        const AppPaths& paths;
        BackgroundQueue& background;
    };
    struct Machine {
        Microphone& microphone;
        CallAudio& audio;
        SleepInhibitor& sleep;
        const MachineFacts& facts;
        AudioPlayer& microphonePlayer; ///< used only for calls, as the next
        AudioPlayer& systemPlayer;
        GlobalShortcuts* shortcuts = nullptr;
    };

    CallServices(RecordedCalls& recorded, CalendarStore& calendar, LumoAI& ai, const Speech& speech,
        const Program& program, const Machine& machine)
        : summarizer(ai, program.defaults)
        , processor(recorded.db(), summarizer, speech.transcribe, speech.models)
        , recorder({ recorded, processor, machine.microphone, machine.audio, machine.sleep, machine.facts,
              program.defaults, program.scheduler, program.paths, program.background })
        , recording(recorder)
        , keys(recording, machine.shortcuts, program.defaults)
        , autoRecorder({ calendar, recorder, lookForPrograms(machine.audio, program.background) })
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
