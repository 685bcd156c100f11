#pragma once

#include <bitset>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvane::terminal {

/// A search pattern: literal text, or a regular expression with . [] () | * + ? {} ^ $ and \d \w \s. Matching takes one
/// pass over the text, whatever the expression.
class Pattern {
public:
    enum class Kind : uint8_t { Literal, Regex };
    enum class Case : uint8_t { Insensitive, Sensitive };

    /// Nothing if the expression is malformed or too large.
    static std::optional<Pattern> make(std::string_view text, Kind kind, Case sensitivity);

    /// The first match at or after `from`, as begin and end in bytes; the longest of those that begin there.
    std::optional<std::pair<size_t, size_t>> find(std::string_view text, size_t from = 0);

    bool isLiteral() const { return !m_isRegex; }

private:
    using ByteSet = std::bitset<256>;
    struct Node {
        enum class Kind : uint8_t { Bytes, Split, Begin, End, Match };
        Kind kind = Kind::Match;
        uint32_t next = 0;
        uint32_t other = 0; // for Split
        ByteSet bytes {};
    };
    struct State {
        std::vector<uint32_t> nodes;
        bool matchesAtEnd = false; // if the text ends here
    };
    class Compiler;

    Pattern() = default;
    std::optional<std::pair<size_t, size_t>> findLiteral(std::string_view text, size_t from) const;
    /// DFA states, created on demand. Those of a search start a new attempt at each byte; those of a match do not. A
    /// state is identified by the start of its row in `next`, with a bit set if the text matches so far.
    struct Table {
        bool anywhere;
        uint32_t starts[2] {}; ///< at the start of a text, and within it; 0 if not known yet
        std::vector<State> states {};
        std::vector<uint32_t> next {}; ///< 256 per state
        std::map<std::vector<uint32_t>, uint32_t> known {};
    };

    bool mayMatch(std::string_view text, size_t from);
    std::optional<size_t> matchAt(std::string_view text, size_t from);
    void addNode(std::vector<uint32_t>& nodes, uint32_t node, bool atBegin, bool atEnd) const;
    uint32_t stateOf(Table& table, std::vector<uint32_t> nodes) const;
    static void clear(Table& table);
    uint32_t startState(Table& table, bool atBegin) const;
    uint32_t step(Table& table, uint32_t state, uint8_t byte) const;

    std::string m_literal;
    bool m_fold = false;
    bool m_isRegex = false;
    std::vector<Node> m_nodes;
    uint32_t m_start = 0;
    Table m_search { true };
    Table m_match { false };
};

}
