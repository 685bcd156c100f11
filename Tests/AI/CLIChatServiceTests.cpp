#include "AI/CLIChatService.h"
#include "Foundation/Literals.h"

#include "Platform/Linux/Services.h"
#include "Platform/ToolRunner.h"
#include "Support/Await.h"
#include "Support/LogCapture.h"
#include "Support/Outcome.h"
#include "Support/Places.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

const QString child = QStringLiteral("\"" CORVANE_TEST_PROGRAMS "/ChildProgram\" ");

/// Uses a real child process in place of the tool: a shell script, where "$8" is the output file for the answer.
class Codex : public testing::Test {
protected:
    Codex()
    {
        qputenv("TMPDIR", home.path("tmp").toUtf8());
        QDir().mkpath(home.path("tmp"));
        QFile::link("/bin/sleep", sleeper);
    }
    ~Codex() override
    {
        EXPECT_EQ(QDir(home.path("tmp")).entryList(QDir::Files), QStringList()) << "no answer file stays behind";
        qunsetenv("TMPDIR");
    }

    void install(const QString& script, const QString& path = u".npm-global/bin/codex"_s)
    {
        home.write(path, "#!/bin/sh\n" + script.toUtf8() + "\n");
        QFile::setPermissions(home.path(path), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    /// The answer, or the error message.
    QString answerTo(const QString& prompt = u"p"_s)
    {
        const auto result = outcome(service.respond("i", prompt, cancel));
        EXPECT_TRUE(await([&] { return result->has_value(); })) << "the call hangs";
        return result->has_value() ? (*result)->has_value() ? (*result)->value() : (*result)->error().message
                                   : QString();
    }

    /// The number of processes started here that are still running. Each has the home path in its command line, which
    /// disappears on exit, even before the process is reaped.
    int running()
    {
        int count = 0;
        for (const QString& pid : QDir("/proc").entryList({ "[0-9]*" }, QDir::Dirs)) {
            QFile commandLine("/proc/" + pid + "/cmdline");
            if (commandLine.open(QIODevice::ReadOnly) && commandLine.readAll().contains(home.path({}).toUtf8()))
                ++count;
        }
        return count;
    }

    TemporaryHome home;
    const QString sleeper = home.path("sleeper"); ///< a program that sleeps for the given number of seconds
    CancelHandle cancel;
    std::unique_ptr<ToolRunner> tools = makeToolRunner();
    CLIChatService service { *tools, { home.path(".npm-global/bin/codex"), home.path("second/codex") } };
};

}

TEST_F(Codex, theFirstCandidateThatMayBeExecutedIsTaken)
{
    EXPECT_EQ(codexCandidates("/home/ana"),
        QStringList({ "/home/ana/.npm-global/bin/codex", "/opt/homebrew/bin/codex", "/usr/local/bin/codex" }));
    EXPECT_EQ(service.codexPath(), std::nullopt);
    EXPECT_EQ(answerTo(), "Codex CLI not found — install the codex CLI or choose a model on this computer.");
    install("exit 0", "second/codex");
    home.write(".npm-global/bin/codex", "not executable");
    EXPECT_EQ(service.codexPath(), home.path("second/codex"));
    install("exit 0");
    EXPECT_EQ(service.codexPath(), home.path(".npm-global/bin/codex"));
}

TEST_F(Codex, theToolReadsThePromptOnStandardInputAndItsAnswerIsTakenAsItStands)
{
    install("printf '%s|' \"$#\" \"$@\" > \"" + home.path("arguments") + "\"; cat > \"" + home.path("input")
        + "\"; printf ' an answer\\n\\n' > \"$8\"");
    const QString prompt = u"two\nlines, “quotes” $HOME `id`"_s + QChar(u'\0') + QString(300'000, u'x');
    EXPECT_EQ(answerTo(prompt), " an answer\n\n");
    const QStringList arguments = QString::fromUtf8(home.read("arguments")).split(u'|');
    ASSERT_EQ(arguments.size(), 11);
    EXPECT_EQ(arguments.first(8),
        QStringList({ "9", "exec", "-s", "read-only", "--skip-git-repo-check", "-C", QDir::tempPath(),
            "--output-last-message" }));
    EXPECT_TRUE(arguments[8].contains(
        QRegularExpression(QDir::tempPath() + "/corvane-cli-draft-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\.txt$")));
    EXPECT_EQ(arguments[9], "-");
    EXPECT_EQ(QString::fromUtf8(home.read("input")), "i\n\n" + prompt);
}

TEST_F(Codex, everyOtherEndIsAFailureInWords)
{
    struct Case {
        QString script;
        QString words;
    };
    const Case cases[] {
        { "exit 0", "exit 0" }, // no file
        { "printf ' \\n\\t ' > \"$8\"", "exit 0" }, // blank
        { "printf '\\377' > \"$8\"", "exit 0" }, // not valid UTF-8
        { "mkfifo \"$8\"; rm \"$8\"; mkdir \"$8\"; exit 0", "exit 0" },
        { "printf answer > \"$8\"; exit 3", "exit 3" },
        { "printf answer > \"$8\"; kill -9 $$", "exit 9" },
        { "truncate -s 1G \"$8\"", "the answer is larger than 4 MB" },
        // A pipe of 64 KiB fills up long before standard output is closed.
        { "exec " + child + "errors 'repeat 10000000 e' 'exit 4'", "exit 4" },
        { "exec " + child + "'repeat 10000000 o' errors 'repeat 10000000 e' 'exit 5'", "exit 5" },
    };
    LogCapture log;
    for (const Case& one : cases) {
        install(one.script);
        EXPECT_EQ(answerTo(), "Codex CLI draft failed: " + one.words) << qPrintable(one.script);
        const QDir tmp(home.path("tmp"));
        for (const QString& folder : tmp.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            tmp.rmdir(folder);
    }
    install("exec " + child + "errors 'repeat 50000 ü' 'half no more credit' 'exit 6'");
    answerTo();
    EXPECT_TRUE(log.lines().last().startsWith("[CLIChatService] codex exec exit 6: üü"));
    EXPECT_TRUE(log.lines().last().endsWith("üno more credit")) << "the end says why";
    EXPECT_LT(log.lines().last().size(), 10'000);
    install("printf 'no credit \\342\\202\\254' >&2; exit 7");
    answerTo();
    install("printf 'broken \\377' >&2; exit 8");
    answerTo();
    EXPECT_EQ(log.lines().last(2),
        QStringList({ "[CLIChatService] codex exec exit 7: no credit €", "[CLIChatService] codex exec exit 8: " }));

    home.write(".npm-global/bin/codex", "#!/nonexistent/shell\n");
    EXPECT_TRUE(answerTo().endsWith("codex: No such file or directory"));
}

TEST_F(Codex, whatTheToolLeavesRunningEndsWithIt)
{
    for (const QString& start : { QString(), u"setsid "_s }) {
        install(start + sleeper + " 100 & while ! grep -qs '^" + sleeper
            + "' /proc/$!/cmdline; do :; done; printf done > \"$8\"");
        EXPECT_EQ(answerTo(), "done") << "although standard output is still open";
        EXPECT_TRUE(await([&] { return running() == 0; })) << qPrintable(start);
    }
}

TEST_F(Codex, cancellingKillsTheToolAndAllThatItStarted)
{
    struct Case {
        QString script;
        int processes;
    };
    const QString end = "printf early > \"$8\"; exec " + child + "-- --" + home.path("x ");
    const QString one = sleeper + " 100 & ";
    const Case cases[] {
        { one + end + "ignore-term hang", 2 },
        { one + end + "flood", 2 },
        { one + end + "errors flood", 2 },
        { "i=0; while [ $i -lt 200 ]; do " + one + "i=$((i+1)); done; wait", 201 },
        // Each escapes the process group in a different way.
        { "setsid " + one + "setsid " + sleeper + " 100 >/dev/null 2>&1 & (setsid " + one + ") ; wait", 4 },
        { "setsid sh -c '" + sleeper + " 100 & wait' >/dev/null 2>&1 & wait", 3 },
    };
    for (const Case& each : cases) {
        install(each.script);
        cancel = {};
        const auto result = outcome(service.respond("i", "p", cancel));
        ASSERT_TRUE(await([&] { return running() == each.processes; })) << qPrintable(each.script) << running();
        EXPECT_FALSE(result->has_value());
        cancel.cancel();
        ASSERT_TRUE(await([&] { return result->has_value(); })) << qPrintable(each.script);
        EXPECT_EQ((*result)->error().message, "Cancelled.");
        EXPECT_TRUE(await([&] { return running() == 0; })) << qPrintable(each.script) << running();
    }
}

TEST_F(Codex, severalRunAtOnceAndTheEndOfTheProgramEndsThemAll)
{
    install("exec " + child + "hang");
    const auto first = outcome(service.respond("i", "p"));
    const auto second = outcome(service.respond("i", "p"));
    tools.reset();
    EXPECT_EQ((*first)->error().message, "Cancelled.");
    EXPECT_EQ((*second)->error().message, "Cancelled.");
}
