#include "TerminalsTest.h"

#include "Support/Rows.h"

#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>

namespace corvane {

namespace {

const QByteArray tabId = "tabId";

}

TEST_F(Terminals, aTabOpensBesideTheCurrentOneAndTheStepsWrapAround)
{
    EXPECT_EQ(view.emptyTitle() + '|' + view.createLabel() + '|' + view.restartLabel() + '|' + view.closeLabel(),
        "No terminal is open|New terminal|Start again|Close terminal");
    view.step(1);
    view.closeCurrent();
    view.restart();
    view.paste(u"x"_s);
    EXPECT_EQ(view.current(), nullptr);
    EXPECT_EQ(view.endedText(), "");
    const auto add = [this](const QString& name) {
        LumoTerminalSession& session = view.createLocalSession(name, script("cat"));
        return session.id();
    };
    const QString a = add(u"A b"_s);
    const QString b = add(u"B"_s);
    EXPECT_EQ(view.current()->id(), b);
    const QSignalSpy changed(&view, &TerminalsView::changed);
    view.select(a);
    EXPECT_EQ(changed.size(), 1);
    view.select(u"none"_s);
    EXPECT_EQ(changed.size(), 1);
    const QString c = add(u"C"_s);
    EXPECT_EQ(column(*view.tabs(), tabId), (QStringList { a, c, b }));
    EXPECT_EQ(column(*view.tabs(), "title"), (QStringList { u"local-a-b-1"_s, u"local-c-3"_s, u"local-b-2"_s }));
    EXPECT_EQ(column(*view.tabs(), "selected"), (QStringList { u"false"_s, u"true"_s, u"false"_s }));
    QStringList steps;
    for (const int by : { 1, 1, -1, -1 }) {
        view.step(by);
        steps.append(view.current()->id());
    }
    EXPECT_EQ(steps, (QStringList { b, a, b, c }));

    view.rename(a, u" my \n tab "_s);
    view.rename(u"none"_s, u"x"_s);
    EXPECT_EQ(column(*view.tabs(), "title").first(), "my tab");
    view.rename(a, {});
    EXPECT_EQ(column(*view.tabs(), "title").first(), "local-a-b-1");

    view.close(u"none"_s);
    view.closeCurrent(); // nothing runs in one that was never shown
    EXPECT_EQ(column(*view.tabs(), tabId), (QStringList { a, b }));
    EXPECT_EQ(view.current()->id(), b) << "the next one";
    view.close(a);
    EXPECT_EQ(view.current()->id(), b) << "another one was closed";
    add(u"D"_s);
    view.closeCurrent();
    EXPECT_EQ(view.current()->id(), b) << "the last one is left";
}

TEST_F(Terminals, aNewShellStartsWhereTheCurrentOneIsUnlessItIsOfAnotherProject)
{
    const QString at = home.paths().home;
    for (const QString& folder : { u"/here"_s, u"/shop"_s })
        QDir().mkpath(at + folder);
    LumoTerminalSession& first = view.createLocalSession(u"Dev Server"_s, u"ls"_s, { .directory = at + "/here" });
    EXPECT_EQ(first.initialCommand() + '|' + first.projectSlug(), "ls|local");
    EXPECT_EQ(first.currentDirectory(), at + "/here");
    EXPECT_EQ(first.projectId(), std::nullopt);
    EXPECT_EQ(view.createLocalSession(u"x"_s).currentDirectory(), at + "/here");
    view.setPlace({ .projectId = u"p"_s, .projectSlug = u"shop"_s, .directory = at + "/shop" });
    view.create();
    EXPECT_EQ(view.current()->currentDirectory(), at + "/shop");
    EXPECT_EQ(view.current()->title() + '|' + view.current()->projectSlug(), "shop-shell-1|shop");
    EXPECT_EQ(view.current()->projectId(), u"p"_s);
    view.createLocalSession(u"x"_s, {}, { .projectId = u"p"_s, .projectSlug = u"shop"_s, .directory = at });
    view.create();
    EXPECT_EQ(view.current()->currentDirectory(), at) << "beside one of the same project";
    EXPECT_EQ(view.current()->title(), "shop-shell-3");
}

TEST_F(Terminals, aShellThatFailsAtOnceStaysAndIsStartedAgainInItsPlace)
{
    LumoTerminalSession& running = open("cat");
    view.restart();
    EXPECT_EQ(view.count(), 1) << "it runs";
    EXPECT_EQ(view.endedText(), "");
    EXPECT_EQ(running.exitStatus(), std::nullopt);
    open("exit 3");
    ASSERT_TRUE(await([&] { return !view.endedText().isEmpty(); }));
    EXPECT_EQ(view.endedText(), "The shell ended with exit code 3.");
    EXPECT_EQ(column(*view.tabs(), "ended"), (QStringList { u"false"_s, u"true"_s }));
    EXPECT_FALSE(view.current()->isRunning());
    view.paste(u"nobody reads this"_s);
    const QString failed = view.current()->id();
    view.restart();
    EXPECT_EQ(view.count(), 2);
    EXPECT_NE(view.current()->id(), failed);
    EXPECT_EQ(view.current()->title(), "local-shell-3");
    EXPECT_EQ(column(*view.tabs(), "ended"), (QStringList { u"false"_s, u"false"_s }));

    // Once it has served, its shell takes the tab along.
    for (const auto& [waited, left] : { std::pair(1999, 3), std::pair(2000, 3) }) {
        LumoTerminalSession& session = open("printf ready; read x; exit 3");
        ASSERT_TRUE(awaitText(session, u"ready"_s));
        clock.advance(Milliseconds(waited));
        session.send(u"\n"_s);
        const QString id = session.id();
        ASSERT_TRUE(await([&] { return view.current()->id() != id || session.exitStatus(); }));
        EXPECT_EQ(view.count(), left) << waited;
    }
}

TEST_F(Terminals, aTabTellsWhatItsProgramDoesWhileAnotherIsInFront)
{
    LumoTerminalSession& behind = open("cat");
    LumoTerminalSession& front = open("cat");
    const auto feed = [](LumoTerminalSession& session, std::string_view text) {
        session.terminal()->terminal()->feed(text);
        session.send(u"\n"_s); // its echo brings what was asked for to the view
    };
    const auto shows = [this](const QByteArray& role, const QString& value) {
        return await([&] { return column(*view.tabs(), role).first() == value; });
    };
    feed(front, "\a\033]2;front\007");
    ASSERT_TRUE(await([&] { return front.label() == u"front"_s; }));
    EXPECT_EQ(column(*view.tabs(), "attention"), (QStringList { u"false"_s, u"false"_s }));
    feed(behind, "\a");
    EXPECT_TRUE(shows("attention", u"true"_s));
    view.select(behind.id());
    EXPECT_TRUE(shows("attention", u"false"_s));
    view.select(front.id());
    feed(behind, "\033]133;C\007");
    feed(behind, "\033]133;D;0\007");
    EXPECT_TRUE(shows("attention", u"true"_s)) << "its command has ended";
    for (const auto& [state, share, stalled] :
        { std::tuple("1;40", "0.4", "false"), std::tuple("3", "1", "false"), std::tuple("2;50", "0.5", "true"),
            std::tuple("4;60", "0.6", "true"), std::tuple("1;0", "0.01", "false"), std::tuple("0", "0", "false") }) {
        feed(behind, "\033]9;4;" + std::string(state) + "\007");
        EXPECT_TRUE(shows("progress", QString::fromLatin1(share))) << state;
        EXPECT_EQ(column(*view.tabs(), "stalled").first(), stalled) << state;
    }

    QSignalSpy told(&view, &TerminalsView::notified);
    feed(behind, "\033]9;one\007");
    ASSERT_TRUE(await([&] { return told.size() == 1; }));
    clock.advance(Milliseconds(1999));
    feed(behind, "\033]9;two\007\033]2;two\007");
    ASSERT_TRUE(await([&] { return behind.label() == u"two"_s; }));
    EXPECT_EQ(told.size(), 1) << "not so soon";
    clock.advance(Milliseconds(1));
    feed(behind, "\033]777;notify;Build;done\007");
    ASSERT_TRUE(await([&] { return told.size() == 2; }));
    EXPECT_EQ(told.at(1), (QVariantList { u"Build"_s, u"done"_s }));
}

TEST_F(Terminals, aShellThatEndedLeavesTheFolderAndTheTitleThatItTold)
{
    LumoTerminalSession& session
        = open("printf '\\033]7;file://host/srv/a%%20b\\007\\033]2;building\\007'; printf 'ready token=abcdefgh'; cat");
    ASSERT_TRUE(awaitText(session, u"ready"_s));
    ASSERT_TRUE(await([&] { return session.label() == u"building"_s; }));
    session.rename(u"mine"_s);
    EXPECT_EQ(session.label(), "mine");
    session.rename({});
    EXPECT_EQ(session.label(), "building");
    EXPECT_NE(session.currentDirectory(), "/srv/a b") << "where its program really is";
    session.terminate();
    EXPECT_EQ(session.currentDirectory(), "/srv/a b");
    EXPECT_EQ(session.exitStatus(), (terminal::ExitStatus { true, 1 }));
    EXPECT_EQ(session.view({ 60, 10 }), nullptr);
    session.send(u"nobody"_s);
    session.scrollTo(-1);
    session.scrollToPrompt(true);
    terminal::Snapshot snapshot;
    EXPECT_FALSE(session.snapshot(snapshot));
    EXPECT_EQ(session.runningCommand(), "");
    EXPECT_TRUE(session.redactedTranscript().endsWith("ready token=[redacted]"_L1));
}

TEST_F(Terminals, aPasteIsAskedForByItsLinesAndRefusedByItsSize)
{
    LumoTerminalSession& session = open("stty -echo; printf ready; cat");
    ASSERT_TRUE(awaitText(session, u"ready"_s));
    TerminalQuestion& question = *view.question();
    view.paste({});
    EXPECT_EQ(question.text(), "");
    view.paste(u"ls\r"_s);
    EXPECT_EQ(question.text(), "Paste this line? The program in the terminal acts on it at once: “ls”");
    EXPECT_EQ(question.action() + '|' + question.refusal(), "Paste|Cancel");
    EXPECT_TRUE(question.takesFocus());
    question.answer(false);
    EXPECT_EQ(question.text(), "");
    view.paste(QString(61, u'x') + '\n');
    EXPECT_TRUE(question.text().endsWith(": “" + QString(60, u'x') + "…”")) << question.text().toStdString();
    view.paste(QString(60, u'x') + '\n');
    EXPECT_TRUE(question.text().endsWith(": “" + QString(60, u'x') + "”")) << question.text().toStdString();
    view.paste(QString(1'000'001, u'x'));
    EXPECT_EQ(question.text(), "The clipboard holds more than 1 MB, too much to paste into a terminal.");
    EXPECT_EQ(question.action() + '|' + question.refusal(), "|Close");
    question.answer(true);
    EXPECT_EQ(question.text(), "") << "a notice has no action";
    view.paste(QString(1'000'000, u'x'));
    EXPECT_EQ(question.text(), "");

    view.paste(u"a\nb"_s);
    session.terminate();
    question.answer(true); // it has ended meanwhile
    view.paste(u"a\nb"_s);
    EXPECT_EQ(question.text(), "");
    LumoTerminalSession& other = open("cat");
    question.tell(session, u"about the first"_s);
    question.withdraw(other);
    EXPECT_EQ(question.text(), "about the first");
    view.close(session.id());
    EXPECT_EQ(question.text(), "");
}

TEST_F(Terminals, aProgramPutsNothingOnTheClipboardUnasked)
{
    LumoTerminalSession& session = open(
        "printf '\\033]52;c;aGVsbG8=\\007ready'; read x; printf '\\033]52;c;d29ybGQ=\\007\\033]2;second\\007'; cat");
    TerminalQuestion& question = *view.question();
    QSignalSpy granted(&question, &TerminalQuestion::clipboardGranted);
    const QString asked = u"A program in local-test-run-1 wants to put this on the clipboard: “hello”"_s;
    ASSERT_TRUE(await([&] { return question.text() == asked; })) << question.text().toStdString();
    EXPECT_EQ(question.action() + '|' + question.refusal(), "Allow|Refuse");
    EXPECT_FALSE(question.takesFocus());
    session.send(u"\n"_s);
    ASSERT_TRUE(await([&] { return session.label() == u"second"_s; }));
    EXPECT_EQ(question.text(), asked) << "it does not replace what is being answered";
    question.answer(true);
    ASSERT_EQ(granted.size(), 1);
    EXPECT_EQ(granted.at(0).at(0), u"hello"_s);
    question.askForClipboard(session, QString((1 << 20) + 1, u'x'));
    EXPECT_EQ(question.text(), "") << "too much";
    question.askForClipboard(session, QString(1 << 20, u'x'));
    EXPECT_NE(question.text(), "");
    question.answer(false);
    EXPECT_EQ(granted.size(), 1);

    EXPECT_FALSE(question.askToQuit({}));
    EXPECT_TRUE(question.askToQuit({ u"cat"_s, u"vi"_s }));
    EXPECT_EQ(question.text(), "cat, vi are still running in a terminal. Quitting Corvane ends that.");
    EXPECT_EQ(question.action() + '|' + question.refusal(), "Quit|Keep running");
    question.askToClose(session, u"cat"_s);
    EXPECT_EQ(question.action() + '|' + question.refusal(), "Close|Keep open");
}

TEST_F(Terminals, anAddressOfTheWebOpensInTheBrowserThatTakesIt)
{
    QStringList shown;
    bool takes = true;
    view.setBrowser([&](const QString& address) {
        shown.append(address);
        return takes;
    });
    view.openLink(u"http://a.example"_s);
    view.openLink(u"https://b.example"_s);
    view.openLink(u"mailto:ana@example.org"_s);
    EXPECT_EQ(shown, (QStringList { u"http://a.example"_s, u"https://b.example"_s }));
    takes = false;
    view.openLink(u"https://c.example"_s);
    EXPECT_EQ(desktop.openedLinks, (QList<QUrl> { QUrl(u"mailto:ana@example.org"_s), QUrl(u"https://c.example"_s) }));

    qunsetenv("VISUAL");
    qputenv("EDITOR", "vi");
    for (const QString& name : { u"start.desktop"_s, u"plain.txt"_s })
        home.write(name, "x");
    const QString folder = QFileInfo(home.path(u"start.desktop"_s)).absolutePath();
    view.openLink(u"file://"_s + home.path(u"start.desktop"_s));
    view.openLink(u"file://"_s + home.path(u"plain.txt"_s));
    view.openLink(u"file://"_s + folder + u"#3"_s);
    EXPECT_EQ(desktop.openedFiles, (QStringList { folder, home.path(u"plain.txt"_s), folder })) << "none has a line";
    EXPECT_EQ(view.count(), 0);
    qunsetenv("EDITOR");
}

}
