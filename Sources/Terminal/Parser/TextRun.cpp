#include "Terminal/Parser/TextRun.h"

#include "Terminal/Grid/Kernels.h"
#include "Terminal/Grid/TextKernels.h"

#include <cstring>

namespace corvane::terminal {

namespace {

constexpr size_t blockSize = TextKernels::most;
constexpr size_t maxLength = 4;

/// The positions where a long run of ASCII starts.
uint64_t longRuns(uint64_t bits)
{
    static_assert(TextRun::longAscii == 16);
    for (int shift = 1; shift < 16; shift *= 2)
        bits &= bits >> shift;
    return bits;
}

}

size_t TextRun::decode(const uint8_t* text, size_t size, Ascii ascii)
{
    const Kernels& kernels = Kernels::instance();
    const TextKernels& textKernels = TextKernels::instance();
    size_t taken = 0;
    while (taken < size && maxPoints - count >= TextKernels::most) {
        const uint8_t* block = text + taken;
        uint8_t padded[blockSize + TextKernels::readAhead];
        if (size - taken < sizeof padded) {
            std::memset(padded, 0, sizeof padded);
            std::memcpy(padded, block, size - taken);
            block = padded;
        }
        const ByteKinds kinds = kernels.kinds(block);
        const uint64_t stops = kinds.controls | (ascii == Ascii::Taken ? longRuns(kinds.ascii) : kinds.ascii);
        // The first stop is kept: it marks the end of the last character.
        const uint64_t starts = kinds.starts & (stops ^ (stops - 1));
        if (!(starts & 1))
            break;
        const size_t step = textKernels.decode(block, starts, points, count);
        taken += step;
        if (step + maxLength < blockSize)
            break;
    }
    return taken;
}

}
