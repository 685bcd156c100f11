#include "Platform/Linux/Processes/Utf8Chunks.h"

#include <QStringDecoder>
#include <algorithm>
#include <optional>

namespace corvane {

namespace {

/// How many bytes the character takes that begins with `lead`; 0 where no character begins so.
qsizetype characterLength(uchar lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

/// The length of the unfinished character that ends the bytes, or 0.
qsizetype unfinishedAtEnd(QByteArrayView bytes)
{
    const qsizetype furthest = std::min<qsizetype>(3, bytes.size());
    for (qsizetype back = 1; back <= furthest; ++back) {
        const auto byte = static_cast<uchar>(bytes[bytes.size() - back]);
        const bool continues = (byte & 0xC0) == 0x80;
        if (!continues)
            return characterLength(byte) > back ? back : 0;
    }
    return 0;
}

std::optional<QString> decoded(QByteArrayView bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    QString text = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(std::move(text));
}

}

QString Utf8Chunks::take(QByteArrayView read)
{
    const QByteArray before = std::exchange(m_unfinished, {});
    if (!before.isEmpty()) {
        if (auto text = split(before + read.toByteArray()))
            return *std::move(text);
    }
    return split(read).value_or(QString());
}

std::optional<QString> Utf8Chunks::split(QByteArrayView bytes)
{
    const qsizetype unfinished = unfinishedAtEnd(bytes);
    m_unfinished = bytes.last(unfinished).toByteArray();
    return decoded(bytes.chopped(unfinished));
}

}
