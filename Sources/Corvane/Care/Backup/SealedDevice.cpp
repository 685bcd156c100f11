#include "Care/Backup/SealedDevice.h"

#include "Foundation/Literals.h"

#include <QtEndian>
#include <algorithm>
#include <cstring>
#include <sodium.h>

namespace corvane {

namespace {

const QByteArray magic = "corvane sealed 1\n"_ba;
constexpr qsizetype blockBytes = 64 * 1024;
constexpr qsizetype sealedBytes = blockBytes + crypto_secretstream_xchacha20poly1305_ABYTES;
constexpr qsizetype costBytes = 2 * qsizetype(sizeof(quint64));
constexpr qsizetype beginningBytes
    = crypto_pwhash_SALTBYTES + costBytes + crypto_secretstream_xchacha20poly1305_HEADERBYTES;

// Limits the memory and time that a file may request.
constexpr quint64 mostOperations = crypto_pwhash_OPSLIMIT_SENSITIVE;
constexpr quint64 mostMemory = crypto_pwhash_MEMLIMIT_SENSITIVE;

const unsigned char* bytes(const QByteArray& data)
{
    return reinterpret_cast<const unsigned char*>(data.constData());
}

unsigned char* bytes(QByteArray& data)
{
    return reinterpret_cast<unsigned char*>(data.data());
}

struct Cost {
    quint64 operations = crypto_pwhash_OPSLIMIT_MODERATE;
    quint64 memory = crypto_pwhash_MEMLIMIT_MODERATE;
};

/// The key derived from a passphrase; wiped on destruction.
struct Key {
    Key(const QString& passphrase, const QByteArray& salt, const Cost& cost)
    {
        QByteArray phrase = passphrase.normalized(QString::NormalizationForm_C).toUtf8();
        isMade = sodium_init() >= 0
            && crypto_pwhash(value, sizeof value, phrase.constData(), quint64(phrase.size()), bytes(salt),
                   cost.operations, size_t(cost.memory), crypto_pwhash_ALG_ARGON2ID13)
                == 0;
        sodium_memzero(phrase.data(), size_t(phrase.size()));
    }
    ~Key() { sodium_memzero(value, sizeof value); }

    unsigned char value[crypto_secretstream_xchacha20poly1305_KEYBYTES] {};
    bool isMade = false;
};

QByteArray costText(const Cost& cost)
{
    QByteArray text(costBytes, '\0');
    qToLittleEndian(cost.operations, text.data());
    qToLittleEndian(cost.memory, text.data() + sizeof(quint64));
    return text;
}

Cost costFrom(const QByteArray& text)
{
    return { qFromLittleEndian<quint64>(text.constData()),
        qFromLittleEndian<quint64>(text.constData() + sizeof(quint64)) };
}

}

struct SealingDevice::Stream {
    crypto_secretstream_xchacha20poly1305_state state {};
    ~Stream() { sodium_memzero(&state, sizeof state); }
};

struct UnsealingDevice::Stream {
    crypto_secretstream_xchacha20poly1305_state state {};
    ~Stream() { sodium_memzero(&state, sizeof state); }
};

SealingDevice::SealingDevice(QIODevice& to, const QString& passphrase)
    : m_to(to)
{
    QByteArray salt(crypto_pwhash_SALTBYTES, '\0');
    QByteArray header(crypto_secretstream_xchacha20poly1305_HEADERBYTES, '\0');
    const Cost cost;
    if (sodium_init() < 0)
        return;
    randombytes_buf(salt.data(), size_t(salt.size()));
    const Key key(passphrase, salt, cost);
    if (!key.isMade) {
        setErrorString(u"There is not enough memory to encrypt the file."_s);
        return;
    }
    m_stream = std::make_unique<Stream>();
    crypto_secretstream_xchacha20poly1305_init_push(&m_stream->state, bytes(header), key.value);
    const QByteArray beginning = magic + salt + costText(cost) + header;
    if (m_to.write(beginning) == beginning.size())
        open(WriteOnly | Unbuffered);
    else
        setErrorString(m_to.errorString());
}

SealingDevice::~SealingDevice() = default;

qint64 SealingDevice::writeData(const char* data, qint64 size)
{
    for (qint64 taken = 0; taken < size;) {
        // A full block is held back until more data arrives, since the last block is marked.
        if (m_block.size() == blockBytes && !writeBlock(crypto_secretstream_xchacha20poly1305_TAG_MESSAGE))
            return -1;
        const qint64 piece = std::min(size - taken, blockBytes - m_block.size());
        m_block.append(data + taken, piece);
        taken += piece;
    }
    return size;
}

bool SealingDevice::writeBlock(unsigned char tag)
{
    QByteArray sealed(m_block.size() + qsizetype(crypto_secretstream_xchacha20poly1305_ABYTES), '\0');
    crypto_secretstream_xchacha20poly1305_push(
        &m_stream->state, bytes(sealed), nullptr, bytes(m_block), quint64(m_block.size()), nullptr, 0, tag);
    m_block.clear();
    if (m_to.write(sealed) == sealed.size())
        return true;
    setErrorString(m_to.errorString());
    return false;
}

Result<void> SealingDevice::finish()
{
    if (!isOpen() || !writeBlock(crypto_secretstream_xchacha20poly1305_TAG_FINAL))
        return failure(errorString());
    close();
    return {};
}

bool isSealed(QIODevice& file)
{
    return file.peek(magic.size()) == magic;
}

UnsealingDevice::UnsealingDevice(QIODevice& from)
    : m_from(from)
{
}

UnsealingDevice::~UnsealingDevice() = default;

Result<void> UnsealingDevice::unlock(const QString& passphrase)
{
    const QString damaged = u"The beginning of the file is damaged."_s;
    const QByteArray beginning = m_from.read(magic.size() + beginningBytes);
    if (beginning.size() != magic.size() + beginningBytes || !beginning.startsWith(magic))
        return failure(damaged);
    const QByteArray salt = beginning.sliced(magic.size(), crypto_pwhash_SALTBYTES);
    const Cost cost = costFrom(beginning.sliced(magic.size() + salt.size(), costBytes));
    if (cost.operations > mostOperations || cost.memory > mostMemory)
        return failure(damaged);
    const Key key(passphrase, salt, cost);
    m_stream = std::make_unique<Stream>();
    const QByteArray header = beginning.last(crypto_secretstream_xchacha20poly1305_HEADERBYTES);
    if (!key.isMade || crypto_secretstream_xchacha20poly1305_init_pull(&m_stream->state, bytes(header), key.value) != 0)
        return failure(damaged);
    if (!openBlock())
        return failure(u"The passphrase is wrong, or the file is damaged."_s);
    open(ReadOnly | Unbuffered);
    return {};
}

Result<void> UnsealingDevice::openBlock()
{
    const QByteArray sealed = m_from.read(sealedBytes);
    unsigned char tag = 0;
    m_block.resize(std::max<qsizetype>(0, sealed.size() - crypto_secretstream_xchacha20poly1305_ABYTES));
    if (crypto_secretstream_xchacha20poly1305_pull(
            &m_stream->state, bytes(m_block), nullptr, &tag, bytes(sealed), quint64(sealed.size()), nullptr, 0)
        != 0)
        return failure(u"The file is damaged or incomplete."_s);
    m_ended = tag == crypto_secretstream_xchacha20poly1305_TAG_FINAL;
    if (m_ended && !m_from.atEnd())
        return failure(u"The file contains extra data."_s);
    return {};
}

qint64 UnsealingDevice::readData(char* data, qint64 size)
{
    if (m_block.isEmpty() && !m_ended) {
        if (const auto opened = openBlock(); !opened) {
            setErrorString(opened.error().message);
            return -1;
        }
    }
    const qint64 count = std::min<qint64>(size, m_block.size());
    std::memcpy(data, m_block.constData(), size_t(count));
    m_block.remove(0, count);
    return count;
}

}
