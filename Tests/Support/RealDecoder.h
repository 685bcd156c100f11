#pragma once

#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Decode/SeccompMediaDecoder.h"
#include "Support/Places.h"

namespace corvane {

/// The program's decoder with its real child process. The time limits are generous, since the machine may be busy.
inline std::unique_ptr<SeccompMediaDecoder> makeRealDecoder(Scheduler& scheduler)
{
    constexpr Milliseconds patience { 60'000 };
    return std::make_unique<SeccompMediaDecoder>(scheduler, QStringLiteral(CORVANE_TEST_PROGRAMS "/DecoderProgram"),
        SeccompMediaDecoder::Limits { .perFile = patience, .start = patience });
}

struct RealDecoder {
    SystemScheduler scheduler;
    const std::unique_ptr<SeccompMediaDecoder> made = makeRealDecoder(scheduler);
    SeccompMediaDecoder& decoder = *made;
};

}
