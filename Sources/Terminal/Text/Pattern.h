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

/// What is searched for: a text as it stands, or a regular expression with . [] () | * + ? {} ^ $ and
/// \d \w \s. Whether a text holds a match is told in one pass over it, whatever the expression.
class Pattern {
public:
    enum class Kind : uint8_t { Literal, Regex };
    enum class Case : uint8_t { Insensitive, Sensitive };

    /// Nothing if the expression is malformed or grows too large.
    static std::optional<Pattern> make(std::string_view text, Kind kind, Case sensitivity);

    /// The first match from `from` on, as begin and end in bytes; the longest of those that begin there.
    std::optional<std::pair<size_t, size_t>> find(std::string_view text, size_t from = 0);

    bool isLiteral() const { return !m_isRegex; }

private:
    using ByteSet = std::bitset<256>;
    struct Node {
        enum class Kind : uint8_t { Bytes, Split, Begin, End, Match };
        Kind kind = Kind::Match;
        uint32_t next = 0;
        uint32_t other = 0; // of Split
        ByteSet bytes {};
    };
    struct State {
        std::vector<uint32_t> nodes;
        bool matchesAtEnd = false; // where the text ends here
    };
    class Compiler;

    Pattern() = default;
    std::optional<std::pair<size_t, size_t>> findLiteral(std::string_view text, size_t from) const;
    /// States are made as they are met. Those of a search begin anew at each byte; those of a match do not. A state
    /// goes by where its row begins in `next`, with a bit set if the text matches so far.
    struct Table {
        bool anywhere;
        uint32_t starts[2] {}; ///< where a text begins, and within it; 0 if not yet known
        std::vector<State> states {};
        std::vector<uint32_t> next {}; ///< 256 for each state
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
