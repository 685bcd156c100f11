#pragma once

#include <QByteArray>

namespace corvane {

/// Cuts what a pipe gives, read by read, into whole lines.
class WholeLines {
public:
    static constexpr qsizetype longest = 64 * 1024 * 1024; ///< in bytes; a longer line is dropped

    /// The lines that end in this read, each with its newline. What follows the last one waits for the next read.
    QByteArray take(QByteArrayView read);

private:
    QByteArray m_rest;
    bool m_isTooLong = false; ///< the line that has begun
};

}
