#include "Terminal/Text/Pattern.h"

#include "Terminal/Text/PatternCompiler.h"

#include <algorithm>
#include <bit>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace corvane::terminal {

namespace {

// A table with more states is discarded and started again.
constexpr size_t maxStates = 512;
constexpr uint32_t rowSize = 256;
constexpr uint32_t unknown = 0;
constexpr uint32_t dead = rowSize;
constexpr uint32_t matchBit = 1u << 31;

uint32_t rowOf(uint32_t state)
{
    return state & ~matchBit;
}

/// Known, alive and no match: the next byte can be looked at.
bool isOrdinary(uint32_t state)
{
    return state > dead && state < matchBit;
}

char lower(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? char(letter + 32) : letter;
}

bool isLetter(char byte)
{
    return byte >= 'a' && byte <= 'z';
}

}

std::optional<Pattern> Pattern::make(std::string_view text, Kind kind, Case sensitivity)
{
    if (text.empty())
        return {};
    Pattern pattern;
    pattern.m_fold = sensitivity == Case::Insensitive;
    pattern.m_isRegex = kind == Kind::Regex;
    if (kind == Kind::Literal) {
        pattern.m_literal = text;
        if (pattern.m_fold)
            std::ranges::transform(pattern.m_literal, pattern.m_literal.begin(), lower);
        return pattern;
    }
    if (!Compiler(pattern, text).run())
        return {};
    return pattern;
}

std::optional<std::pair<size_t, size_t>> Pattern::find(std::string_view text, size_t from)
{
    if (!m_isRegex)
        return findLiteral(text, from);
    if (!mayMatch(text, from))
        return {};
    for (size_t begin = from; begin <= text.size(); ++begin) {
        if (begin < text.size() && (uint8_t(text[begin]) & 0xc0) == 0x80)
            continue;
        const auto end = matchAt(text, begin);
        if (end && *end > begin)
            return std::pair(begin, *end);
    }
    return {};
}

std::optional<std::pair<size_t, size_t>> Pattern::findLiteral(std::string_view text, size_t from) const
{
    const size_t length = m_literal.size();
    if (text.size() < length)
        return {};
    const auto matches = [&](size_t at) {
        for (size_t i = 0; i < length; ++i) {
            if ((m_fold ? lower(text[at + i]) : text[at + i]) != m_literal[i])
                return false;
        }
        return true;
    };
    const size_t last = text.size() - length;
    size_t at = from;
#if defined(__x86_64__)
    // The rest is compared only if the first and last letters match.
    const char first = m_literal.front();
    const char final = m_literal.back();
    const __m128i firstFold = _mm_set1_epi8(m_fold && isLetter(first) ? 0x20 : 0);
    const __m128i finalFold = _mm_set1_epi8(m_fold && isLetter(final) ? 0x20 : 0);
    for (; at + 16 <= last + 1; at += 16) {
        const auto load = [&](size_t place) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + place));
        };
        const __m128i begins = _mm_cmpeq_epi8(_mm_or_si128(load(at), firstFold), _mm_set1_epi8(first));
        const __m128i ends = _mm_cmpeq_epi8(_mm_or_si128(load(at + length - 1), finalFold), _mm_set1_epi8(final));
        for (auto mask = unsigned(_mm_movemask_epi8(_mm_and_si128(begins, ends))); mask; mask &= mask - 1) {
            const size_t place = at + size_t(std::countr_zero(mask));
            if (matches(place))
                return std::pair(place, place + length);
        }
    }
#endif
    for (; at <= last; ++at) {
        if (matches(at))
            return std::pair(at, at + length);
    }
    return {};
}

/// Follows the edges that consume no byte.
void Pattern::addNode(std::vector<uint32_t>& nodes, uint32_t node, bool atBegin, bool atEnd) const
{
    std::vector<uint32_t> open { node };
    while (!open.empty()) {
        const uint32_t next = open.back();
        open.pop_back();
        const auto place = std::ranges::lower_bound(nodes, next);
        if (place != nodes.end() && *place == next)
            continue;
        nodes.insert(place, next);
        const Node& entry = m_nodes[next];
        if (entry.kind == Node::Kind::Split) {
            open.push_back(entry.next);
            open.push_back(entry.other);
        } else if ((entry.kind == Node::Kind::Begin && atBegin) || (entry.kind == Node::Kind::End && atEnd)) {
            open.push_back(entry.next);
        }
    }
}

uint32_t Pattern::stateOf(Table& table, std::vector<uint32_t> nodes) const
{
    if (nodes.empty())
        return dead;
    const auto [entry, isNew] = table.known.try_emplace(nodes, uint32_t(table.states.size()) * rowSize);
    if (isNew) {
        const auto matches = [&](uint32_t node) {
            return m_nodes[node].kind == Node::Kind::Match;
        };
        State state;
        std::vector<uint32_t> atEnd;
        for (const uint32_t node : nodes)
            addNode(atEnd, node, false, true);
        state.matchesAtEnd = std::ranges::any_of(atEnd, matches);
        if (std::ranges::any_of(nodes, matches))
            entry->second |= matchBit;
        state.nodes = std::move(nodes);
        table.states.push_back(std::move(state));
        table.next.resize(table.next.size() + rowSize);
    }
    return entry->second;
}

void Pattern::clear(Table& table)
{
    table.known.clear();
    table.states.assign(2, {}); // unknown, dead
    table.next.assign(2 * rowSize, unknown);
    table.starts[0] = table.starts[1] = unknown;
}

uint32_t Pattern::startState(Table& table, bool atBegin) const
{
    if (table.states.size() > maxStates || table.states.empty())
        clear(table);
    uint32_t& start = table.starts[atBegin ? 0 : 1];
    if (start == unknown) {
        std::vector<uint32_t> nodes;
        addNode(nodes, m_start, atBegin, false);
        start = stateOf(table, std::move(nodes));
    }
    return start;
}

uint32_t Pattern::step(Table& table, uint32_t state, uint8_t byte) const
{
    if (const uint32_t next = table.next[rowOf(state) + byte]; next != unknown)
        return next;
    std::vector<uint32_t> nodes;
    for (const uint32_t node : table.states[rowOf(state) / rowSize].nodes) {
        if (m_nodes[node].kind == Node::Kind::Bytes && m_nodes[node].bytes[byte])
            addNode(nodes, m_nodes[node].next, false, false);
    }
    if (table.anywhere)
        addNode(nodes, m_start, false, false);
    if (table.states.size() > maxStates) {
        // Restart the table with the current state.
        clear(table);
        return stateOf(table, std::move(nodes));
    }
    const uint32_t next = stateOf(table, std::move(nodes));
    table.next[rowOf(state) + byte] = next;
    return next;
}

bool Pattern::mayMatch(std::string_view text, size_t from)
{
    Table& table = m_search;
    uint32_t state = startState(table, from == 0);
    for (size_t at = from; at < text.size() && !(state & matchBit);) {
        const uint32_t* const rows = table.next.data();
        uint32_t next = state;
        for (; isOrdinary(next) && at < text.size(); ++at)
            next = rows[(state = next) + uint8_t(text[at])];
        if (next == unknown)
            next = step(table, state, uint8_t(text[at - 1]));
        else if (next == dead)
            return false;
        state = next;
    }
    return state & matchBit || table.states[state / rowSize].matchesAtEnd;
}

std::optional<size_t> Pattern::matchAt(std::string_view text, size_t from)
{
    Table& table = m_match;
    std::optional<size_t> end;
    uint32_t state = startState(table, from == 0);
    for (size_t at = from; state != dead; ++at) {
        if (state & matchBit)
            end = at;
        if (at == text.size()) {
            if (table.states[rowOf(state) / rowSize].matchesAtEnd)
                end = at;
            break;
        }
        state = step(table, state, uint8_t(text[at]));
    }
    return end;
}

}
