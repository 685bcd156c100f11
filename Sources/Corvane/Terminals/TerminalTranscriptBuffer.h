#pragma once

#include <QString>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>

namespace corvane {

/// The last characters of what passed between a shell and its terminal, as plain text. It is tapped at the boundary,
/// not read from the screen. May be called on any thread.
///
/// Chunks are kept as they came and made readable when somebody asks, so that a flood costs a copy. What is typed
/// stands behind what the shell printed until its line ends, and only where the shell did not show it; a password is
/// never kept.
class TerminalTranscriptBuffer {
public:
    explicit TerminalTranscriptBuffer(qsizetype maxCharacters = 24'000);

    void received(std::string_view chunk); ///< from the shell; one that is no UTF-8 is left out
    /// To the shell. `hidden` tells that the terminal does not show what is typed, and takes it by lines.
    void sent(std::string_view chunk, bool hidden);

    /// The last `maxCharacters` characters, at least 500, without white space at the ends. Not redacted.
    QString snapshot(qsizetype maxCharacters);

private:
    void append(std::string_view chunk);
    void endLine(char end);
    void compact();

    const qsizetype m_maxCharacters;
    std::mutex m_lock; // of all below
    std::deque<std::string> m_chunks;
    size_t m_bytes = 0;
    std::string m_cut; // the beginning of a character whose rest has not come
    std::string m_tail; // of what the shell printed last
    std::string m_typed; // on the line that is being typed; empty where it is hidden
    std::string m_echo; // what the shell printed meanwhile
    bool m_typing = false;
    bool m_hidden = false;
};

/// Without escape sequences, backspaces, bells and NULs, which have no effect on the rest.
QString cleanTranscript(const QString& text);

/// Does the text end in a question for a password?
bool endsInPasswordPrompt(const QString& text);

}
