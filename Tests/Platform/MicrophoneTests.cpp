#include "Platform/Microphone.h"

#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Services.h"
#include "SoundFiles.h"
#include "SoundServer.h"
#include "Support/LogCapture.h"
#include "Support/VirtualScheduler.h"

#include <QFileInfo>
#include <QLocalServer>
#include <QSignalSpy>

using namespace corvane;

namespace {

class MicrophoneTest : public testing::Test {
protected:
    std::optional<MicrophoneAccess> access()
    {
        std::optional<MicrophoneAccess> answer;
        microphone->requestAccess([&](MicrophoneAccess given) { answer = given; });
        EXPECT_FALSE(answer) << "the answer comes later";
        EXPECT_TRUE(await([&] { return answer.has_value(); }));
        return answer;
    }

    std::unique_ptr<MicrophoneRecording> recordFor(double seconds)
    {
        auto recording = microphone->record(path);
        EXPECT_TRUE(recording && await([&] { return recording->elapsedSeconds() >= seconds; }));
        return recording;
    }

    LogCapture logs;
    QTemporaryDir folder;
    const QString path = folder.filePath("corvane-voice-1.m4a");
    SystemScheduler scheduler;
    std::unique_ptr<Microphone> microphone = makeMicrophone(scheduler);
};

}

TEST_F(MicrophoneTest, aNoteIsRecordedAsOneWholeFile)
{
    SoundServer server(Microphones::One);
    EXPECT_EQ(access(), MicrophoneAccess::Granted);
    auto recording = recordFor(1.5);
    EXPECT_GT(recording->level(), 0.1);
    EXPECT_TRUE(recording->stop());
    EXPECT_EQ(formatOf(path), "aac,44100,1");
    EXPECT_NEAR(secondsOf(path), recording->elapsedSeconds(), 0.1);
    EXPECT_GT(peakOf(path), 0.1F);
    EXPECT_EQ(QFileInfo(path).permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1);
    QFile whole(path);
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    EXPECT_FALSE(whole.readAll().contains("moof")) << "its pieces were joined";
    EXPECT_FALSE(microphone->record(path)) << "a file that stands there is not written over";

    const QString plain = folder.filePath("corvane-dictation-1.wav");
    recording = microphone->record(plain);
    EXPECT_TRUE(await([&] { return recording->elapsedSeconds() >= 0.5; }) && recording->stop());
    EXPECT_EQ(formatOf(plain), "pcm_s16le,16000,1");
    EXPECT_NEAR(secondsOf(plain), recording->elapsedSeconds(), 0.01);
    EXPECT_GT(peakOf(plain), 0.1F);
}

TEST_F(MicrophoneTest, aKillLeavesAllButTheLastSecondAndARecordingThatIsDroppedIsFinished)
{
    SoundServer server(Microphones::One);
    auto recording = recordFor(2.2);
    const double recorded = recording->elapsedSeconds();
    const QString atKill = folder.filePath("copy.m4a");
    ASSERT_TRUE(QFile::copy(path, atKill));
    EXPECT_GT(secondsOf(atKill), recorded - 1.2);
    EXPECT_GT(peakOf(atKill), 0.1F);
    recording.reset();
    EXPECT_GE(secondsOf(path), recorded);
    ASSERT_TRUE(QFile::remove(path));
    microphone->record(path)->cancel();
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(MicrophoneTest, whatWasRecordedIsKeptWhenTheMicrophoneGoes)
{
    for (const bool wholeServer : { false, true }) {
        QFile::remove(path);
        SoundServer server(Microphones::One);
        const auto recording = recordFor(1.2);
        QSignalSpy interrupted(recording.get(), &MicrophoneRecording::interrupted);
        wholeServer ? server.kill() : static_cast<void>(server.unplug());
        EXPECT_TRUE(await([&] { return !interrupted.isEmpty(); }));
        EXPECT_EQ(interrupted.value(0).value(0), "the microphone went away");
        EXPECT_TRUE(recording->stop());
        EXPECT_EQ(interrupted.size(), 1);
        EXPECT_NEAR(secondsOf(path), recording->elapsedSeconds(), 0.1);
    }
}

TEST_F(MicrophoneTest, withoutAMicrophoneNothingBegins)
{
    SoundServer server(Microphones::None);
    EXPECT_EQ(access(), MicrophoneAccess::Missing) << "what the loudspeaker plays is no microphone";
    const auto recording = microphone->record(path);
    QSignalSpy interrupted(recording.get(), &MicrophoneRecording::interrupted);
    EXPECT_TRUE(await([&] { return !interrupted.isEmpty(); }));
    EXPECT_EQ(interrupted.value(0).value(0), "no microphone was found");
    EXPECT_FALSE(recording->stop());
    EXPECT_FALSE(QFile::exists(path)) << "a file without sound is not left";
    server.kill();
    EXPECT_EQ(access(), MicrophoneAccess::Missing);
    EXPECT_FALSE(microphone->record(folder.filePath("nowhere/x.m4a")));
}

TEST_F(MicrophoneTest, aSoundServerThatDoesNotAnswerIsGivenUpAfterThreeSeconds)
{
    QLocalServer silent;
    ASSERT_TRUE(silent.listen(folder.filePath("silent")));
    qputenv("PULSE_SERVER", QFile::encodeName("unix:" + silent.fullServerName()));
    VirtualScheduler clock;
    const auto patient = makeMicrophone(clock);
    std::optional<MicrophoneAccess> answer;
    patient->requestAccess([&](MicrophoneAccess given) { answer = given; });
    const auto recording = patient->record(path);
    QSignalSpy interrupted(recording.get(), &MicrophoneRecording::interrupted);
    clock.advance(Milliseconds(2999));
    EXPECT_FALSE(answer || !interrupted.isEmpty());
    clock.advance(Milliseconds(1));
    EXPECT_EQ(answer, MicrophoneAccess::Missing);
    EXPECT_EQ(interrupted.size(), 1);
    qunsetenv("PULSE_SERVER");
}
