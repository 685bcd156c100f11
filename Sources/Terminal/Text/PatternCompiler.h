#pragma once

#include "Terminal/Text/Pattern.h"

namespace corvane::terminal {

/// A recursive-descent parser that turns an expression into nodes, with limits on depth and size.
class Pattern::Compiler {
public:
    Compiler(Pattern& pattern, std::string_view text)
        : m_pattern(pattern)
        , m_text(text)
    {
    }

    bool run();

private:
    /// A fragment of the graph: its start, and its dangling ends.
    struct Piece {
        uint32_t begin;
        std::vector<std::pair<uint32_t, bool>> ends; // a node, and whether its second branch is the open one
    };

    Piece alternatives(int depth);
    Piece sequence(int depth);
    Piece repeated(int depth);
    Piece atom(int depth);
    Piece repeat(size_t from, size_t to, int least, int most, int depth);
    Piece character(char32_t point);
    Piece anyCharacter();
    Piece bracket();
    Piece bytes(const ByteSet& set);
    Piece chain(const std::vector<ByteSet>& sets);
    Piece eitherOf(Piece first, Piece second);
    Piece join(Piece first, const Piece& second);
    Piece empty();
    Piece escape();
    uint32_t add(Node::Kind kind, uint32_t next = 0, uint32_t other = 0);
    void lead(const Piece& piece, uint32_t target);
    std::optional<ByteSet> classOf(char letter) const;
    bool atEnd() const { return m_at >= m_text.size(); }
    char peek() const { return atEnd() ? '\0' : m_text[m_at]; }

    static constexpr size_t maxNodes = 4000;
    static constexpr int maxDepth = 40;
    static constexpr int maxCount = 200;

    Pattern& m_pattern;
    std::string_view m_text;
    size_t m_at = 0;
    bool m_failed = false;
};

}
