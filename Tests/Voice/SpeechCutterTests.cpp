#include "Platform/MediaDecoder.h"
#include "Voice/SpeechCutter.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

constexpr int rate = speechFormat.rate;

/// Sound with the rhythm of speech over slight noise; level 0 is silence.
QList<float> sound(int seconds, float level)
{
    QList<float> samples;
    for (int i = 0; i < seconds * rate; ++i) {
        const float words = std::max(0.0F, std::sin(float(i) / float(rate) * 20)); // three a second
        const float noise = 0.001F * float((i * 7919) % 200 - 100) / 100;
        samples.append(level * words * std::sin(float(i) * 0.1F) + noise);
    }
    return samples;
}

}

TEST(SpeechCutter, silenceAndSteadyNoiseHoldNoSpeech)
{
    SpeechCutter cutter;
    cutter.take(QList<float>(10 * rate, 0.0F), false);
    cutter.take(sound(10, 0), false);
    QList<float> hum;
    for (int i = 0; i < 20 * rate; ++i)
        hum.append(0.3F * std::sin(float(i) * 0.05F));
    SpeechCutter steady;
    steady.take(hum, true);
    cutter.take({}, true);
    EXPECT_FALSE(cutter.next());
    EXPECT_FALSE(steady.next());
}

TEST(SpeechCutter, pausesAreLeftOutAndTimesLeadBackIntoTheSound)
{
    SpeechCutter cutter;
    cutter.take(sound(10, 0), false);
    cutter.take(sound(5, 0.3F) + sound(5, 0), false);
    cutter.take(sound(5, 0) + sound(5, 0.3F), true);
    const auto cut = cutter.next();
    ASSERT_TRUE(cut);
    EXPECT_NEAR(double(cut->samples.size()) / rate, 11.2, 0.5); // with half a second of padding on each side
    ASSERT_EQ(cut->stretches.size(), 2);
    EXPECT_NEAR(double(cut->soundMs(500)), 10'000, 250);
    EXPECT_NEAR(double(cut->soundMs(7'000)), 25'900, 500);
    EXPECT_FALSE(cutter.next());
}

TEST(SpeechCutter, aLongTalkComesInPartsThatEndInPauses)
{
    SpeechCutter cutter;
    QList<SpeechCut> cuts;
    qint64 samples = 0;
    const QList<float> piece = sound(8, 0.3F) + sound(2, 0);
    for (int i = 0; i < 60; ++i) {
        cutter.take(piece, i == 59);
        while (const auto cut = cutter.next()) {
            cuts.append(*cut);
            samples += cut->samples.size();
        }
    }
    ASSERT_EQ(cuts.size(), 3);
    EXPECT_NEAR(double(cuts[1].soundMs(0)) / 1000, 260, 15); // begins where the previous one ended
    EXPECT_NEAR(double(samples) / rate, 60 * 9, 20);
}
