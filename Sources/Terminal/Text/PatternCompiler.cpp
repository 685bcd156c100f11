#include "Terminal/Text/PatternCompiler.h"

#include "Terminal/Text/Utf8.h"

namespace corvane::terminal {

bool Pattern::Compiler::run()
{
    const Piece whole = alternatives(0);
    if (!atEnd())
        m_failed = true;
    lead(whole, add(Node::Kind::Match));
    m_pattern.m_start = whole.begin;
    return !m_failed;
}

uint32_t Pattern::Compiler::add(Node::Kind kind, uint32_t next, uint32_t other)
{
    if (m_pattern.m_nodes.size() >= maxNodes) {
        m_failed = true;
        return 0;
    }
    m_pattern.m_nodes.push_back({ kind, next, other });
    return uint32_t(m_pattern.m_nodes.size() - 1);
}

void Pattern::Compiler::lead(const Piece& piece, uint32_t target)
{
    for (const auto& [node, other] : piece.ends)
        (other ? m_pattern.m_nodes[node].other : m_pattern.m_nodes[node].next) = target;
}

auto Pattern::Compiler::empty() -> Piece
{
    // A split whose branches lead to the same node.
    const uint32_t node = add(Node::Kind::Split);
    return { node, { { node, false }, { node, true } } };
}

auto Pattern::Compiler::bytes(const ByteSet& set) -> Piece
{
    const uint32_t node = add(Node::Kind::Bytes);
    m_pattern.m_nodes[node].bytes = set;
    return { node, { { node, false } } };
}

auto Pattern::Compiler::join(Piece first, const Piece& second) -> Piece
{
    lead(first, second.begin);
    return { first.begin, second.ends };
}

auto Pattern::Compiler::eitherOf(Piece first, Piece second) -> Piece
{
    const uint32_t node = add(Node::Kind::Split, first.begin, second.begin);
    first.begin = node;
    first.ends.insert(first.ends.end(), second.ends.begin(), second.ends.end());
    return first;
}

auto Pattern::Compiler::chain(const std::vector<ByteSet>& sets) -> Piece
{
    Piece piece = bytes(sets[0]);
    for (size_t i = 1; i < sets.size(); ++i)
        piece = join(piece, bytes(sets[i]));
    return piece;
}

namespace {

std::bitset<256> range(int first, int last)
{
    std::bitset<256> set;
    for (int byte = first; byte <= last; ++byte)
        set.set(size_t(byte));
    return set;
}

void foldCase(std::bitset<256>& set)
{
    for (size_t lower = 'a'; lower <= 'z'; ++lower) {
        const bool either = set[lower] || set[lower - 32];
        set[lower] = set[lower - 32] = either;
    }
}

}

auto Pattern::Compiler::character(char32_t point) -> Piece
{
    char encoded[4];
    const size_t length = encodeUtf8(point, encoded);
    std::vector<ByteSet> sets;
    for (size_t i = 0; i < length; ++i) {
        ByteSet set;
        set.set(uint8_t(encoded[i]));
        if (m_pattern.m_fold)
            foldCase(set);
        sets.push_back(set);
    }
    return chain(sets);
}

/// A complete character of one to four bytes.
auto Pattern::Compiler::anyCharacter() -> Piece
{
    const ByteSet more = range(0x80, 0xbf);
    Piece piece = eitherOf(chain({ range(0, 0x7f) }), chain({ range(0xc2, 0xdf), more }));
    piece = eitherOf(piece, chain({ range(0xe0, 0xef), more, more }));
    return eitherOf(piece, chain({ range(0xf0, 0xf4), more, more, more }));
}

std::optional<Pattern::ByteSet> Pattern::Compiler::classOf(char letter) const
{
    ByteSet set;
    switch (letter | 0x20) {
    case 'd':
        set = range('0', '9');
        break;
    case 'w':
        set = range('0', '9') | range('a', 'z') | range('A', 'Z') | range('_', '_');
        break;
    case 's':
        set = range(9, 13) | range(' ', ' ') | range(0, 0); // blank cells are zeros
        break;
    default:
        return {};
    }
    return letter & 0x20 ? set : ~set & range(0, 0x7f);
}

auto Pattern::Compiler::escape() -> Piece
{
    ++m_at;
    if (atEnd()) {
        m_failed = true;
        return empty();
    }
    const char letter = m_text[m_at++];
    if (const auto set = classOf(letter))
        return bytes(*set);
    return character(letter == 't' ? U'\t' : char32_t(uint8_t(letter)));
}

/// Sets contain ASCII; other characters match literally, and a negated set contains all of them that it does not name.
auto Pattern::Compiler::bracket() -> Piece
{
    ++m_at;
    const bool negated = peek() == '^';
    m_at += negated;
    ByteSet set;
    std::optional<Piece> others;
    for (bool first = true; !atEnd() && (first || peek() != ']'); first = false) {
        if (peek() == '\\' && m_at + 1 < m_text.size()) {
            const char letter = m_text[m_at + 1];
            m_at += 2;
            if (const auto named = classOf(letter))
                set |= *named;
            else
                set.set(uint8_t(letter));
            continue;
        }
        if (uint8_t(peek()) >= 0x80) {
            const size_t begin = m_at++;
            while (!atEnd() && (uint8_t(peek()) & 0xc0) == 0x80)
                ++m_at;
            const Piece piece = character(decodeUtf8(m_text.substr(begin, m_at - begin))[0]);
            others = others ? eitherOf(*others, piece) : piece;
            continue;
        }
        const uint8_t low = uint8_t(m_text[m_at++]);
        uint8_t high = low;
        if (peek() == '-' && m_at + 1 < m_text.size() && m_text[m_at + 1] != ']') {
            high = uint8_t(m_text[m_at + 1]);
            m_at += 2;
        }
        if (high < low || high >= 0x80)
            m_failed = true;
        else
            set |= range(low, high);
    }
    if (peek() != ']')
        m_failed = true;
    ++m_at;
    if (m_pattern.m_fold)
        foldCase(set);
    if (!negated)
        return others ? eitherOf(bytes(set), *others) : bytes(set);
    const ByteSet more = range(0x80, 0xbf);
    Piece piece = eitherOf(bytes(~set & range(0, 0x7f)), chain({ range(0xc2, 0xdf), more }));
    piece = eitherOf(piece, chain({ range(0xe0, 0xef), more, more }));
    return eitherOf(piece, chain({ range(0xf0, 0xf4), more, more, more }));
}

auto Pattern::Compiler::atom(int depth) -> Piece
{
    switch (peek()) {
    case '(': {
        ++m_at;
        if (m_text.substr(m_at, 2) == "?:")
            m_at += 2;
        const Piece piece = alternatives(depth + 1);
        if (peek() != ')')
            m_failed = true;
        ++m_at;
        return piece;
    }
    case '[':
        return bracket();
    case '.':
        ++m_at;
        return anyCharacter();
    case '\\':
        return escape();
    case '^':
    case '$': {
        const uint32_t node = add(m_text[m_at++] == '^' ? Node::Kind::Begin : Node::Kind::End);
        return { node, { { node, false } } };
    }
    case '*':
    case '+':
    case '?':
    case '{':
        m_failed = true;
        return empty();
    default: {
        const size_t begin = m_at++;
        while (!atEnd() && (uint8_t(peek()) & 0xc0) == 0x80)
            ++m_at;
        return character(decodeUtf8(m_text.substr(begin, m_at - begin))[0]);
    }
    }
}

/// Parses the same atom again for each possible repetition.
auto Pattern::Compiler::repeat(size_t from, size_t to, int least, int most, int depth) -> Piece
{
    Piece piece = empty();
    const int copies = most < 0 ? least + 1 : most;
    for (int i = 0; i < copies && !m_failed; ++i) {
        m_at = from;
        Piece copy = atom(depth);
        if (i >= least) {
            const bool endless = most < 0;
            const uint32_t split = add(Node::Kind::Split, copy.begin);
            if (endless) {
                lead(copy, split);
                copy.ends.clear();
            }
            copy.begin = split;
            copy.ends.emplace_back(split, true);
        }
        piece = join(piece, copy);
    }
    m_at = to;
    return piece;
}

auto Pattern::Compiler::repeated(int depth) -> Piece
{
    const size_t from = m_at;
    const size_t nodes = m_pattern.m_nodes.size();
    const Piece once = atom(depth);
    const size_t to = m_at;
    int least = 1;
    int most = 1;
    const char mark = peek();
    if (mark == '*' || mark == '+' || mark == '?') {
        least = mark == '+' ? 1 : 0;
        most = mark == '?' ? 1 : -1;
        ++m_at;
    } else if (mark == '{') {
        const size_t end = m_text.find('}', m_at);
        if (end == std::string_view::npos) {
            m_failed = true;
            return once;
        }
        const std::string_view counts = m_text.substr(m_at + 1, end - m_at - 1);
        const auto number = [&](std::string_view digits) {
            int value = 0;
            for (const char digit : digits) {
                if (digit < '0' || digit > '9' || value > maxCount)
                    m_failed = true;
                value = value * 10 + (digit - '0');
            }
            return value;
        };
        const size_t comma = counts.find(',');
        least = number(counts.substr(0, comma));
        most = comma == std::string_view::npos ? least
            : comma + 1 == counts.size()       ? -1
                                               : number(counts.substr(comma + 1));
        m_at = end + 1;
        if (m_failed || counts.empty() || least > maxCount || most > maxCount || (most >= 0 && most < least)) {
            m_failed = true;
            return once;
        }
    } else {
        return once;
    }
    const size_t after = m_at;
    m_pattern.m_nodes.resize(nodes);
    const Piece piece = repeat(from, to, least, most, depth);
    m_at = after;
    return piece;
}

auto Pattern::Compiler::sequence(int depth) -> Piece
{
    Piece piece = empty();
    while (!atEnd() && peek() != '|' && peek() != ')' && !m_failed)
        piece = join(piece, repeated(depth));
    return piece;
}

auto Pattern::Compiler::alternatives(int depth) -> Piece
{
    if (depth > maxDepth) {
        m_failed = true;
        return empty();
    }
    Piece piece = sequence(depth);
    while (peek() == '|' && !m_failed) {
        ++m_at;
        piece = eitherOf(piece, sequence(depth));
    }
    return piece;
}

}
