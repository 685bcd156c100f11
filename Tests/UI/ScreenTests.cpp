#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Inbox/InboxView.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "Shell/ProfileMenu.h"
#include "Shell/StoreRecovery.h"
#include "Store/Core/StoreHealth.h"
#include "Support/Await.h"
#include "Support/Environment.h"
#include "Support/Places.h"
#include "UI/WindowTest.h"
#include "Web/SessionStore.h"

#include <QSet>
#include <QSignalSpy>
#include <algorithm>
#include <sqlite3.h>

namespace corvane {

namespace {

/// The message that a thread item shows; empty for any other item.
ThreadRow messageOf(const QQuickItem* item)
{
    const bool isLine = QByteArray(item->metaObject()->className()).startsWith("ThreadItem");
    return isLine ? item->property("message").value<ThreadRow>() : ThreadRow();
}

}

class ScreenTest : public WindowTest {
protected:
    /// Checks, in both themes, that the screen is not a single colour and differs from what was drawn before.
    void expectDrawn(const QString& screen)
    {
        for (const ColourScheme scheme : { ColourScheme::Light, ColourScheme::Dark }) {
            desktop.setAppearance(scheme, true);
            const QImage image = picture();
            QSet<QRgb> colours;
            for (int y = 0; y < image.height(); y += 3) {
                for (int x = 0; x < image.width(); x += 3)
                    colours.insert(image.pixel(x, y));
            }
            EXPECT_GT(colours.size(), 20) << qPrintable(screen);
            EXPECT_NE(image, m_last) << qPrintable(screen);
            m_last = image;
        }
        EXPECT_EQ(Warnings::seen(), QStringList()) << qPrintable(screen);
    }

private:
    QImage m_last;
};

TEST_F(ScreenTest, everyScreenDrawsWithoutAWarningInBothThemes)
{
    expectDrawn(u"wall"_s);
    showEmptyInbox();
    expectDrawn(u"empty inbox"_s);
    showInbox();
    expectDrawn(u"list"_s);
    press(Qt::Key_Down);
    expectDrawn(u"thread"_s);
    inbox.filters()->setViewModeWord(u"messages"_s);
    expectDrawn(u"grouped by day"_s);
    inbox.filters()->setSearch(u"invoice"_s);
    clock.advance(Milliseconds(300));
    expectDrawn(u"search"_s);
    inbox.filters()->setSearch(u"no such words"_s);
    clock.advance(Milliseconds(300));
    expectDrawn(u"nothing found"_s);
    inbox.filters()->setSearch({});
    clock.advance(Milliseconds(300));
    inbox.actions()->bulk()->all();
    expectDrawn(u"picked rows"_s);
    inbox.actions()->bulk()->clear();
    inbox.setShowPalette(true);
    expectDrawn(u"palette"_s);
    inbox.setShowPalette(false);
    press(Qt::Key_F1);
    expectDrawn(u"shortcuts"_s);
    press(Qt::Key_Escape);
    for (const char* hub : { "lumo", "gtm", "cx", "ops", "dev" }) {
        shell.selectHub(hub);
        expectDrawn(hub);
    }
}

TEST_F(ScreenTest, everySectionAndSheetOfTheSettingsDrawsWithoutAWarning)
{
    showInbox();
    shell.openSettings();
    for (const auto& section : settings.sections()) {
        settings.setSection(section.id);
        expectDrawn(settings.section());
    }
    settings.setSection(u"accounts"_s);
    rest();
    for (const ConnectFlow& flow : settings.accounts()->connectFlows()) {
        if (flow.fields.isEmpty() && flow.channel != Channel::Email)
            continue;
        QQuickItem* tile = item(u"connect."_s + flow.channelWord());
        ASSERT_NE(tile, nullptr);
        QMetaObject::invokeMethod(tile, "clicked");
        expectDrawn(flow.title);
        press(Qt::Key_Escape);
        EXPECT_EQ(findItem(u"connectSheet"_s), nullptr);
    }
}

TEST_F(ScreenTest, aSheetConnectsOnlyWhenItsRuleHoldsAndKeepsTheSecret)
{
    showInbox();
    const qsizetype before = accounts.accounts().size();
    shell.openSettings();
    rest();
    QMetaObject::invokeMethod(item(u"connect.TELEGRAM"_s), "clicked");
    rest();
    EXPECT_FALSE(item(u"connect.submit"_s)->isEnabled());
    launcher.expect(FakeLauncher::stays());
    type(u"123456:ABC"_s);
    EXPECT_TRUE(item(u"connect.submit"_s)->isEnabled());
    press(Qt::Key_Return);

    ASSERT_EQ(accounts.accounts().size(), before + 1);
    EXPECT_EQ(keychain.get(accounts.accounts().last().slug), u"123456:ABC"_s);
    EXPECT_EQ(findItem(u"connectSheet"_s), nullptr);
}

TEST_F(ScreenTest, aMailboxIsConnectedByAddressAndPasswordAlone)
{
    // ChildProgram stands in for Node and runs the entry script.
    const Environment environment { { "CORVANE_NODE", CORVANE_TEST_PROGRAMS "/ChildProgram" } };
    home.write(u"resources/engine/src/main.ts"_s, "");
    launcher.realLauncher = recogniser.launcher.get();
    const auto engineSays = [&](const QByteArray& event) {
        launcher.expect(FakeLauncher::real());
        home.write(u"resources/engine/src/email-main.ts"_s, event.isEmpty() ? "hang" : "print @@CORVANE@@" + event);
    };
    const auto message = [&] {
        QQuickItem* label = findItem(u"connect.message"_s);
        return label ? label->property("text").toString() : QString();
    };
    showEmptyInbox();
    shell.openSettings();
    rest();
    QMetaObject::invokeMethod(item(u"connect.EMAIL"_s), "clicked");
    rest();
    EXPECT_FALSE(item(u"connect.submit"_s)->isEnabled());
    type(u"ana@studio.example"_s);
    press(Qt::Key_Return);
    type(u"secret"_s);
    engineSays({});
    press(Qt::Key_Return);
    EXPECT_EQ(message(), u"Looking for the mail servers of studio.example…"_s);
    expectDrawn(u"finding"_s);
    click(u"connect.cancel"_s);
    EXPECT_EQ(message(), QString());

    engineSays(R"({"type":"servers","imap":{"host":"imap.else.example","port":993,"security":"tls"},"smtp":{"host":)"
               R"("smtp.else.example","port":465,"security":"tls"},"found":"srv","confirm":["imap.else.example"]})");
    click(u"connect.submit"_s);
    EXPECT_TRUE(await([&] { return message().contains(u"imap.else.example"_s); }));
    expectDrawn(u"confirm"_s);
    EXPECT_EQ(item(u"connect.imap.host"_s)->property("text"), u"imap.else.example"_s);
    engineSays(R"({"type":"signIn","ok":true})");
    launcher.expect(FakeLauncher::stays());
    click(u"connect.submit"_s);
    EXPECT_TRUE(await([&] { return accounts.accounts().size() == 1; }));
    rest();
    EXPECT_EQ(findItem(u"connectSheet"_s), nullptr);
}

TEST_F(ScreenTest, pairingShowsTheCodeAndThenThatItWorked)
{
    showInbox();
    const Account account = accounts.add(u"Shop"_s, Channel::WhatsApp);
    launcher.expect(FakeLauncher::stays());
    engines.start(account);
    launcher.last().printEvent({ { "type", "qr" }, { "qr", "2@a-code-to-scan,with,parts" } });
    settle();
    shell.openSettings();
    rest();
    settings.accounts()->pairing()->open(account.id);
    expectDrawn(u"pairing"_s);
    QQuickItem* code = item(u"pairing.code"_s);
    ASSERT_NE(code, nullptr);

    launcher.last().printEvent({ { "type", "status" }, { "state", "open" } });
    settle();
    rest();
    EXPECT_EQ(findItem(u"pairing.code"_s), nullptr);
    expectDrawn(u"paired"_s);
    press(Qt::Key_Return);
    EXPECT_FALSE(settings.accounts()->pairing()->isOpen());
}

TEST_F(ScreenTest, whatCannotBeUndoneAsksFirst)
{
    showInbox();
    shell.openSettings();
    rest();
    const qsizetype before = accounts.accounts().size();
    const Account victim = accounts.accounts().first();
    QQuickItem* line = item(u"account:"_s + victim.id.toString(QUuid::WithoutBraces));
    ASSERT_NE(line, nullptr);
    const auto row = line->property("account").value<AccountRow>();
    for (const AccountAction& action : row.actions) {
        if (action.id == u"remove"_s)
            QMetaObject::invokeMethod(line, "acted", Q_ARG(corvane::AccountAction, action));
    }
    rest();
    ASSERT_NE(item(u"confirmSheet"_s), nullptr);
    press(Qt::Key_Escape);
    EXPECT_EQ(accounts.accounts().size(), before);
}

TEST_F(ScreenTest, theProfileMenuOffersWorkspacesOnceAndOnlyToWhoIsSignedIn)
{
    const auto offers = [&] {
        click(u"topnav.profile"_s);
        rest();
        const auto items = visibleItems();
        const auto count = std::ranges::count_if(items, [&](const QQuickItem* each) {
            return each->inherits("QQuickMenuItem") && each->property("text") == profile.workspaceLabel();
        });
        press(Qt::Key_Escape);
        rest();
        return count;
    };
    session.setAuth(u"header.e30.signature"_s, u"device"_s);
    rest();
    EXPECT_EQ(offers(), 1);
    session.signOut();
    showEmptyInbox();
    EXPECT_EQ(offers(), 0);
    session.setAuth(u"header.e30.signature"_s, u"device"_s);
    EXPECT_EQ(offers(), 1);
}

TEST_F(ScreenTest, aSearchOfAnyLengthStaysInItsPlace)
{
    showInbox();
    inbox.filters()->setSearch(QString(10'000, u'x'));
    clock.advance(Milliseconds(300));
    rest();
    for (const QQuickItem* each : visibleItems()) {
        if (each->inherits("QQuickText"))
            EXPECT_LE(each->height(), 100) << qPrintable(each->property("text").toString().left(40));
    }
}

TEST_F(ScreenTest, aThreadOpensAtItsNewestAndStaysThereAsMessagesCome)
{
    showInbox();
    press(Qt::Key_Down);
    QQuickItem* thread = item(u"thread.list"_s);
    ASSERT_NE(thread, nullptr);
    EXPECT_TRUE(thread->property("atYEnd").toBool());

    receive(*launcher.children.first(), u"49171@s.whatsapp.net"_s, u"Ana Ruiz"_s, u"and one more"_s);
    rest();
    EXPECT_TRUE(thread->property("atYEnd").toBool());

    thread->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Home);
    receive(*launcher.children.first(), u"49171@s.whatsapp.net"_s, u"Ana Ruiz"_s, u"a reader is not pulled away"_s);
    rest();
    EXPECT_FALSE(thread->property("atYEnd").toBool());
    press(Qt::Key_End);
    EXPECT_TRUE(thread->property("atYEnd").toBool());
    press(Qt::Key_PageUp);
    EXPECT_FALSE(thread->property("atYEnd").toBool());
    press(Qt::Key_PageDown);
    EXPECT_TRUE(thread->property("atYEnd").toBool());
}

TEST_F(ScreenTest, olderMessagesComeInAboveAndWhatIsReadStaysInItsPlace)
{
    showInbox();
    press(Qt::Key_Down);
    QQuickItem* thread = item(u"thread.list"_s);
    ASSERT_NE(thread, nullptr);
    const auto placeOf = [&](const QString& body) {
        for (QQuickItem* row : visibleItems()) {
            if (messageOf(row).body == body)
                return row->mapToItem(thread, QPointF()).y();
        }
        return -1.0;
    };
    // The oldest message of a page arrives first and is shown while the others are still arriving.
    int older = 0;
    const auto receiveOlder = [&] {
        older += 50;
        for (int i = 0; i < 50; ++i) {
            launcher.children.first()->printEvent({ { "type", "message" }, { "convExternalId", "49171@s.whatsapp.net" },
                { "providerMsgId", u"old%1"_s.arg(older - i) }, { "historical", true },
                { "body", i % 7 ? u"older"_s : u"a long one from before "_s.repeated(40) },
                { "ts", clock.nowMs() - 60'000LL * 60 * (5 + older - i) } });
            if (i % 20 == 0) {
                clock.advance(Milliseconds(200));
                rest();
            }
        }
        clock.advance(seconds(1));
        rest();
    };
    const int loaded = thread->property("count").toInt();
    thread->setProperty("atNewest", false);
    QMetaObject::invokeMethod(thread, "positionViewAtBeginning");
    rest();
    click(u"thread.loadOlder"_s);
    const double atTop = placeOf(u"Message 0 of a long morning"_s);
    EXPECT_GT(atTop, 0);
    receiveOlder();
    EXPECT_GE(thread->property("count").toInt(), loaded + 50);
    EXPECT_NEAR(placeOf(u"Message 0 of a long morning"_s), atTop, 1);

    person.openHit(u"wa:msg:m25"_s);
    rest();
    const QString read = u"Message 19 of a long morning"_s;
    const double inTheMiddle = placeOf(read);
    EXPECT_GT(inTheMiddle, 0);
    receiveOlder();
    EXPECT_NEAR(placeOf(read), inTheMiddle, 1);

    reply.composer()->setText(u"what is said is seen"_s);
    reply.composer()->send();
    rest();
    EXPECT_TRUE(thread->property("atYEnd").toBool());
}

TEST_F(ScreenTest, aLongThreadIsScrolledToItsBeginningAndAFoundMessageStandsInItsSurroundings)
{
    showInbox();
    engines.db().run(uR"(WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3500)
INSERT INTO unified_message(id, conversation_id, body, ts)
SELECT 'old' || i, (SELECT id FROM unified_conversation WHERE external_id='49171@s.whatsapp.net'),
  'old ' || i || CASE WHEN i % 9 THEN '' ELSE ' with more to say than fits into a line' END, ? + i * 1000 FROM n;)"_s,
        { clock.nowMs() - 86'400'000LL * 9 });
    press(Qt::Key_Down);
    QQuickItem* thread = item(u"thread.list"_s);
    ASSERT_NE(thread, nullptr);
    const auto inSight = [&] {
        QHash<QString, double> rows;
        for (QQuickItem* row : visibleItems()) {
            const double y = row->mapToItem(thread, QPointF()).y();
            if (messageOf(row).body.startsWith(u"old "_s) && y >= 100 && y < thread->height())
                rows.insert(messageOf(row).id, y);
        }
        return rows;
    };
    for (int page = 0; page < 6; ++page) {
        thread->setProperty("atNewest", false);
        QMetaObject::invokeMethod(thread, "positionViewAtBeginning");
        const auto before = inSight();
        rest();
        const auto after = inSight();
        for (const QString& id : before.keys())
            EXPECT_NEAR(after.value(id, -1), before.value(id), 1) << id.toStdString();
    }
    EXPECT_TRUE(inSight().contains(u"old3"_s));
    EXPECT_LE(thread->property("count").toInt(), 3100);
    item(u"thread.loadOlder"_s);

    const int unread = engines.unreadTotal();
    receive(*launcher.children.first(), u"49171@s.whatsapp.net"_s, u"Ana Ruiz"_s, u"far below"_s);
    clock.advance(seconds(2));
    rest();
    EXPECT_EQ(engines.unreadTotal(), unread + 1) << "nobody has seen it";
    person.jumpTo(u"old2750"_s);
    rest();
    EXPECT_TRUE(inSight().contains(u"old2750"_s));
    thread->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_End);
    rest();
    EXPECT_TRUE(thread->property("atYEnd").toBool());
    EXPECT_LE(engines.unreadTotal(), unread) << "its newest message is on the screen";
    press(Qt::Key_Home);
    EXPECT_TRUE(inSight().contains(u"old3"_s));
}

TEST_F(ScreenTest, aListAtItsTopShowsWhoWritesAndOneThatIsScrolledStaysPut)
{
    showInbox();
    FakeChild& engine = *launcher.children.first();
    const auto write = [&](int person) {
        receive(engine, u"%1@s.whatsapp.net"_s.arg(person), u"Person %1"_s.arg(person), u"hello"_s);
        rest();
    };
    for (int person = 100; person < 130; ++person)
        write(person);
    QQuickItem* list = item(u"inbox.list"_s);
    ASSERT_NE(list, nullptr);
    EXPECT_TRUE(list->property("atYBeginning").toBool());

    press(Qt::Key_Down);
    EXPECT_EQ(person.selected().name, u"Person 129"_s);
    write(100);
    EXPECT_TRUE(list->property("atYBeginning").toBool()) << "the open row moves, the view stays";

    for (int i = 0; i < 25; ++i)
        press(Qt::Key_Down);
    const QString open = person.selectedId();
    const auto placeOfOpenRow = [&] {
        for (QQuickItem* row : visibleItems()) {
            if (row->objectName() == u"contact:"_s + open)
                return row->mapToItem(list, QPointF()).y();
        }
        return -1.0;
    };
    const double before = placeOfOpenRow();
    EXPECT_GE(before, 0);
    write(500);
    EXPECT_FALSE(list->property("atYBeginning").toBool());
    EXPECT_EQ(placeOfOpenRow(), before) << "what is being read does not move";
}

TEST_F(ScreenTest, aFoundMessageIsScrolledIntoSight)
{
    showInbox();
    inbox.filters()->setSearch(u"Message 3 of"_s);
    clock.advance(Milliseconds(300));
    rest();
    const QAbstractItemModel* hits = contacts.results()->messages();
    ASSERT_EQ(hits->rowCount(), 1);
    const int idRole = hits->roleNames().key("id");
    person.openHit(hits->index(0, 0).data(idRole).toString());
    rest();

    QQuickItem* thread = item(u"thread.list"_s);
    ASSERT_NE(thread, nullptr);
    bool seen = false;
    for (QQuickItem* row : visibleItems()) {
        if (messageOf(row).body == u"Message 3 of a long morning"_s) {
            const QRectF place = row->mapRectToItem(thread, row->boundingRect());
            seen = thread->boundingRect().contains(place);
        }
    }
    EXPECT_TRUE(seen);
}

TEST_F(ScreenTest, closingTheWindowHidesItAndOpeningItAgainSaysSo)
{
    showEmptyInbox();
    window.hide();
    EXPECT_TRUE(window.window()->close()) << "a quit is not held up";
    window.show();
    QSignalSpy appeared(&window, &MainWindow::appeared);
    QSignalSpy closed(&window, &MainWindow::closed);
    window.window()->resize(1400, 900);
    window.window()->close();
    rest();
    EXPECT_TRUE(window.isShown()) << "no tray shows the program: first it says that it goes on";
    EXPECT_NE(findItem(u"closingNotice"_s), nullptr);
    click(u"closingNotice.close"_s);
    EXPECT_FALSE(window.isShown());
    EXPECT_EQ(closed.size(), 1);

    window.show();
    window.window()->close();
    EXPECT_FALSE(window.isShown()) << "said once";
    window.show();
    EXPECT_TRUE(window.isShown());
    EXPECT_EQ(appeared.size(), 2);
    EXPECT_EQ(defaults.integer(u"Corvane.window.width"_s), 1400);

    QSignalSpy quit(&app, &CorvaneApp::quitRequested);
    press(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(quit.size(), 1);
}

TEST_F(ScreenTest, aFullDiskIsABannerAndADamagedDatabaseAPageToChooseOn)
{
    showInbox();
    engines.db().health().note(SQLITE_FULL);
    clock.advance(Milliseconds(1));
    EXPECT_NE(item(u"notice.store"_s), nullptr);
    clock.advance(seconds(10));
    EXPECT_EQ(findItem(u"notice.store"_s), nullptr) << "there is room again";

    engines.db().health().note(SQLITE_CORRUPT);
    clock.advance(seconds(10));
    expectDrawn(u"damaged database"_s);
    EXPECT_TRUE(focusWithin(u"recovery.save"_s));
    launcher.exitTerminated();
    launcher.expect(FakeLauncher::stays(), 4); // the engines that were running, and the tool server
    click(u"recovery.new"_s);
    EXPECT_TRUE(await([this] { return engines.mcpRunning(); }));
    rest();
    EXPECT_FALSE(recovery.needed());
    EXPECT_EQ(findItem(u"recovery.new"_s), nullptr);
    clock.advance(seconds(10)); // process the lines that waited for the file
}

}
