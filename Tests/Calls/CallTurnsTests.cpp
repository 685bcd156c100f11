#include "Calls/CallTurns.h"

#include "Calls/CallExport.h"
#include "Calls/CallNotes.h"
#include "Calls/CallWaveform.h"
#include "Support/Environment.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

/// One line per turn: "start-end speaker: text".
QStringList merged(const QList<SpeechSegment>& microphone, const QList<SpeechSegment>& meeting)
{
    QStringList lines;
    for (const CallTurn& turn : mergedTurns(microphone, meeting))
        lines.append(QString("%1-%2 %3: %4").arg(turn.startMs).arg(turn.endMs).arg(turn.speaker, turn.text));
    return lines;
}

}

TEST(CallTurns, aSpeakerGoesOnUntilALongPauseOrAnAnswer)
{
    EXPECT_EQ(merged({ { 0, 1000, " one \n two " }, { 4999, 6000, "three" }, { 10'000, 11'000, "four" } }, {}),
        QStringList({ "0-6000 Me: one two three", "10000-11000 Me: four" }));
    EXPECT_EQ(merged({ { 0, 5000, "long" }, { 1000, 2000, "within" }, { 2000, 2500, "answered" } },
                  { { 2000, 2400, "yes" } }),
        QStringList({ "0-5000 Me: long within", "2000-2400 Meeting audio: yes", "2000-2500 Me: answered" }));
}

TEST(CallTurns, whatTheMicrophoneHeardOfTheMeetingIsLeftOut)
{
    const auto mine = [](const SpeechSegment& heard, const QList<SpeechSegment>& meeting) {
        return merged({ heard }, meeting).filter(" Me: ").size();
    };
    const QList<SpeechSegment> meeting { { 10'000, 12'000, "We ship on Friday, Ana" } };
    EXPECT_EQ(mine({ 10'000, 12'000, "we SHIP friday" }, meeting), 0);
    EXPECT_EQ(mine({ 10'000, 12'000, "we ship ana maybe later" }, meeting), 0) << "three words of five";
    EXPECT_EQ(mine({ 10'000, 12'000, "we ship perhaps maybe later" }, meeting), 1) << "two of five";
    EXPECT_EQ(mine({ 7000, 10'000, "we ship" }, meeting), 0) << "half of it, with the delay";
    EXPECT_EQ(mine({ 6999, 10'000, "we ship" }, meeting), 1);
    EXPECT_EQ(mine({ 12'000, 15'000, "we ship" }, meeting), 0);
    EXPECT_EQ(mine({ 12'000, 15'001, "we ship" }, meeting), 1);
    EXPECT_EQ(mine({ 20'000, 20'000, "we ship" }, meeting), 1) << "long after it";
    EXPECT_EQ(mine({ 10'000, 12'000, "…" }, meeting), 1) << "no word";
    EXPECT_EQ(mine({ 9000, 15'000, "we ship" },
                  { { 10'000, 10'000, "we" }, { 14'000, 14'000, "ship" }, { 60'000, 61'000, "much" } }),
        0)
        << "two parts";
}

TEST(CallTurns, subtitlesAreEscapedAndNeverEmpty)
{
    EXPECT_EQ(webVtt({}), "WEBVTT\n");
    EXPECT_EQ(webVtt({ { 3'723'004, 3'723'004, "Me", "a < b & c --> d" }, { 59'999, 600'000, "Ana", "x" } }),
        "WEBVTT\n\n01:02:03.004 --> 01:02:03.005\n<v Me>a &lt; b &amp; c --&gt; d\n"
        "\n00:00:59.999 --> 00:10:00.000\n<v Ana>x\n");
    EXPECT_EQ(textOf({ { 0, 1, "Me", "a" }, { 1, 2, "Ana", "b" } }), "Me: a\nAna: b");
}

TEST(CallFiles, whatIsWrittenBesideACallIsReadBack)
{
    const TemporaryHome home;
    const QString folder = home.path("call-1");
    EXPECT_TRUE(readTurns(folder).isEmpty());
    EXPECT_TRUE(readCallNotes(folder).text.isEmpty());
    EXPECT_TRUE(readWaveform(folder).isEmpty());
    const QList<CallTurn> turns { { 1, 2, "Me", "grün" }, { 3, 4, "Ana", "b" } };
    EXPECT_TRUE(writeTurns(folder, turns));
    EXPECT_EQ(readTurns(folder), turns);
    EXPECT_TRUE(writeCallNotes(folder, { "bring tea", { 1, 20 } }));
    EXPECT_EQ(readCallNotes(folder).text, "bring tea");
    EXPECT_EQ(readCallNotes(folder).marksMs, (QList<qint64> { 1, 20 }));
    CallWaveform waveform;
    EXPECT_EQ(waveform.lastLevel(), 0);
    EXPECT_TRUE(waveform.microphone(4).isEmpty());
    waveform.append(0, 1);
    waveform.append(2, -1);
    waveform.append(0.2, 0);
    EXPECT_FLOAT_EQ(waveform.lastLevel(), 0.2);
    EXPECT_TRUE(writeWaveform(folder, waveform));
    const CallWaveform read = readWaveform(folder);
    EXPECT_EQ(read.microphone(3), (QList<float> { 0, 1, 0.2F }));
    EXPECT_EQ(read.system(3), (QList<float> { 1, 0, 0 }));
    EXPECT_EQ(read.microphone(1), QList<float> { 1 });
    EXPECT_EQ(read.microphone(6), (QList<float> { 0, 0, 1, 1, 0.2F, 0.2F })) << "more bars than levels";
    removeWaveform(folder);
    EXPECT_TRUE(readWaveform(folder).isEmpty());
    EXPECT_EQ(readCallNotes(folder).text, "bring tea");
}

TEST(CallFiles, onlyTheFolderOfACallIsRemoved)
{
    const TemporaryHome home;
    const AppPaths& paths = home.paths();
    for (const QString& name : { "media/calls/call-1", "media/calls/other", "media/call-2" })
        home.write("share/Corvane/" + name + "/x", "x");
    const auto stays = [&](const QString& folder) {
        removeCallFiles(paths, folder);
        return QDir(folder).exists();
    };
    EXPECT_TRUE(stays(paths.applicationSupport + "/media/calls/other"));
    EXPECT_TRUE(stays(paths.applicationSupport + "/media/call-2"));
    EXPECT_TRUE(stays(paths.applicationSupport + "/media/calls/../call-2"));
    EXPECT_TRUE(stays(paths.applicationSupport + "/media/calls"));
    EXPECT_FALSE(stays(paths.applicationSupport + "/media/calls/call-1/"));
}

TEST(CallFiles, aCallIsSavedAsTextAndSound)
{
    const TemporaryHome home;
    const QByteArray place = QFile::encodeName(home.path("home"));
    const Environment places { { "HOME", place }, { "XDG_CONFIG_HOME", place } };
    CallDetails call;
    call.title = "Weekly";
    call.startedAt = QDateTime(QDate(2026, 10, 8), QTime(9, 0)).toMSecsSinceEpoch();
    EXPECT_EQ(callAsText(call, {}, {}), "Weekly\n2026-10-08 09:00:00\n");
    call.summary = " They met. ";
    EXPECT_EQ(callAsText(call, { { 61'000, 62'000, "Me", "hello" } }, { "tea", {} }),
        "Weekly\n2026-10-08 09:00:00\n\nSUMMARY\n\nThey met.\n\nNOTES\n\ntea\n\nTRANSCRIPT\n\n[1:01] Me: hello\n");
    EXPECT_EQ(exportSoundOf(call, { "", "" }), "There is no sound.");
    home.write("mic.m4a", "sound");
    const QString saved = home.path("home/Downloads/Weekly - mic.m4a");
    EXPECT_EQ(exportSoundOf(call, { "", home.path("mic.m4a") }), "Saved to " + saved);
    EXPECT_EQ(home.read("home/Downloads/Weekly - mic.m4a"), "sound");
    EXPECT_EQ(exportSoundOf(call, { home.path("gone.m4a") }),
        "Couldn't save it to " + home.path("home/Downloads/Weekly - gone.m4a"));
}
