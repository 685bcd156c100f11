#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace corvane {

/// Turns what a pipe gave, read by read, into text that ends at a character's boundary.
class Utf8Chunks {
public:
    /// The bytes of one read as text. An unfinished character at the end waits for the next read; where that
    /// does not finish it, it is dropped. A read that is not valid UTF-8 otherwise is dropped whole.
    QString take(QByteArrayView read);

private:
    std::optional<QString> split(QByteArrayView bytes);

    QByteArray m_unfinished; ///< three bytes at most
};

}
