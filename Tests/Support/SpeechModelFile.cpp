#include "Support/SpeechModelFile.h"

#include <QString>
#include <cmath>
#include <cstring>
#include <random>

namespace {

constexpr int vocabulary = 51'865;
constexpr int words = 50'257;
constexpr int endOfText = words;
constexpr int bands = 80;

class Writer {
public:
    explicit Writer(const SpeechModelShape& shape)
        : m_shape(shape)
    {
        numbers({ 0x67676d6c, vocabulary, 1500, shape.state, shape.heads, shape.layers, 448, shape.state, shape.heads,
            shape.layers, bands, 1, bands, 201 });
        for (int band = 0; band < bands; ++band) {
            for (int i = 0; i < 201; ++i)
                value(std::abs(float(i) - float(band) * 2.5F) < 3 ? 0.02F : 0.0F);
        }
        numbers({ words });
        for (int i = 0; i < words; ++i) { // whisper.cpp looks up 9 to 11 by their text
            const QByteArray word = i == 9 ? " " : i == 10 ? " -" : i == 11 ? " '" : " w" + QByteArray::number(i);
            numbers({ int(word.size()) });
            m_bytes.append(word);
        }
    }

    QByteArray model()
    {
        const int state = m_shape.state;
        floats("encoder.positional_embedding", { state, 1500 }, 0);
        weights("encoder.conv1.weight", { 3, bands, state });
        floats("encoder.conv1.bias", { 1, state }, 0);
        weights("encoder.conv2.weight", { 3, state, state });
        floats("encoder.conv2.bias", { 1, state }, 0);
        for (int i = 0; i < m_shape.layers; ++i)
            layer("encoder.blocks." + QByteArray::number(i) + '.', { "attn" });
        norm("encoder.ln_post");
        floats("decoder.positional_embedding", { state, 448 }, 0);
        const auto weightsEnd = weights("decoder.token_embedding.weight", { state, vocabulary });
        // A token's first weight is multiplied by the bias below, which decides the token's score.
        const auto favour = [&](int token, quint16 half) {
            std::memcpy(m_bytes.data() + weightsEnd - qsizetype(vocabulary - token) * state * 2, &half, sizeof half);
        };
        favour(endOfText, 0x3c00); // 1
        favour(300, 0x3800); // 0.5
        for (int i = 0; i < m_shape.layers; ++i)
            layer("decoder.blocks." + QByteArray::number(i) + '.', { "attn", "cross_attn" });
        norm("decoder.ln");
        const float bias = 40;
        std::memcpy(m_bytes.data() + m_bytes.size() - state * qsizetype(sizeof bias), &bias, sizeof bias);
        return m_bytes;
    }

private:
    void numbers(const QList<qint32>& values)
    {
        m_bytes.append(reinterpret_cast<const char*>(values.constData()), values.size() * 4);
    }
    void value(float number) { m_bytes.append(reinterpret_cast<const char*>(&number), sizeof number); }

    qsizetype head(const QByteArray& name, const QList<qint32>& shape, qint32 type)
    {
        numbers({ qint32(shape.size()), qint32(name.size()), type });
        numbers(shape);
        m_bytes.append(name);
        qsizetype count = 1;
        for (const qint32 size : shape)
            count *= size;
        return count;
    }

    void floats(const QByteArray& name, const QList<qint32>& shape, float number)
    {
        for (qsizetype i = head(name, shape, 0); i > 0; --i)
            value(number);
    }

    /// Appends small random half-precision numbers. Returns the offset of their end.
    qsizetype weights(const QByteArray& name, const QList<qint32>& shape)
    {
        for (qsizetype i = head(name, shape, 1); i > 0; --i) {
            const auto bits = m_random();
            m_bytes.append(char(bits & 0xff)).append(char(((bits >> 8) & 0x83) | 0x1c));
        }
        return m_bytes.size();
    }

    void linear(const QByteArray& name, int inputs, int outputs, bool hasBias = true)
    {
        weights(name + ".weight", { inputs, outputs });
        if (hasBias)
            floats(name + ".bias", { outputs }, 0);
    }
    void norm(const QByteArray& name)
    {
        floats(name + ".weight", { m_shape.state }, 1);
        floats(name + ".bias", { m_shape.state }, 0);
    }

    void layer(const QByteArray& name, const QList<QByteArray>& attentions)
    {
        const int state = m_shape.state;
        for (const QByteArray& attention : attentions) {
            norm(name + attention + "_ln");
            linear(name + attention + ".query", state, state);
            linear(name + attention + ".key", state, state, false);
            linear(name + attention + ".value", state, state);
            linear(name + attention + ".out", state, state);
        }
        norm(name + "mlp_ln");
        linear(name + "mlp.0", state, 4 * state);
        linear(name + "mlp.2", 4 * state, state);
    }

    const SpeechModelShape m_shape;
    QByteArray m_bytes;
    std::mt19937 m_random { 1 };
};

}

QByteArray speechModelFile(const SpeechModelShape& shape)
{
    return Writer(shape).model();
}
