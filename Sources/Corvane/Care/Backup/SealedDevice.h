#pragma once

#include "Foundation/Result.h"

#include <QIODevice>
#include <memory>

namespace corvane {

/// Encrypts what is written with a passphrase: crypto_pwhash derives the key, crypto_secretstream encrypts the blocks.
/// Any change to the file is detected when it is read. docs/backup.md describes the format.
class SealingDevice final : public QIODevice {
public:
    /// Writes the header to `to`, which is open and outlives this. Takes about a second and 256 MiB of memory.
    SealingDevice(QIODevice& to, const QString& passphrase);
    ~SealingDevice() override;

    Result<void> finish(); ///< writes the final block, without which the file cannot be read

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

/// Whether the file starts like an encrypted one. Does not change the position.
bool isSealed(QIODevice& file);

class UnsealingDevice final : public QIODevice {
public:
    explicit UnsealingDevice(QIODevice& from); ///< open and at the start; outlives this
    ~UnsealingDevice() override;

    Result<void> unlock(const QString& passphrase); ///< before reading

protected:
    qint64 readData(char* data, qint64 size) override; ///< -1 and `errorString` if a block is damaged
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    Result<void> openBlock();

    struct Stream;
    QIODevice& m_from;
    std::unique_ptr<Stream> m_stream;
    QByteArray m_block; ///< decrypted and not read yet
    bool m_ended = false;
};

}
