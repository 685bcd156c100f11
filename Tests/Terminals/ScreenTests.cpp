#include "TerminalsTest.h"

#include "Terminals/TerminalCommands.h"

#include <QSet>
#include <QSignalSpy>

namespace corvane {

namespace {

/// Shows the lines "n1" to the last one; the newest of a hundred is in row 8.
void print(LumoTerminalSession& session, int last, int first = 1)
{
    std::string text;
    for (int n = first; n <= last; ++n)
        text += "n" + std::to_string(n) + "\r\n";
    session.terminal()->terminal()->feed(text);
}

}

TEST_F(Terminals, aSearchCountsFromTheNewestMatchAndSaysWhyThereIsNone)
{
    LumoTerminalSession& session = open("cat");
    TerminalSearch& search = *session.search();
    session.terminal()->terminal()->feed("one\r\nOne\r\none two\r\n");
    search.setText(u"one"_s);
    EXPECT_EQ(search.status(), "Nothing found") << "it is not shown";
    EXPECT_EQ(search.matches().size(), 0);
    const QSignalSpy changed(&search, &TerminalSearch::changed);
    const QSignalSpy redrawn(&session, &LumoTerminalSession::changed);
    search.setShown(true);
    EXPECT_EQ(search.status(), "3 found");
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(redrawn.size(), 1);
    search.setShown(true);
    search.setText(u"one"_s);
    EXPECT_EQ(changed.size(), 1);
    QStringList walk;
    for (const auto step : { &TerminalSearch::next, &TerminalSearch::next, &TerminalSearch::next, &TerminalSearch::next,
             &TerminalSearch::previous, &TerminalSearch::previous }) {
        const auto before = redrawn.size();
        (search.*step)();
        EXPECT_EQ(redrawn.size(), before + 1);
        walk.append(search.status().first(1));
    }
    EXPECT_EQ(walk.join(' '), "1 2 3 1 3 2");
    search.setMatchCase(true);
    EXPECT_EQ(search.status(), "2 of 2") << "the second newest, as before";
    search.setMatchCase(false);
    EXPECT_EQ(search.status(), "2 of 3");
    search.setRegex(true);
    search.setText(u"o[n"_s);
    EXPECT_EQ(search.status(), "Not a valid expression");
    EXPECT_EQ(search.generation(), session.terminal()->terminal()->generation());
    search.next();
    search.setText(u"o.e t"_s);
    EXPECT_EQ(search.status(), "1 of 1");
    search.setRegex(false);
    EXPECT_EQ(search.status(), "Nothing found");
    search.previous();
    EXPECT_EQ(search.current(), std::nullopt);
    search.setText({});
    EXPECT_EQ(search.status(), "");
}

TEST_F(Terminals, aSearchFollowsTheOutputAndScrollsOnlyToWhatIsNotSeen)
{
    LumoTerminalSession& session = open("cat");
    TerminalSearch& search = *session.search();
    print(session, 100);
    search.setShown(true);
    const auto topAt = [&](const char* text) {
        search.setText(QString::fromLatin1(text));
        return session.scrollTop();
    };
    EXPECT_EQ(topAt("n99"), 0);
    EXPECT_EQ(topAt("n50"), -45) << "a third below the top";
    EXPECT_EQ(topAt("n47"), -45) << "the first row shown";
    EXPECT_EQ(topAt("n56"), -45) << "the last row shown";
    EXPECT_EQ(topAt("n57"), -38);
    EXPECT_EQ(topAt("n53"), -42);
    EXPECT_EQ(topAt("n99"), 0);

    session.scrollTo(0);
    EXPECT_EQ(topAt("n50"), -45);
    const auto timers = clock.pendingTimers();
    search.update();
    EXPECT_EQ(clock.pendingTimers(), timers) << "nothing has changed";
    print(session, 105, 101);
    terminal::Snapshot snapshot;
    ASSERT_TRUE(session.snapshot(snapshot));
    EXPECT_EQ(search.shift(), -5);
    session.scrollTo(0);
    search.next();
    EXPECT_EQ(session.scrollTop(), -50);
    const uint64_t seen = search.generation();
    search.update();
    clock.advance(Milliseconds(100));
    search.update();
    clock.advance(Milliseconds(99));
    EXPECT_EQ(search.generation(), seen) << "soon, not with every output";
    clock.advance(Milliseconds(1));
    EXPECT_GT(search.generation(), seen);
    EXPECT_EQ(search.status(), "1 of 1");
    ASSERT_TRUE(session.snapshot(snapshot));
    EXPECT_EQ(search.shift(), 0);
    search.setShown(false);
    EXPECT_EQ(search.matches().size(), 0);
    print(session, 106, 106);
    const auto idle = clock.pendingTimers();
    search.update();
    EXPECT_EQ(clock.pendingTimers(), idle) << "it is not shown";
}

TEST_F(Terminals, aFrozenScreenIsNotReadUntilItsProgramGoesOnOrTakesTooLong)
{
    LumoTerminalSession& session = open("cat");
    terminal::Snapshot snapshot;
    ASSERT_TRUE(session.snapshot(snapshot));
    session.terminal()->terminal()->feed("\033[?2026h");
    EXPECT_FALSE(session.snapshot(snapshot));
    session.terminal()->terminal()->feed("\033[?2026l");
    EXPECT_TRUE(session.snapshot(snapshot));
    session.terminal()->terminal()->feed("\033[?2026h");
    EXPECT_FALSE(session.snapshot(snapshot));
    const QSignalSpy changed(&session, &LumoTerminalSession::changed);
    clock.advance(Milliseconds(500));
    EXPECT_EQ(changed.size(), 0);
    clock.advance(Milliseconds(1));
    EXPECT_EQ(changed.size(), 1);
    EXPECT_TRUE(session.snapshot(snapshot));
    session.view({ 50, 10 });
    EXPECT_EQ(session.terminal()->terminal()->size(), (terminal::Size { 50, 10 }));
    session.terminal()->terminal()->feed("\033[?2026h");
    EXPECT_TRUE(session.snapshot(snapshot)) << "of another size";

    print(session, 100);
    session.scrollTo(-1000);
    EXPECT_EQ(session.scrollTop(), -int64_t(session.terminal()->terminal()->historyRows())) << "the oldest row";
    session.scrollTo(5);
    EXPECT_EQ(session.scrollTop(), 0);
    session.terminal()->terminal()->feed("\033[?2026l");
    session.scrollTo(-5);
    session.scrollTo(0);
    ASSERT_TRUE(session.snapshot(snapshot));
    EXPECT_EQ(session.scrollTop(), 0) << "not where it was before";
    session.scrollTo(-5);
    session.terminal()->terminal()->feed("\033[?1049h");
    ASSERT_TRUE(session.snapshot(snapshot));
    EXPECT_EQ(session.scrollTop(), 0) << "a full-screen program has no history";
    session.scrollTo(-1);
    EXPECT_EQ(session.scrollTop(), 0);
}

TEST_F(Terminals, theColoursReachATerminalThatRunsAndOneThatStartsLater)
{
    terminal::PaletteState colors = terminal::Palette().initial;
    colors.indexed[1] = 0x010203;
    LumoTerminalSession& session = view.createLocalSession(u"x"_s, script("cat"));
    const QSignalSpy changed(&session, &LumoTerminalSession::changed);
    session.setColors(colors, false);
    EXPECT_EQ(changed.size(), 1);
    session.view({ 60, 10 });
    EXPECT_EQ(session.terminal()->terminal()->palette(), colors);
    EXPECT_FALSE(session.terminal()->terminal()->config().darkColors);
    colors.indexed[1] = 0x040506;
    session.setColors(colors, false);
    EXPECT_EQ(session.terminal()->terminal()->palette(), colors);
    EXPECT_EQ(changed.size(), 2);
}

TEST_F(Terminals, theHistoryOfATerminalThatRestsIsPackedInSteps)
{
    LumoTerminalSession& session = open("cat");
    print(session, 60'000);
    session.send(u"end\n"_s);
    ASSERT_TRUE(awaitText(session, u"end"_s));
    ASSERT_TRUE(await([&] { return clock.pendingTimers() > 0; }));
    const auto size = [&] {
        return session.terminal()->terminal()->memory().history;
    };
    const size_t whole = size();
    clock.advance(Milliseconds(9999));
    EXPECT_EQ(size(), whole);
    clock.advance(Milliseconds(1));
    const size_t first = size();
    EXPECT_LT(first, whole);
    clock.advance(Milliseconds(49));
    EXPECT_EQ(size(), first);
    clock.advance(Milliseconds(1));
    EXPECT_LT(size(), first);
    clock.advance(seconds(60));
    EXPECT_EQ(clock.pendingTimers(), 0) << "all is packed";
}

TEST(TerminalCommands, noneTakesAKeyThatAProgramInTheTerminalReads)
{
    QSet<QString> seen;
    for (const Command& command : terminalCommands()) {
        EXPECT_FALSE(command.label.isEmpty()) << command.id.toStdString();
        for (const QString& key : command.sequences) {
            EXPECT_FALSE(seen.contains(key)) << key.toStdString();
            seen.insert(key);
            const bool isControlLetter = key.startsWith(u"Ctrl+"_s) && key.size() == 6 && key.back().isLetter();
            EXPECT_FALSE(isControlLetter) << key.toStdString();
        }
    }
    EXPECT_TRUE(seen.contains(u"Ctrl+Shift+C"_s));
}

}
