#include "Calls/CallServices.h"
#include "Calls/CallsView.h"
#include "Foundation/Literals.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "Support/Await.h"
#include "Support/SpokenSound.h"
#include "UI/WindowTest.h"

#include <QTest>

namespace corvane {

namespace {

class CallsWindow : public WindowTest { };

}

TEST_F(CallsWindow, aPersonRecordsReadsAppliesAndFindsACall)
{
    facts.now.physicalMemoryBytes = 16ULL << 30;
    facts.now.powerSourceStates = { u"AC Power"_s };
    callAudio.sound = spokenBytes();
    showEmptyInbox();
    click(u"topnav.calls"_s);
    rest();
    EXPECT_NE(findItem(u"calls.list"_s), nullptr);
    click(u"calls.record"_s);
    rest();
    ASSERT_NE(findItem(u"recordingConsent.accept"_s), nullptr) << "what the law of many places asks";
    click(u"recordingConsent.accept"_s);
    microphone.answer(MicrophoneAccess::Granted);
    rest();
    EXPECT_NE(findItem(u"recording.stop"_s), nullptr);
    press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    rest();
    EXPECT_NE(findItem(u"recording.stop"_s), nullptr) << "the red dot is in sight everywhere";
    callAudio.microphone->seconds = 5;
    clock.advance(Milliseconds(600));
    press(Qt::Key_M, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(screens.calls->recording()->marksText(), "1 mark");
    recogniser.says = { { 0, 1000, u"ship on Friday"_s }, { 2000, 3000, u"send the offer"_s } };
    model->willAnswer(u"Summary: Ship.\nFollow-up: Send the offer."_s);
    click(u"recording.stop"_s);
    rest();
    EXPECT_EQ(findItem(u"recording.stop"_s), nullptr);
    press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(await([this] {
        rest();
        return screens.calls->page()->stateText() == u"Ready";
    }));
    click(u"call.apply"_s);
    const QList<CallProposalRow> proposals = screens.calls->page()->proposals()->rows();
    EXPECT_NE(proposals.value(1).state + proposals.value(0).error, "");
    item(u"call.notes.text"_s)->forceActiveFocus();
    type(u"bring tea"_s);
    screens.calls->page()->reload();
    rest();
    EXPECT_EQ(item(u"call.notes.text"_s)->property("text"), "bring tea") << "what is typed stays";
    click(u"calls.search"_s);
    type(u"offer"_s);
    rest();
    EXPECT_EQ(screens.calls->page()->transcript()->firstHit(), 1);
    screens.calls->page()->transcript()->playTurn(1);
    EXPECT_EQ(callMicrophone.position, 2000);
    press(Qt::Key_Escape);
    press(Qt::Key_Escape);
}

TEST_F(CallsWindow, callsHaveASettingsSection)
{
    showEmptyInbox();
    settings.setSection(u"calls"_s);
    shell.openSettings();
    rest();
    click(u"calls.systemAudio"_s);
    EXPECT_TRUE(calls.recorder.systemAudioEnabled());
    click(u"calls.keep.90"_s);
    EXPECT_EQ(calls.settings.kept(), "90");
    EXPECT_EQ(findItem(u"calls.lead.120"_s), nullptr);
    click(u"calls.auto"_s);
    EXPECT_TRUE(await([this] { return calls.autoRecorder.statusText().startsWith("Connect Calendar"); }));
    rest();
    click(u"calls.lead.120"_s);
    click(u"calls.requireApp"_s);
    EXPECT_EQ(calls.autoRecorder.rule().startLeadSeconds, 120);
    EXPECT_TRUE(calls.autoRecorder.rule().requireMeetingApp);
}

}
