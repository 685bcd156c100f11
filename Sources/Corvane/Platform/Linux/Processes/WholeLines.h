#pragma once

#include <QByteArray>

namespace corvane {

/// Splits the output of a pipe, read by read, into whole lines.
class WholeLines {
public:
    static constexpr qsizetype longest = 64 * 1024 * 1024; ///< in bytes; longer lines are dropped

    explicit WholeLines(char end = '\n')
        : m_end(end)
    {
    }

    /// The lines that end in this read, each with its end. The rest waits for the next read.
    QByteArray take(QByteArrayView read);

private:
    char m_end;
    QByteArray m_rest;
    bool m_isTooLong = false; ///< the unfinished line
};

}
