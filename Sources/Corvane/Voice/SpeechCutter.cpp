#include "Voice/SpeechCutter.h"

#include "Platform/MediaDecoder.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace corvane {

namespace {

constexpr qint64 samplesPerMs = speechFormat.rate / 1000;
constexpr qint64 frameMs = 20;
constexpr qsizetype frameSize = frameMs * samplesPerMs;
constexpr int padding = 25; ///< frames
constexpr qsizetype rememberedLevels = 1000; ///< 20 seconds
constexpr float quietest = -55; ///< decibels; anything below is not voice
constexpr float leastRise = 10; ///< decibels between the pauses and the loudest
constexpr float rise = 0.3F; ///< the share of that range above which a frame is voice
constexpr qsizetype shortestVoice = 3; ///< frames; a click is shorter
constexpr qsizetype wantedMs = 4 * 60'000;
constexpr qsizetype longestMs = 5 * 60'000;

/// Root mean square without the sound card's offset.
float levelOf(const qint16* samples)
{
    double sum = 0;
    double squares = 0;
    for (qsizetype i = 0; i < frameSize; ++i) {
        const double sample = samples[i] / 32768.0;
        sum += sample;
        squares += sample * sample;
    }
    const double power = squares / frameSize - (sum / frameSize) * (sum / frameSize);
    return float(10 * std::log10(std::max(power, 1e-10)));
}

float percentile(QList<float> levels, int percent)
{
    const auto place = levels.begin() + (levels.size() - 1) * percent / 100;
    std::nth_element(levels.begin(), place, levels.end());
    return *place;
}

}

qint64 SpeechCut::soundMs(qint64 cutMs) const
{
    qint64 result = cutMs;
    for (const Stretch& stretch : stretches) {
        if (stretch.cutMs > cutMs)
            break;
        result = stretch.soundMs + cutMs - stretch.cutMs;
    }
    return result;
}

void SpeechCutter::take(const QList<float>& samples, bool isLast)
{
    m_isLast = isLast;
    for (const float sample : samples)
        m_waiting.append(qint16(std::lround(std::clamp(sample, -1.0F, 1.0F) * 32767)));
    if (isLast) // the rest of a frame is silence
        m_waiting.resize((m_waiting.size() + frameSize - 1) / frameSize * frameSize);
    mark(m_waiting.size() / frameSize);
    settle(m_voiced.size() - (isLast ? 0 : padding));
}

/// Decides which new frames are voice, relative to the last seconds.
void SpeechCutter::mark(qsizetype frames)
{
    const qsizetype known = m_voiced.size();
    if (frames == known)
        return;
    for (qsizetype i = known; i < frames; ++i)
        m_levels.append(levelOf(m_waiting.constData() + i * frameSize));
    if (m_levels.size() > rememberedLevels)
        m_levels.remove(0, std::min(m_levels.size() - rememberedLevels, m_levels.size() - (frames - known)));
    const float low = percentile(m_levels, 10);
    const float high = percentile(m_levels, 98);
    const float threshold = std::max(quietest, low + rise * (high - low));
    const bool isSpeech = high - low >= leastRise && high > quietest;
    const auto level = m_levels.cend() - (frames - known);
    for (qsizetype i = 0; i < frames - known;) {
        qsizetype run = 0;
        while (i + run < frames - known && isSpeech && level[i + run] > threshold)
            ++run;
        const qsizetype count = std::max<qsizetype>(run, 1);
        m_voiced.append(QList<bool>(count, run >= shortestVoice));
        i += count;
    }
}

/// Keeps or drops the first waiting frames.
void SpeechCutter::settle(qsizetype frames)
{
    qsizetype nextVoice = 0;
    for (qsizetype i = 0; i < frames; ++i) {
        nextVoice = std::max(nextVoice, i);
        while (nextVoice < m_voiced.size() && !m_voiced[nextVoice])
            ++nextVoice;
        m_sinceVoice = m_voiced[i] ? 0 : m_sinceVoice + 1;
        const bool afterVoice = m_inSpeech && m_sinceVoice <= padding;
        const bool beforeVoice = nextVoice < m_voiced.size() && nextVoice - i <= padding;
        const bool isKept = afterVoice || beforeVoice;
        if (isKept && !m_inSpeech)
            m_cut.stretches.append({ m_cut.samples.size() / samplesPerMs, (m_frame + i) * frameMs });
        if (isKept)
            m_cut.samples.append(m_waiting.sliced(i * frameSize, frameSize));
        m_inSpeech = isKept;
    }
    if (frames <= 0)
        return;
    m_waiting.remove(0, frames * frameSize);
    m_voiced.remove(0, frames);
    m_frame += frames;
}

std::optional<SpeechCut> SpeechCutter::next()
{
    const qint64 ms = m_cut.samples.size() / samplesPerMs;
    const bool isEnough = ms >= longestMs || (ms >= wantedMs && !m_inSpeech) || (m_isLast && ms > 0);
    if (!isEnough)
        return std::nullopt;
    SpeechCut cut = std::exchange(m_cut, {});
    if (m_inSpeech) // a hard cut; the speech continues in the next piece
        m_cut.stretches.append({ 0, m_frame * frameMs });
    return cut;
}

}
