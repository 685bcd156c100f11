#pragma once

#include <cstddef>
#include <cstdint>

namespace corvane::terminal {

/// What each of 64 bytes is, the first in the lowest bit.
struct ByteKinds {
    uint64_t starts = 0; ///< all but the second and later bytes of a UTF-8 character
    uint64_t ascii = 0;
    uint64_t controls = 0; ///< C0 and DEL
};

/// The few loops that touch every byte, in the widest form that this processor has.
struct Kernels {
    static const Kernels& instance();

    /// How many of the `size` bytes from `text` on are printable ASCII (0x20 to 0x7e), up to the first that is not.
    size_t (*printable)(const uint8_t* text, size_t size);
    ByteKinds (*kinds)(const uint8_t* text);
    /// Bytes to cells: each cell is its byte with `high` in the upper half.
    void (*widen)(uint64_t* cells, const uint8_t* text, size_t count, uint64_t high);
    /// The low byte of each cell.
    void (*narrow)(uint8_t* text, const uint64_t* cells, size_t count);
    /// Which of the cells differ in their upper half from the next one; the last has none. At most 65 cells.
    uint64_t (*lastOfStyle)(const uint64_t* cells, size_t count);
};

}
