#include "Settings/DictationSettings.h"

#include "Foundation/UserDefaults.h"
#include "Support/FakeLanguageModel.h"
#include "Support/FakeMicrophone.h"
#include "Support/FakeShortcuts.h"
#include "Support/FakeTextInsertion.h"
#include "Support/Print.h"
#include "Support/RealVoice.h"
#include "Support/TemporaryHome.h"
#include "Voice/DictationAnywhere.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace corvane {

TEST(DictationCard, switchesDictationAndSaysHowTextIsInserted)
{
    const TemporaryHome home;
    VirtualScheduler clock;
    UserDefaults defaults(home.paths().defaultsFile);
    FakeLumo lumo(clock);
    RealVoice voice(lumo.machine, defaults, clock, home.paths().applicationSupport);
    FakeMicrophone microphone;
    FakeTextInsertion insertion;
    FakeShortcuts keys;
    DictationAnywhere dictation({ voice.services, microphone, &insertion, &keys, defaults, clock });
    DictationSettings card(dictation);
    QSignalSpy changed(&card, &DictationSettings::changed);
    EXPECT_FALSE(card.enabled() || card.pushToTalk());
    card.setEnabled(true);
    EXPECT_TRUE(card.enabled() && dictation.isEnabled());
    card.setPushToTalk(true);
    EXPECT_TRUE(card.pushToTalk());
    EXPECT_GE(changed.size(), 2);
    EXPECT_EQ(card.hotKey()->label(), "Dictate into any program");

    EXPECT_EQ(card.insertionText(), "It is pasted into the focused program. The clipboard is restored.");
    insertion.current = InsertionWay::Typing;
    EXPECT_EQ(card.insertionText(),
        "Through accessibility where the program in front offers it. Elsewhere it is typed; the desktop asks you once "
        "whether Corvane may.");
    insertion.current = InsertionWay::None;
    EXPECT_EQ(card.insertionText(),
        "Through accessibility where the program in front offers it. Elsewhere this desktop lets no program type, and "
        "a window offers the text to be copied.");

    EXPECT_EQ(card.problem(), "");
    changed.clear();
    dictation.toggleRecording();
    microphone.answer(MicrophoneAccess::Missing);
    EXPECT_EQ(card.problem(), "The last dictation: Could not start microphone — no microphone was found");
    card.setEnabled(false);
    EXPECT_FALSE(dictation.isEnabled());
}

}
