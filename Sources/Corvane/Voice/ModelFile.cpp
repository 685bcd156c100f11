#include "Voice/ModelFile.h"

#include "Foundation/Literals.h"

#include <QCryptographicHash>
#include <QFile>
#include <QHash>
#include <array>
#include <cstring>

namespace corvane {

namespace {

constexpr quint32 magic = 0x67676d6c; // "ggml"
constexpr qint32 englishVocabulary = 51864; ///< a multilingual one is larger
constexpr qsizetype hashedAtOnce = 1 << 20;

/// The file header in its binary layout.
struct Head {
    quint32 magic;
    qint32 vocabulary, audioContext, audioState, audioHeads, audioLayers;
    qint32 textContext, textState, textHeads, textLayers, bands, type;
};

/// The size in bytes of a block of that many numbers.
struct NumberType {
    qint64 numbers;
    qint64 bytes;
};

const QHash<qint32, NumberType>& numberTypes()
{
    static const QHash<qint32, NumberType> types { { 0, { 1, 4 } }, { 1, { 1, 2 } }, { 2, { 32, 18 } },
        { 3, { 32, 20 } }, { 6, { 32, 22 } }, { 7, { 32, 24 } }, { 8, { 32, 34 } }, { 10, { 256, 84 } },
        { 11, { 256, 110 } }, { 12, { 256, 144 } }, { 13, { 256, 176 } }, { 14, { 256, 210 } } };
    return types;
}

bool isPlausible(const Head& head)
{
    const auto within = [](qint32 value, qint32 most) {
        return value > 0 && value <= most;
    };
    return within(head.vocabulary, 1'000'000) && within(head.audioContext, 100'000) && within(head.audioState, 100'000)
        && within(head.audioLayers, 1000) && within(head.textLayers, 1000) && within(head.bands, 10'000);
}

/// Skips through the parts of the file.
class Walk {
public:
    explicit Walk(QFile& file)
        : m_file(file)
    {
    }

    template <typename Value> bool read(Value& value)
    {
        return m_file.read(reinterpret_cast<char*>(&value), sizeof value) == qint64(sizeof value);
    }

    bool skip(qint64 bytes)
    {
        return bytes >= 0 && bytes <= m_file.size() - m_file.pos() && m_file.seek(m_file.pos() + bytes);
    }

    bool filters()
    {
        std::array<qint32, 2> shape {};
        return read(shape) && shape[0] >= 0 && shape[1] >= 0 && shape[0] < 100'000 && shape[1] < 100'000
            && skip(qint64(shape[0]) * shape[1] * qint64(sizeof(float)));
    }

    bool vocabulary()
    {
        qint32 count = 0;
        if (!read(count) || count <= 0)
            return false;
        for (qint32 i = 0; i < count; ++i) {
            quint32 length = 0;
            if (!read(length) || !skip(length))
                return false;
        }
        return true;
    }

    bool tensor()
    {
        std::array<qint32, 3> head {}; // dimensions, length of the name, type
        if (!read(head) || head[0] < 1 || head[0] > 4 || !numberTypes().contains(head[2]))
            return false;
        qint64 numbers = 1;
        for (qint32 i = 0; i < head[0]; ++i) {
            qint32 count = 0;
            if (!read(count) || count <= 0 || numbers > m_file.size())
                return false;
            numbers *= count;
        }
        const NumberType type = numberTypes().value(head[2]);
        return skip(head[1]) && skip(numbers / type.numbers * type.bytes);
    }

    bool isAtEnd() const { return m_file.atEnd(); }

private:
    QFile& m_file;
};

/// The tensors of a whisper model: 15 per encoder layer, 24 per decoder layer, and 11 others.
qint64 tensorCount(const Head& head)
{
    return 11 + 15LL * head.audioLayers + 24LL * head.textLayers;
}

Result<Head> walkedHead(QFile& file)
{
    Walk walk(file);
    Head head {};
    if (!walk.read(head) || head.magic != magic || !isPlausible(head))
        return failure(u"This is not a speech model: a ggml file for whisper.cpp is needed."_s);
    bool isWhole = walk.filters() && walk.vocabulary();
    for (qint64 i = 0; isWhole && i < tensorCount(head); ++i)
        isWhole = walk.tensor();
    if (!isWhole)
        return failure(u"The speech model is damaged: a part of the file is missing."_s);
    if (!walk.isAtEnd())
        return failure(u"The speech model is damaged: the file contains extra data."_s);
    return head;
}

}

Result<ModelFileFacts> inspectModelFile(
    const QString& path, const std::function<void(qint64)>& onProgress, const std::atomic_bool& stop)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failure(u"The file cannot be read: %1."_s.arg(file.errorString()));
    const auto head = walkedHead(file);
    if (!head)
        return std::unexpected(head.error());
    QCryptographicHash hash(QCryptographicHash::Sha256);
    file.seek(0);
    while (!file.atEnd()) {
        if (stop)
            return failure(u"Cancelled."_s);
        const QByteArray bytes = file.read(hashedAtOnce);
        if (bytes.isEmpty())
            return failure(u"The file cannot be read: %1."_s.arg(file.errorString()));
        hash.addData(bytes);
        if (onProgress)
            onProgress(file.pos());
    }
    return ModelFileFacts { .sha256 = QString::fromLatin1(hash.result().toHex()),
        .sizeBytes = file.size(),
        .audioLayers = head->audioLayers,
        .englishAlone = head->vocabulary <= englishVocabulary };
}

bool speaksEnglishAlone(const QString& path)
{
    QFile file(path);
    Head head {};
    return file.open(QIODevice::ReadOnly) && Walk(file).read(head) && head.magic == magic
        && head.vocabulary <= englishVocabulary;
}

}
