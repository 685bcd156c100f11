#pragma once

#include "Foundation/Result.h"

#include <QIODevice>
#include <memory>

namespace corvane {

/// A file that only a passphrase opens: the key comes from it by crypto_pwhash, the content stands in blocks of
/// crypto_secretstream. A block that was changed, moved, cut off or added is noticed. docs/backup.md tells the format.
class SealingDevice final : public QIODevice {
public:
    /// Writes the beginning to `to`, which is open and outlives this. Takes a second and 256 MiB of memory.
    SealingDevice(QIODevice& to, const QString& passphrase);
    ~SealingDevice() override;

    Result<void> finish(); ///< writes the last block; without it the file does not open

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char* data, qint64 size) override;

private:
    bool writeBlock(unsigned char tag);

    struct Stream;
    QIODevice& m_to;
    std::unique_ptr<Stream> m_stream;
    QByteArray m_block;
};

/// Whether the file at this place begins as a sealed one does. Moves nothing.
bool isSealed(QIODevice& file);

class UnsealingDevice final : public QIODevice {
public:
    explicit UnsealingDevice(QIODevice& from); ///< open and at its beginning; it outlives this
    ~UnsealingDevice() override;

    Result<void> unlock(const QString& passphrase); ///< before anything is read

protected:
    qint64 readData(char* data, qint64 size) override; ///< -1 and `errorString` where a block does not open
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    Result<void> openBlock();

    struct Stream;
    QIODevice& m_from;
    std::unique_ptr<Stream> m_stream;
    QByteArray m_block; ///< opened and not read yet
    bool m_ended = false;
};

}
