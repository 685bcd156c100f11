#pragma once

#include <QString>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>

namespace corvane {

/// The last characters exchanged between a shell and its terminal, as plain text. It is recorded at the boundary, not
/// read from the screen. May be called on any thread.
///
/// Chunks are stored raw and converted when they are read, so that a flood costs only a copy. Input follows the shell's
/// output until its line ends, and only if the shell did not echo it; passwords are never stored.
class TerminalTranscriptBuffer {
public:
    explicit TerminalTranscriptBuffer(qsizetype maxCharacters = 24'000);

    void received(std::string_view chunk); ///< from the shell; chunks that are not UTF-8 are skipped
    /// To the shell. `hidden`: the terminal does not echo input, and processes it by lines.
    void sent(std::string_view chunk, bool hidden);

    /// The last `maxCharacters` characters, at least 500, trimmed. Not redacted.
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
    std::string m_typed; // on the line that is being typed; empty if it is hidden
    std::string m_echo; // what the shell printed meanwhile
    bool m_typing = false;
    bool m_hidden = false;
};

/// Without escape sequences, backspaces, bells and NULs.
QString cleanTranscript(const QString& text);

/// Whether the text ends with a password prompt.
bool endsInPasswordPrompt(const QString& text);

}
