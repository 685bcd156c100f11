#include "Terminal/Grid/TextKernels.h"

#include "Terminal/Grid/TextKernelsAvx512.h"
#include "Terminal/Text/Utf8.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace corvane::terminal {

namespace {

constexpr size_t maxLength = 4;

uint32_t loadBigEndian(const uint8_t* text)
{
    uint32_t bytes;
    std::memcpy(&bytes, text, sizeof bytes);
    return std::endian::native == std::endian::little ? std::byteswap(bytes) : bytes;
}

size_t decodeText(const uint8_t* text, uint64_t starts, char32_t* points, size_t& count)
{
    size_t at = 0;
    while (starts &= starts - 1) {
        const auto next = size_t(std::countr_zero(starts));
        const size_t length = next - at;
        if (length > maxLength)
            break;
        const uint32_t bytes = loadBigEndian(text + at) >> (32 - 8 * length);
        const uint32_t point
            = ((bytes & 0x7f) | (bytes >> 2 & 0xfc0) | (bytes >> 4 & 0x3f000) | (bytes >> 6 & 0x1c0000))
            & utf8Forms.valueMask[length];
        const bool isLead = (bytes & utf8Forms.leadMask[length]) == utf8Forms.lead[length];
        const bool isInRange = point - utf8Forms.first[length] <= utf8Forms.span[length];
        const bool isSurrogate = point - 0xd800 < 0x800;
        if (!isLead | !isInRange | isSurrogate)
            break;
        points[count++] = point;
        at = next;
    }
    return at;
}

/// Each character gets a right half, which the next one overwrites unless it was wide.
void placeText(Cell* cells, const char32_t* points, size_t count, uint64_t wide, StyleId style)
{
    Cell* const end = cells + count + std::popcount(wide);
    const Cell behind = *end;
    for (size_t i = 0; i < count; ++i) {
        const bool isWide = wide >> i & 1;
        cells[0] = Cell::character(points[i], style, isWide ? Cell::Part::WideHead : Cell::Part::Narrow);
        cells[1] = Cell::character(0, style, Cell::Part::WideTail);
        cells += isWide ? 2 : 1;
    }
    *end = behind;
}

PackedText packText(const Cell* cells, size_t count, char* to)
{
    PackedText packed;
    for (; packed.cells < count && !cells[packed.cells].isCluster(); ++packed.cells) {
        const Cell cell = cells[packed.cells];
        const uint64_t counts = cell.part() != Cell::Part::WideTail;
        const size_t length = encodeUtf8(cell.content(), to + packed.bytes);
        const size_t bit = packed.characters & 63;
        packed.wide |= uint64_t(cell.part() == Cell::Part::WideHead) << bit;
        packed.two |= uint64_t(length > 1) << bit;
        packed.three |= uint64_t(length > 2) << bit;
        packed.four |= uint64_t(length > 3) << bit;
        packed.bytes += counts ? length : 0;
        packed.characters += counts;
    }
    return packed;
}

size_t shapesOf(const PackedText& text, ShapeRun* runs)
{
    const auto changes = [](uint64_t bits) {
        return bits ^ bits << 1;
    };
    uint64_t begins = changes(text.wide) | changes(text.two) | changes(text.three) | changes(text.four) | 1;
    size_t count = 0;
    for (size_t from = 0; from < text.characters; ++count) {
        begins &= begins - 1;
        const size_t next = std::min(text.characters, size_t(std::countr_zero(begins)));
        const auto has = [from](uint64_t bits) {
            return uint8_t(bits >> from & 1);
        };
        runs[count] = { uint8_t(1 + has(text.wide)), uint8_t(1 + has(text.two) + has(text.three) + has(text.four)),
            uint16_t(next - from) };
        from = next;
    }
    return count;
}

}

TextKernels TextKernels::portable()
{
    return { .decode = decodeText, .place = placeText, .pack = packText, .shapes = shapesOf };
}

const TextKernels& TextKernels::instance()
{
    static const TextKernels kernels = hasTextAvx512() ? textKernelsAvx512() : portable();
    return kernels;
}

}
