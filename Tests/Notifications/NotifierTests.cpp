#include "Notifications/Notifier.h"

#include "Foundation/NotificationCentre.h"
#include "Foundation/UserDefaults.h"
#include "Support/FakeNotificationService.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"

#include <gtest/gtest.h>

using namespace corvane;

namespace {

class NotifierTest : public testing::Test {
protected:
    NotifierTest()
    {
        notifier.bootstrap();
        for (const QString& name :
            { notifications::approvalAction, notifications::openConversation, notifications::dictationAction })
            observations.push_back(centre.observe(name, [this](const Notification& posted) {
                const QVariantMap info = posted.userInfo;
                events.append(QStringList { posted.name, posted.object.value_or(QString()),
                    info.value("kind").toString(), info.value("id").toString(), info.value("action").toString() }
                        .join(u'|'));
            }));
    }

    /// Everything in the banner except the id under which it is replaced.
    static QString text(const Banner& banner)
    {
        QStringList parts { banner.title, banner.subtitle, banner.body, banner.thread, banner.category };
        for (const auto& action : banner.actions)
            parts.append(action.id + ':' + action.label);
        return parts.join('|');
    }

    void message(const QString& contact, const QString& body = "hi")
    {
        notifier.notifyMessage(contact, "Ana", "WHATSAPP", body);
    }

    TemporaryHome home;
    UserDefaults defaults { home.paths().defaultsFile };
    VirtualScheduler clock;
    NotificationCentre centre;
    FakeNotificationService service;
    QStringList events;
    Notifier notifier { service, centre, defaults, clock, [this] {
                           events.append("activate");
                       } };
    std::vector<NotificationCentre::Observation> observations;
};

}

TEST_F(NotifierTest, aContactGetsOneBannerInFourSeconds)
{
    for (int i = 0; i < 3; ++i) {
        message("ct:1", QString::number(i));
        message("ct:1", "at the same time");
        clock.advance(Milliseconds(1000));
    }
    message("ct:2");
    EXPECT_EQ(service.shown.size(), 2) << "another contact is not held up";
    clock.advance(Milliseconds(999));
    message("ct:1");
    EXPECT_EQ(service.shown.size(), 2) << "3.999 seconds after the first";
    clock.advance(Milliseconds(1));
    message("ct:1", "late");
    ASSERT_EQ(service.shown.size(), 3);
    EXPECT_EQ(service.shown.first().body, "0");
    EXPECT_EQ(service.shown.last().body, "late");

    clock.setNowMs(clock.nowMs() - 3'600'000);
    message("ct:1");
    EXPECT_EQ(service.shown.size(), 4) << "a clock that was set back silences nobody";
}

TEST_F(NotifierTest, aMessageBannerSaysWhoWroteWhereAndWhat)
{
    const QString family = QString::fromUtf8("👩‍👩‍👧");
    notifier.notifyMessage("ct:1", "", "fax", family.repeated(500));
    notifier.notifyMessage("ct:2", "Ana", "IMESSAGE", "short");
    ASSERT_EQ(service.shown.size(), 2);
    EXPECT_EQ(text(service.shown[0]), "New message|Fax|" + family.repeated(180) + "|ct:1|");
    EXPECT_EQ(text(service.shown[1]), "Ana|iMessage|short|ct:2|");
    EXPECT_NE(service.shown[0].identifier, service.shown[1].identifier);
}

TEST_F(NotifierTest, anApprovalBannerOffersBothDecisionsAndReplacesItself)
{
    notifier.notifyApproval("draft_failed", "od:7", "", QString(500, u'x'));
    notifier.notifyApproval("draft_failed", "od:7", "To Ana", "again");
    ASSERT_EQ(service.shown.size(), 2) << "approvals are not debounced";
    EXPECT_EQ(text(service.shown[0]),
        "Approval needed|Outbound message failed — Approve retries|" + QString(180, u'x')
            + "|nimb.approvals|NIMB_APPROVAL|NIMB_APPROVE:Approve|NIMB_REJECT:Reject");
    for (const Banner& banner : service.shown)
        EXPECT_EQ(banner.identifier, "approval-draft_failed-od:7");

    for (const QString& kind : { "draft", "proposal", "decision", "event", "approval" })
        notifier.notifyApproval(kind, "1", "t", "b");
    QStringList subtitles;
    for (const Banner& shown : service.shown.mid(2))
        subtitles.append(shown.subtitle);
    EXPECT_EQ(subtitles.join(u'|'),
        "Outbound message — Approve sends it|CRM update proposal|Agent decision|Calendar event — Approve adds it|"
        "Approval needed");
    EXPECT_TRUE(service.shown.last().actions.isEmpty()) << "an approval of its own kind is decided where it is shown";
    notifier.withdrawApproval("draft_failed", "od:8");
    EXPECT_TRUE(service.withdrawn.isEmpty());
    notifier.withdrawApproval("draft_failed", "od:7");
    EXPECT_EQ(service.withdrawn, QStringList({ "approval-draft_failed-od:7", "approval-draft_failed-od:7" }));
}

TEST_F(NotifierTest, theMessagesOfAContactAreWithdrawnOnce)
{
    message("ct:1");
    message("ct:2");
    notifier.withdrawMessages("ct:3");
    EXPECT_TRUE(service.withdrawn.isEmpty());
    notifier.withdrawMessages("ct:1");
    EXPECT_EQ(service.withdrawn, QStringList(service.shown.first().identifier));
    notifier.withdrawMessages("ct:1");
    EXPECT_EQ(service.withdrawn.size(), 1);
}

TEST_F(NotifierTest, aRecordingATerminalAndADictationHaveOneBannerEach)
{
    notifier.notifyRecording("Recording", "It has begun.");
    notifier.notifyTerminal("Build", "It has ended.");
    notifier.notifyDictation("Copied.", { { "paste", "Paste" } });
    ASSERT_EQ(service.shown.size(), 3);
    EXPECT_EQ(text(service.shown[0]), "Recording||It has begun.|recording|");
    EXPECT_EQ(text(service.shown[1]), "Build||It has ended.|terminal|");
    EXPECT_EQ(text(service.shown[2]), "Dictation||Copied.|dictation|dictation|paste:Paste");
    for (const Banner& banner : service.shown)
        EXPECT_EQ(banner.identifier, banner.thread);
    service.press(service.shown[0]);
    service.press(service.shown[1]);
    service.press(service.shown[2], "paste");
    EXPECT_EQ(events, QStringList({ "activate", "activate", notifications::dictationAction + "|paste|||" }));
    notifier.withdrawDictation();
    EXPECT_EQ(service.withdrawn, QStringList("dictation"));
}

TEST_F(NotifierTest, aPressBecomesAnInProcessNotification)
{
    notifier.notifyApproval("proposal", "p-1", "t", "b");
    message("ct:1");
    service.press(service.shown[0], "NIMB_APPROVE");
    service.press(service.shown[0], "NIMB_REJECT");
    service.press(service.shown[0]);
    service.press(service.shown[1]);
    service.press(Banner(), "default");
    EXPECT_EQ(events.join(u'\n'),
        "nimb.approvalAction||proposal|p-1|approve\n"
        "nimb.approvalAction||proposal|p-1|reject\n"
        "activate\n"
        "nimb.approvalAction||proposal|p-1|open\n"
        "activate\n"
        "nimb.openConversation|ct:1|||");

    notifier.bootstrap();
    events.clear();
    service.press(service.shown[0], "NIMB_APPROVE");
    EXPECT_EQ(events.size(), 1) << "a second bootstrap doubles nothing";
}

TEST_F(NotifierTest, theSettingSilencesBothKinds)
{
    defaults.setBoolean("notifyOnNewMessage", false);
    message("ct:1");
    notifier.notifyApproval("draft", "1", "t", "b");
    notifier.notifyTerminal("Build", "It has ended.");
    EXPECT_TRUE(service.shown.isEmpty());
    notifier.notifyRecording("Recording", "It has begun.");
    EXPECT_EQ(service.shown.size(), 1) << "whoever is recorded is told";
    service.shown.clear();
    defaults.setBoolean("notifyOnNewMessage", true);
    message("ct:1");
    EXPECT_EQ(service.shown.size(), 1) << "what was silenced does not count for the debounce";
}

TEST_F(NotifierTest, aBareLaunchPostsNothingAndSaysSoOnce)
{
    FakeNotificationService bare;
    bare.available = false;
    LogCapture log;
    Notifier silent(bare, centre, defaults, clock, [] { });
    silent.bootstrap();
    silent.notifyMessage("ct:1", "Ana", "SMS", "hi");
    silent.notifyApproval("draft", "1", "t", "b");
    silent.notifyRecording("Recording", "It has begun.");
    EXPECT_FALSE(silent.wouldNotify("ct:1"));
    EXPECT_TRUE(bare.shown.isEmpty());
    EXPECT_FALSE(bare.hasHandler());
    bare.available = true;
    {
        Notifier brief(bare, centre, defaults, clock, [] { });
        brief.bootstrap();
        EXPECT_TRUE(bare.hasHandler());
    }
    EXPECT_FALSE(bare.hasHandler()) << "a gone notifier leaves none behind";
    EXPECT_EQ(log.lines(),
        QStringList("[Notifier] no bundle identifier (bare/unsigned launch) — skipping notification bootstrap"));
}
