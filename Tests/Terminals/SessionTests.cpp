#include "TerminalsTest.h"

#include "Foundation/Redaction.h"
#include "Support/RealDecoder.h"
#include "Terminals/DevProcessInspector.h"
#include "Terminals/ShellCommand.h"

#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>

namespace corvane {

TEST_F(Terminals, theInitialCommandIsTypedOnceTheShellIsThere)
{
    const auto make = [this](const QString& command) {
        return std::make_unique<LumoTerminalSession>(
            LumoTerminalSession::Options { .title = u"t"_s, .initialCommand = command, .command = script("cat") },
            clock);
    };
    const auto session = make(u"echo hello"_s);
    session->view({ 60, 10 });
    clock.advance(Milliseconds(349));
    EXPECT_EQ(transcript(*session), QString());
    clock.advance(Milliseconds(1));
    EXPECT_TRUE(awaitText(*session, u"echo hello"_s));

    const auto timers = clock.pendingTimers();
    make(u"  "_s)->view({ 60, 10 });
    EXPECT_EQ(clock.pendingTimers(), timers);
    const auto closed = make(u"date"_s);
    closed->view({ 60, 10 });
    closed->terminate();
    clock.advance(seconds(1));
    EXPECT_EQ(transcript(*closed), QString());
}

TEST_F(Terminals, theTranscriptOfASessionWithAPasswordComesOutRedacted)
{
    LumoTerminalSession& session
        = open("umask; stty -echo; printf 'Code? '; read x; stty echo; echo API_KEY=$x; sleep 60");
    ASSERT_TRUE(awaitText(session, u"Code?"_s));
    session.send(u"hunter22\n"_s);
    ASSERT_TRUE(awaitText(session, u"API_KEY"_s));
    const QString text = redactSensitive(transcript(session));
    EXPECT_TRUE(text.startsWith(u"0027"_s));
    EXPECT_TRUE(text.contains(u"Code? [hidden]"_s)) << text.toStdString();
    EXPECT_TRUE(text.endsWith(u"API_KEY=[redacted]"_s)) << text.toStdString();
    EXPECT_GT(DevProcessInspector::count(u"SLEEP 60"_s), 0);
}

TEST_F(Terminals, closingAndQuittingAskWhileAProgramRuns)
{
    LumoTerminalSession& session = view.createLocalSession(u"Test Run"_s, { "/bin/sh", { "-i" }, {}, {}, {} });
    const QString id = session.id();
    EXPECT_EQ(session.label(), u"local-test-run-1"_s);
    session.view({ 60, 10 });
    session.send(u"cat\n"_s);
    ASSERT_TRUE(await([&] { return session.runningCommand() == u"cat"_s; }));
    view.close(id);
    EXPECT_EQ(view.question()->text(), u"cat is still running. Closing the terminal ends it."_s);
    view.question()->answer(false);
    EXPECT_EQ(view.count(), 1);

    EXPECT_TRUE(view.asksBeforeQuit());
    EXPECT_FALSE(view.asksBeforeQuit()); // the second request is not questioned
    QSignalSpy quit(view.question(), &TerminalQuestion::quitConfirmed);
    view.question()->answer(true);
    EXPECT_EQ(quit.size(), 1);

    view.close(id);
    view.question()->answer(true);
    EXPECT_EQ(view.count(), 0);
    EXPECT_EQ(view.current(), nullptr);
}

TEST_F(Terminals, aTabGoesWhenItsShellIsLeftAndStaysToTellOfAFailure)
{
    open("exit 0");
    EXPECT_TRUE(await([this] { return view.count() == 0; }));
    open("kill -9 $$");
    EXPECT_TRUE(await([this] { return view.endedText() == u"The shell was ended by signal 9."_s; }));
    LumoTerminalSession& missing = view.createLocalSession(u"x"_s, { "/no/such/shell", {}, {}, {}, {} });
    missing.view({ 60, 10 });
    EXPECT_EQ(view.endedText(), u"The shell could not be started."_s);
    EXPECT_EQ(view.count(), 2);
    terminal::Snapshot snapshot;
    ASSERT_TRUE(missing.snapshot(snapshot));
    EXPECT_EQ(snapshot.rows[0].cells.size(), std::string_view("/no/such/shell: No such file or directory").size());
}

TEST_F(Terminals, aFileInTheOutputOpensInTheEditorElseInTheDesktopsProgram)
{
    home.write(u"notes.txt"_s, "one line");
    const QString path = home.path(u"notes.txt"_s);
    qunsetenv("VISUAL");
    qputenv("EDITOR", "tail -f");
    view.openLink(path + u":1"_s);
    ASSERT_EQ(view.count(), 1);
    LumoTerminalSession& editor = *view.current();
    EXPECT_EQ(editor.label(), u"notes.txt"_s);
    editor.view({ 60, 10 });
    EXPECT_TRUE(awaitText(editor, u"one line"_s));
    EXPECT_EQ(editor.runningCommand(), u"tail"_s); // so closing asks, although there is no shell

    qunsetenv("EDITOR");
    view.openLink(path + u":1"_s);
    QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    view.openLink(path + u":1"_s);
    view.openLink(u"file://"_s + path);
    view.openLink(u"file:///no/such/file"_s);
    const QString folder = QFileInfo(path).absolutePath();
    EXPECT_EQ(desktop.openedFiles, (QStringList { path, folder, folder }));
    view.openLink(u"https://example.org"_s);
    EXPECT_EQ(desktop.openedLinks.size(), 1);
}

TEST_F(Terminals, pastingLinesAsksWhereTheProgramDoesNotKnowPastes)
{
    LumoTerminalSession& session = open("stty -echo; printf ready; cat -v");
    ASSERT_TRUE(awaitText(session, u"ready"_s));
    view.paste(u"one"_s);
    EXPECT_EQ(view.question()->text(), QString());
    view.paste(u"rm x\ny\n"_s);
    EXPECT_EQ(view.question()->text(), u"Paste 2 lines? The program in the terminal acts on each at once: “rm x y”"_s);
    view.question()->answer(true);
    EXPECT_TRUE(awaitText(session, u"onerm x"_s));
    session.terminal()->terminal()->feed("\x1b[?2004h");
    view.paste(u"a\x1b[201~\nb"_s);
    EXPECT_EQ(view.question()->text(), QString());
    session.send(u"\n"_s);
    EXPECT_TRUE(awaitText(session, u"^[[200~a[201~"_s));
}

TEST_F(Terminals, aPasteThatWouldBeDroppedIsRefused)
{
    LumoTerminalSession& session = open("stty raw -echo; printf ready; sleep 1000");
    ASSERT_TRUE(awaitText(session, u"ready"_s));
    for (int i = 0; i < 4; ++i)
        view.paste(QString(1'000'000, u'x'));
    EXPECT_EQ(view.question()->text(), QString());
    view.paste(QString(1'000'000, u'x'));
    EXPECT_TRUE(view.question()->text().startsWith(u"The program in the terminal has not read"_s));
}

TEST_F(Terminals, aViewThatIsScrolledBackStaysOnItsText)
{
    LumoTerminalSession& session = open("seq 1 100; read x; seq 101 300; read x");
    ASSERT_TRUE(awaitText(session, u"100"_s));
    terminal::Snapshot snapshot;
    const auto first = [&] {
        session.snapshot(snapshot);
        std::string text;
        for (const terminal::Cell cell : snapshot.rows[0].cells)
            text.push_back(char(cell.content()));
        return text;
    };
    ASSERT_TRUE(await([&] { return session.snapshot(snapshot), snapshot.historyRows == 91; }));
    session.scrollTo(-50);
    const std::string before = first();
    session.send(u"\n"_s);
    ASSERT_TRUE(await([&] { return session.snapshot(snapshot), snapshot.historyRows > 250; }));
    EXPECT_EQ(first(), before);
    session.view({ 20, 6 });
    EXPECT_EQ(first(), before);

    session.search()->setShown(true);
    session.search()->setText(u"27"_s);
    EXPECT_EQ(session.search()->status(), u"1 of 13"_s); // matches 27, 127, 227 and 270 to 279
    session.search()->next();
    EXPECT_EQ(session.search()->status(), u"2 of 13"_s);
}

TEST_F(Terminals, aProgramNotifiesTheUserAndItsPromptsAreFound)
{
    LumoTerminalSession& session = open(
        R"(for i in 1 2 3; do printf '\033]133;A\007prompt\r\n\033]133;C\007'; seq 1 30; printf '\033]133;D;0\007'; done
        printf '\033]9;built\007'; cat)");
    QSignalSpy told(&view, &TerminalsView::notified);
    ASSERT_TRUE(await([&] { return told.count() == 1; }));
    EXPECT_EQ(told.at(0), QVariantList({ session.label(), u"built"_s }));
    const auto after = [&session](bool next) {
        session.scrollToPrompt(next);
        return session.scrollTop();
    };
    const int64_t last = after(false);
    EXPECT_EQ(after(false), last - 31);
    EXPECT_EQ(after(false), last - 62);
    EXPECT_EQ(after(false), last - 62);
    EXPECT_EQ(after(true), last - 31);
    EXPECT_EQ(after(true), last);
    EXPECT_EQ(after(true), 0);
}

TEST_F(Terminals, aProgramTellsHowFarItIsAndChoosesThePointer)
{
    LumoTerminalSession& session
        = open(R"(printf '\033]9;4;1;40\007\033]22;wait\007'; read x; printf '\033]9;4;0\007\033]22;\007'; cat)");
    EXPECT_TRUE(await([&] { return session.progress().percent == 40 && session.pointer() == u"wait"_s; }));
    session.send(u"\n"_s);
    EXPECT_TRUE(
        await([&] { return session.progress() == TerminalRequests::Progress() && session.pointer().isEmpty(); }));
}

TEST_F(Terminals, aPictureThatIsNotPngIsDecodedInItsOwnProcess)
{
    RealDecoder real;
    LumoTerminalSession session(
        { .title = u"t"_s,
            .command = script(
                "printf '\\033]1337;File=inline=1:R0lGODlhAQABAIAAAP8AAP///yH5BAAAAAAALAAAAAABAAEAAAICRAEAOw==\\007'; "
                "cat") },
        clock, &real.decoder);
    session.view({ 60, 10 });
    terminal::Snapshot snapshot;
    const std::vector<uint8_t> red { 255, 0, 0, 255 };
    EXPECT_TRUE(await([&] {
        session.snapshot(snapshot);
        return !snapshot.images.empty() && snapshot.images.begin()->second.bitmap.pixels == red;
    }));
}

TEST_F(Terminals, aShellStartsInItsFolderOrAtHome)
{
    const QString at = home.paths().home;
    EXPECT_EQ(resolvedDirectory(u"/no/such"_s, at), at);
    QDir().mkpath(at + u"/nimb/x"_s);
    EXPECT_EQ(resolvedDirectory(u"/no/such"_s, at), at + u"/nimb"_s);
    EXPECT_EQ(resolvedDirectory(u"~/nimb/x"_s, at), at + u"/nimb/x"_s);
    EXPECT_EQ(resolvedDirectory(u"~"_s, at), at);
    EXPECT_EQ(resolvedDirectory(u"~x"_s, at), at + u"/nimb"_s) << "of another user";

    const QByteArray language = qgetenv("LANG");
    qputenv("LANG", "C.UTF-8");
    const terminal::Command command = shellCommand(at, 027);
    EXPECT_EQ(command.directory, at.toStdString());
    EXPECT_EQ(command.umask, mode_t(027));
    EXPECT_TRUE(command.environment.empty());
    qunsetenv("LANG");
    EXPECT_EQ(shellCommand(at, {}).environment.size(), 1) << "else the shell would take no text but ASCII";
    if (!language.isNull())
        qputenv("LANG", language);
    EXPECT_TRUE(isShell(u"dash"_s));
    EXPECT_TRUE(isShell(QFileInfo(QString::fromStdString(terminal::loginShell())).fileName()));
    EXPECT_FALSE(isShell(u"vi"_s));
}

}
