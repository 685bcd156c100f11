#include "Terminal/Text/CodePoint.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace corvane::terminal {

namespace {

struct Range {
    char32_t first;
    char32_t last;
    uint8_t bits;
};

constexpr Range ranges[] = {
#include "Terminal/Text/UnicodeRanges.inc"
};

}

const CodePointTable& CodePointTable::instance()
{
    static const CodePointTable table;
    return table;
}

CodePointTable::CodePointTable()
{
    std::memset(m_blocks, CodePoint().bits, sizeof m_blocks);
    std::vector<uint8_t> points(0x110000, CodePoint().bits);
    for (const Range& range : ranges)
        std::fill(points.begin() + range.first, points.begin() + range.last + 1, range.bits);
    std::map<std::string, uint16_t> known; // the start of each block
    for (size_t block = 0; block < std::size(m_beginOfBlock); ++block) {
        const uint8_t* const first = points.data() + block * 256;
        if (block > 0 && std::memcmp(first, first - 256, 256) == 0) {
            m_beginOfBlock[block] = m_beginOfBlock[block - 1];
            continue;
        }
        const std::string bytes(first, first + 256);
        const auto [entry, isNew] = known.try_emplace(bytes, uint16_t(known.size() * 256));
        if (isNew)
            std::memcpy(m_blocks + entry->second, bytes.data(), 256);
        m_beginOfBlock[block] = entry->second;
    }
}

}
