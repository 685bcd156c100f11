#include "Calendar/CalendarView.h"
#include "Engines/DraftDelivery.h"
#include "Foundation/Literals.h"
#include "Inbox/InboxView.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "Shell/ContentView.h"
#include "Store/Core/Workspaces.h"
#include "Store/People/CrmRecords.h"
#include "UI/WindowTest.h"

#include <QTest>

namespace corvane {

using KeyboardTest = WindowTest;

TEST_F(KeyboardTest, theListIsWalkedReadAndLeftWithKeysAlone)
{
    showInbox();
    EXPECT_TRUE(focusWithin(u"inbox.list"_s));

    press(Qt::Key_Down);
    EXPECT_EQ(person.selected().name, u"Ana Ruiz"_s);
    press(Qt::Key_J);
    EXPECT_EQ(person.selected().name, u"Ben"_s);
    press(Qt::Key_K);
    press(Qt::Key_Up);
    EXPECT_EQ(person.selected().name, u"Ana Ruiz"_s);

    press(Qt::Key_Return);
    EXPECT_TRUE(focusWithin(u"thread.list"_s));
    press(Qt::Key_Escape);
    EXPECT_TRUE(focusWithin(u"inbox.list"_s));
    press(Qt::Key_Escape);
    EXPECT_EQ(person.selectedId(), QString());
}

TEST_F(KeyboardTest, tabLeavesTheNewestMessageForTheReplyAndUpLeadsToWhatIsOlder)
{
    showInbox();
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    QQuickItem* thread = item(u"thread.list"_s);
    ASSERT_TRUE(thread && focusWithin(u"thread.list"_s));
    press(Qt::Key_Tab);
    EXPECT_FALSE(focusWithin(u"thread.list"_s));
    EXPECT_TRUE(thread->property("atYEnd").toBool());
    press(Qt::Key_Backtab);
    EXPECT_TRUE(focusWithin(u"thread.list"_s));
    press(Qt::Key_Home);
    press(Qt::Key_Up);
    EXPECT_TRUE(focusWithin(u"thread.loadOlder"_s));
    press(Qt::Key_Down);
    EXPECT_FALSE(focusWithin(u"thread.loadOlder"_s));
}

TEST_F(KeyboardTest, aMessageIsActedOnWithKeysAlone)
{
    showInbox();
    const QString sound = home.path(u"share/Corvane/media/studio/a.wav"_s);
    home.write(u"share/Corvane/media/studio/a.wav"_s,
        QByteArray("RIFF\x24\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x40\x1f\0\0\x80\x3e\0\0\x02\0\x10\0data\0\0\0\0", 44));
    receive(*launcher.children.first(), u"49171@s.whatsapp.net"_s, u"Ana Ruiz"_s, {},
        { { "mediaType", "audio" }, { "mediaPath", sound } });
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    ASSERT_TRUE(focusWithin(u"thread.list"_s));

    player.duration = 60'000;
    press(Qt::Key_Space);
    EXPECT_EQ(player.played, QStringList(sound));
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    press(Qt::Key_Left);
    EXPECT_EQ(player.position, 5'000);
    press(Qt::Key_Space);
    EXPECT_EQ(player.current, AudioPlayer::State::Paused);

    press(Qt::Key_Up);
    const int rows = person.thread()->rows()->rowCount();
    press(Qt::Key_Delete);
    EXPECT_EQ(person.thread()->rows()->rowCount(), rows - 1);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(person.thread()->rows()->rowCount(), rows);

    press(Qt::Key_Up);
    press(Qt::Key_Return);
    ASSERT_NE(findItem(u"message.moods"_s), nullptr);
    press(Qt::Key_Down);
    press(Qt::Key_Right);
    press(Qt::Key_Return);
    EXPECT_EQ(findItem(u"message.moods"_s), nullptr);
    EXPECT_TRUE(launcher.children.first()->written.contains("\u2764")) << "the second mood went out";
    EXPECT_TRUE(focusWithin(u"thread.list"_s));

    press(Qt::Key_Return);
    for (int i = 0; i < 3; ++i)
        press(Qt::Key_Down);
    press(Qt::Key_Right);
    press(Qt::Key_Return);
    EXPECT_EQ(delivery.pending().size(), 1) << "forwarded as a draft";
}

TEST_F(KeyboardTest, aConversationIsMutedArchivedAndBroughtBackWithKeys)
{
    showInbox();
    press(Qt::Key_Down);
    const QString ana = person.selectedId();

    press(Qt::Key_M);
    EXPECT_TRUE(person.selected().isMuted);
    press(Qt::Key_E);
    EXPECT_EQ(contacts.contacts()->rowCount(), 5);
    EXPECT_NE(findItem(u"inbox.undo"_s), nullptr);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(contacts.contacts()->rowCount(), 6);
    EXPECT_EQ(findItem(u"inbox.undo"_s), nullptr);
}

TEST_F(KeyboardTest, rowsArePickedWithTheSpaceBarAndActedOnTogether)
{
    showInbox();
    press(Qt::Key_Down);
    press(Qt::Key_Space);
    press(Qt::Key_Down);
    press(Qt::Key_Space);
    EXPECT_EQ(inbox.actions()->bulk()->ids().size(), 2);
    item(u"bulk.archive"_s);

    press(Qt::Key_E);
    EXPECT_EQ(contacts.contacts()->rowCount(), 4);
    EXPECT_EQ(findItem(u"bulk.archive"_s), nullptr);

    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(inbox.actions()->bulk()->ids().size(), 4);
    press(Qt::Key_Escape);
    EXPECT_FALSE(inbox.actions()->bulk()->active());
}

TEST_F(KeyboardTest, thePaletteFindsAPersonAndLettersInItMoveNothingElse)
{
    showInbox();
    press(Qt::Key_K, Qt::ControlModifier);
    ASSERT_TRUE(focusWithin(u"palette.query"_s));

    type(u"je"_s); // J and E would otherwise move on and archive
    EXPECT_EQ(contacts.contacts()->rowCount(), 6);
    press(Qt::Key_Backspace);
    press(Qt::Key_Backspace);
    type(u"ben"_s);
    press(Qt::Key_Return);
    EXPECT_FALSE(inbox.showPalette());
    EXPECT_EQ(person.selected().name, u"Ben"_s);

    press(Qt::Key_K, Qt::ControlModifier);
    EXPECT_EQ(palette.query(), QString());
    press(Qt::Key_Escape);
    EXPECT_FALSE(inbox.showPalette());
    EXPECT_EQ(person.selected().name, u"Ben"_s);
}

TEST_F(KeyboardTest, searchTakesTheLettersAndGivesTheListBack)
{
    showInbox();
    press(Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(focusWithin(u"inbox.search"_s));
    type(u"invoice"_s);
    clock.advance(Milliseconds(300));
    rest();
    EXPECT_EQ(contacts.contacts()->rowCount(), 1);
    EXPECT_EQ(contacts.results()->messages()->rowCount(), 1);

    press(Qt::Key_Down);
    EXPECT_TRUE(focusWithin(u"inbox.list"_s));
    press(Qt::Key_Escape);
    clock.advance(Milliseconds(300));
    EXPECT_EQ(inbox.filters()->search(), QString());
}

TEST_F(KeyboardTest, aSearchLeadsToTheNoteOfAPersonAndToTheDayOfAnEvent)
{
    showInbox();
    addNote(app.db(), u"ct:WHATSAPP:49171@s.whatsapp.net"_s, u"Bring the kiln wash"_s);
    app.db().run(u"INSERT INTO calendar_event(id, workspace_id, title, start_ms, end_ms, updated_at) "
                 "VALUES('e', ?, 'Open the kiln', ?, ?, 1);"_s,
        { activeWorkspaceId(app.db()), clock.nowMs() + 40 * 86'400'000LL, clock.nowMs() + 41 * 86'400'000LL });
    const auto openOnly = [this](const QString& words) {
        press(Qt::Key_F, Qt::ControlModifier);
        type(words);
        clock.advance(Milliseconds(300));
        rest();
        ASSERT_EQ(contacts.results()->records()->rowCount(), 1);
        press(Qt::Key_Down);
        EXPECT_TRUE(focusWithin(u"inbox.list"_s));
        press(Qt::Key_Down);
        press(Qt::Key_Return);
        rest();
    };
    openOnly(u"kiln wash"_s);
    EXPECT_EQ(person.selected().name, u"Ana Ruiz"_s);
    EXPECT_TRUE(focusWithin(u"contact.section.notes"_s));
    openOnly(u"open the"_s);
    EXPECT_EQ(shell.selectedNav(), u"calendar"_s);
    const QString shown = screens.calendar->title();
    screens.calendar->today();
    EXPECT_NE(screens.calendar->title(), shown);
}

TEST_F(KeyboardTest, hubsAndSettingsHaveTheirKeys)
{
    showInbox();
    const QStringList hubs { u"lumo"_s, u"gtm"_s, u"cx"_s, u"ops"_s, u"inbox"_s, u"dev"_s };
    for (int i = 0; i < hubs.size(); ++i) {
        press(Qt::Key_1 + i, Qt::ControlModifier);
        EXPECT_EQ(shell.selectedNav(), hubs.at(i));
        item(u"topnav."_s + hubs.at(i));
    }
    press(Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_TRUE(shell.settings());
    EXPECT_TRUE(focusWithin(u"settings.accounts"_s));
    press(Qt::Key_Down);
    EXPECT_EQ(settings.section(), settings.sections().at(1).id);
    press(Qt::Key_Escape);
    EXPECT_FALSE(shell.settings());
    EXPECT_EQ(shell.selectedNav(), u"dev"_s);
}

TEST_F(KeyboardTest, everyKeyIsListedUnderF1)
{
    showInbox();
    press(Qt::Key_F1);
    item(u"shortcutsSheet"_s);
    press(Qt::Key_Escape);
    EXPECT_EQ(findItem(u"shortcutsSheet"_s), nullptr);
    press(Qt::Key_Question);
    item(u"shortcutsSheet"_s);
    QTest::keyClick(window.window(), Qt::Key_Escape);
    press(Qt::Key_K, Qt::ControlModifier);
    EXPECT_TRUE(inbox.showPalette()) << "no key is lost while a sheet goes";
}

TEST_F(KeyboardTest, f6WalksOverThePanesInReadingOrderAndBack)
{
    showInbox();
    press(Qt::Key_Down);
    const QStringList panes { u"inbox.list"_s, u"thread.list"_s, u"composer"_s, u"contact.section.identity"_s,
        u"topnav.inbox"_s };
    for (qsizetype i = 1; i <= panes.size(); ++i) {
        press(Qt::Key_F6);
        EXPECT_TRUE(focusWithin(panes.at(i % panes.size()))) << qPrintable(panes.at(i % panes.size()));
    }
    press(Qt::Key_F6, Qt::ShiftModifier);
    EXPECT_TRUE(focusWithin(u"topnav.inbox"_s));
}

TEST_F(KeyboardTest, theWallIsPassedWithKeysAlone)
{
    EXPECT_TRUE(focusWithin(u"wall.email"_s));
    for (int i = 0; i < 12 && !focusWithin(u"wall.continue"_s); ++i)
        press(Qt::Key_Tab);
    ASSERT_TRUE(focusWithin(u"wall.continue"_s));
    press(Qt::Key_Return);
    EXPECT_FALSE(content.showsWall());
    EXPECT_TRUE(focusWithin(u"inbox.list"_s) || focused() != nullptr);
}

}
