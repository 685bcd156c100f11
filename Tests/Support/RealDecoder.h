#pragma once

#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Decode/SeccompMediaDecoder.h"
#include "Support/Places.h"

namespace corvane {

/// The decoder of the program over its real child. A busy machine is no fault of a picture, so it is patient.
struct RealDecoder {
    SystemScheduler scheduler;
    SeccompMediaDecoder decoder { scheduler, QStringLiteral(CORVANE_TEST_PROGRAMS "/DecoderProgram"),
        { .perFile = Milliseconds(60'000), .start = Milliseconds(60'000) } };
};

}
