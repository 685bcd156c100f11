#pragma once

#include "Platform/Linux/Services.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/SpeechRecogniser.h"
#include "Platform/ToolRunner.h"
#include "Support/FakeAudioPlayer.h"
#include "Support/RealDecoder.h"
#include "Voice/VoiceServices.h"

namespace corvane {

/// Voice services with the real recognisers, decoder and speech tools. Only playback is faked.
struct RealVoice {
    RealVoice(const MachineFacts& machine, UserDefaults& defaults, Scheduler& clock, const QString& applicationSupport)
        : gate(machine)
        , services({ decoder.decoder, *models, *basic, gate, defaults, clock, applicationSupport, *tools, reader })
    {
    }

    RealDecoder decoder;
    std::unique_ptr<ProcessLauncher> launcher = makeProcessLauncher(decoder.scheduler);
    std::unique_ptr<SpeechRecogniser> models = makeModelRecogniser(*launcher);
    std::unique_ptr<SpeechRecogniser> basic = makeBasicRecogniser(*launcher);
    std::unique_ptr<ToolRunner> tools = makeToolRunner();
    FakeAudioPlayer reader;
    LocalAIAvailability gate;
    VoiceServices services;
};

}
