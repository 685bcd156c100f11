#pragma once

#include <cstdint>

namespace corvane::terminal {

using StyleId = uint32_t;

/// A cell of the grid in 8 bytes. All zero is blank: never written, or erased, in the default style.
///
///     bits 0-20   code point, or the number of a cluster
///     bit  21     it is a cluster
///     bits 22-23  CellPart
///     bits 32-63  style
class Cell {
public:
    enum class Part : uint8_t {
        Narrow,
        WideHead,
        WideTail, ///< the right half of the cell to the left
        /// An unused last column, because a wide character did not fit; with text, a wide character in a terminal with
        /// one column.
        Filler
    };

    constexpr Cell() = default;
    static constexpr Cell character(char32_t point, StyleId style, Part part = Part::Narrow)
    {
        return Cell(point | uint32_t(part) << partShift | uint64_t(style) << styleShift);
    }
    static constexpr Cell cluster(uint32_t number, StyleId style, Part part)
    {
        return Cell(number | clusterBit | uint32_t(part) << partShift | uint64_t(style) << styleShift);
    }
    static constexpr Cell erased(StyleId style) { return character(0, style); }

    constexpr uint64_t bits() const { return m_bits; }
    constexpr uint32_t content() const { return m_bits & contentMask; }
    constexpr bool isCluster() const { return m_bits & clusterBit; }
    constexpr Part part() const { return Part((m_bits >> partShift) & 3); }
    constexpr StyleId style() const { return StyleId(m_bits >> styleShift); }
    constexpr bool hasText() const { return m_bits & (contentMask | clusterBit); } ///< a cluster may have the number 0
    constexpr bool isFiller() const { return part() == Part::Filler && !hasText(); }
    constexpr bool isSqueezed() const { return part() == Part::Filler && hasText(); }
    constexpr bool isBlank() const { return uint32_t(m_bits) == 0; }
    constexpr Cell withStyle(StyleId style) const { return Cell(uint32_t(m_bits) | uint64_t(style) << styleShift); }
    constexpr Cell withPart(Part part) const
    {
        return Cell((m_bits & ~(uint64_t(3) << partShift)) | uint64_t(part) << partShift);
    }
    constexpr int width() const { return part() == Part::WideHead ? 2 : part() == Part::WideTail ? 0 : 1; }

    friend constexpr bool operator==(Cell, Cell) = default;

private:
    explicit constexpr Cell(uint64_t bits)
        : m_bits(bits)
    {
    }
    static constexpr uint32_t contentMask = (1u << 21) - 1;
    static constexpr uint32_t clusterBit = 1u << 21;
    static constexpr int partShift = 22;
    static constexpr int styleShift = 32;
    uint64_t m_bits = 0;
};

static_assert(sizeof(Cell) == 8);

}
