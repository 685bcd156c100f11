#include "Platform/Linux/Audio/PulseAudioPlayer.h"

#include "SoundServer.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"
#include "Support/RealDecoder.h"
#include "Support/TemporaryHome.h"

#include <gtest/gtest.h>

using namespace corvane;

namespace {

using State = AudioPlayer::State;

class AudioPlayerTest : public testing::Test {
protected:
    bool reaches(State state)
    {
        return await([&] { return player.state() == state; });
    }

    QString tone(const QString& name, const QString& seconds = "2") const
    {
        QProcess ffmpeg;
        ffmpeg.start("ffmpeg", { "-v", "error", "-f", "lavfi", "-i", "sine=duration=" + seconds, home.path(name) });
        EXPECT_TRUE(ffmpeg.waitForFinished());
        return home.path(name);
    }

    const LogCapture log;
    const TemporaryHome home;
    RealDecoder real;
    PulseAudioPlayer player { real.scheduler, real.decoder };
};

}

TEST_F(AudioPlayerTest, eachKindOfVoiceNotePlaysToItsEndAndCanBeHeldAndMoved)
{
    const SoundServer server(Microphones::None);
    for (const QString& name : { "a.wav", "a.m4a", "a.ogg" }) {
        player.play(tone(name));
        ASSERT_EQ(player.state(), State::Playing) << name.toStdString();
        EXPECT_TRUE(await([&] { return player.positionMs() > 100; }));
        EXPECT_NEAR(double(player.durationMs()), 2000, 100);
        player.pause();
        EXPECT_EQ(player.state(), State::Paused);
        player.seek(1600);
        EXPECT_NEAR(double(player.positionMs()), 1600, 50);
        player.resume();
        ASSERT_TRUE(await([&] { return player.positionMs() > 1700; })) << name.toStdString();
        EXPECT_TRUE(reaches(State::Idle));
        EXPECT_EQ(player.positionMs(), 0);
    }
    player.play(home.path("a.wav"));
    player.seek(1990);
    EXPECT_TRUE(await([&] { return player.positionMs() > 1990 || player.state() == State::Idle; }));
    player.seek(0);
    EXPECT_TRUE(await([&] { return player.state() == State::Idle || player.positionMs() > 300; }))
        << "back from the very end";
}

TEST_F(AudioPlayerTest, aFileThatIsDamagedEndsOrSaysSoAndSpoilsNothing)
{
    const SoundServer server(Microphones::None);
    const auto cut = [&](const QString& name, double share) {
        QFile file(tone(name, "0.8"));
        EXPECT_TRUE(file.resize(qint64(double(file.size()) * share)));
        return file.fileName();
    };
    for (const QString& path :
        { home.path("gone.m4a"), cut("index.m4a", 0.7), cut("head.ogg", 0.001), home.path("") }) {
        player.play(path);
        EXPECT_TRUE(reaches(State::Failed)) << path.toStdString();
        EXPECT_EQ(player.errorText(), "This sound can't be played.");
    }
    QFile noise(tone("noise.mp3", "0.8"));
    ASSERT_TRUE(noise.open(QIODevice::ReadWrite));
    noise.seek(noise.size() / 2);
    noise.write(QByteArray(4000, '\xff'));
    noise.close();
    for (const QString& path : { cut("half.wav", 0.2), cut("half.mp3", 0.5), noise.fileName() }) {
        player.play(path);
        EXPECT_EQ(player.state(), State::Playing) << path.toStdString();
        EXPECT_TRUE(reaches(State::Idle)) << "what is there is heard";
    }
}

TEST_F(AudioPlayerTest, aSoundServerThatIsAbsentOrGoesAwayIsSaidAndTheNextOneIsUsed)
{
    const QString path = tone("a.wav");
    player.pause();
    player.resume();
    player.seek(100);
    EXPECT_EQ(player.state(), State::Idle);
    qputenv("PULSE_SERVER", "unix:/nowhere/pulse");
    player.play(path);
    ASSERT_TRUE(reaches(State::Failed));
    EXPECT_EQ(player.errorText(), "This machine has no sound output.");
    player.stop();
    EXPECT_EQ(player.errorText(), "");

    for (const bool held : { false, true }) {
        SoundServer server(Microphones::None);
        player.play(path);
        EXPECT_TRUE(await([&] { return player.positionMs() > 50; }));
        if (held)
            player.pause();
        server.kill();
        ASSERT_TRUE(reaches(State::Failed));
        EXPECT_EQ(player.errorText(), "The sound output went away.");
    }
}
