#pragma once

#include <cstddef>
#include <cstdint>

namespace corvane::terminal {

/// A classification of 64 bytes; the first is in the lowest bit.
struct ByteKinds {
    uint64_t starts = 0; ///< all except UTF-8 continuation bytes
    uint64_t ascii = 0;
    uint64_t controls = 0; ///< C0 and DEL
};

/// The few loops that touch every byte, in the widest form that the processor supports.
struct Kernels {
    static const Kernels& instance();

    /// The length of the run of printable ASCII (0x20 to 0x7e) at `text`.
    size_t (*printable)(const uint8_t* text, size_t size);
    ByteKinds (*kinds)(const uint8_t* text);
    /// Converts bytes to cells with `high` in their upper half.
    void (*widen)(uint64_t* cells, const uint8_t* text, size_t count, uint64_t high);
    /// Extracts the low byte of each cell.
    void (*narrow)(uint8_t* text, const uint64_t* cells, size_t count);
    /// The cells whose upper half differs from the next one's; the last cell is not compared. At most 65 cells.
    uint64_t (*lastOfStyle)(const uint64_t* cells, size_t count);
};

}
