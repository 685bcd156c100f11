#include "Settings/MailForm.h"

#include "Engines/AccountStore.h"
#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Services.h"
#include "Support/Await.h"
#include "Support/EngineWorld.h"
#include "Support/Environment.h"
#include "Support/Places.h"
#include "Support/Print.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace corvane {

namespace {

/// The form with real child processes: the tests' child program stands in for Node and simulates the engine.
class MailSheet : public testing::Test {
protected:
    MailSheet()
    {
        world.home.write("resources/engine/src/main.ts", "");
        world.engines.setAccounts(&accounts);
        form.open();
        form.field("email").type("ana@studio.example");
        form.field("password").type("app pass");
    }

    void engineSays(const QByteArray& event)
    {
        world.home.write("resources/engine/src/email-main.ts", "print noise\nprint @@CORVANE@@" + event);
    }

    void find(const QByteArray& host, const QByteArray& more)
    {
        engineSays(R"({"type":"servers","imap":{"host":"imap.)" + host + R"(","port":993,"security":"tls"},)"
            + R"("smtp":{"host":"smtp.)" + host + R"(","port":587,"security":"starttls"},)" + more + "}");
    }

    void submit()
    {
        form.submit();
        EXPECT_TRUE(await([&] { return !form.busy(); }));
    }

    QString secret() { return world.keychain.get("ana-studio-example").value_or("none"); }

    EngineWorld world;
    AccountStore accounts { world.home.paths().applicationSupport };
    SystemScheduler scheduler;
    std::unique_ptr<ProcessLauncher> launcher = makeProcessLauncher(scheduler);
    Environment environment { { "CORVANE_NODE", CORVANE_TEST_PROGRAMS "/ChildProgram" } };
    MailForm form { { accounts, world.engines, world.keychain }, world.home.paths(), *launcher, scheduler };
};

}

TEST_F(MailSheet, aStrangeHostIsAskedAboutAndOnlyWhatSignsInIsKept)
{
    find("host.example",
        R"("found":"srv","confirm":["imap.host.example","smtp.host.example"],"signIn":"password","hint":"Mind the gap.")");
    EXPECT_EQ(form.title() + u' ' + form.buttonLabel() + u' ' + form.messageKind(), "Connect email Connect plain");
    EXPECT_TRUE(form.hint().startsWith("Works with Gmail, "));
    EXPECT_EQ(form.serversText(), "Detected from the address");
    EXPECT_FALSE(form.serversShown());
    submit();
    EXPECT_EQ(form.messageKind() + u' ' + form.buttonLabel(), "warn Use these servers");
    EXPECT_EQ(form.serversText(), "imap.host.example:993 · smtp.host.example:587");
    EXPECT_TRUE(form.message().contains("imap.host.example and smtp.host.example"));
    EXPECT_TRUE(form.serversShown());
    engineSays(R"({"type":"signIn","ok":false,"at":"imap","error":"Authentication failed."})");
    submit();
    EXPECT_EQ(form.messageKind() + u' ' + form.buttonLabel(), "bad Try again");
    EXPECT_EQ(form.message(), "Signing in to read mail failed: Authentication failed. Mind the gap.");
    EXPECT_EQ(accounts.accounts().size(), 0);
    EXPECT_EQ(secret(), "none");

    form.smtp()->host()->type(" Mail.Studio.example");
    EXPECT_EQ(form.messageKind() + form.message(), "plain") << "what was typed since may be right";
    EXPECT_EQ(form.smtp()->securityLabel() + u' ' + form.imap()->securityLabel(), "STARTTLS TLS");
    QSignalSpy changed(form.smtp(), &MailServerForm::changed);
    form.smtp()->setSecurity("starttls");
    EXPECT_EQ(changed.size(), 0);
    form.smtp()->setSecurity("tls");
    EXPECT_EQ(form.smtp()->port()->text(), "465") << "a usual port follows";
    EXPECT_EQ(form.smtp()->securityLabel(), "TLS");
    EXPECT_EQ(form.smtp()->securities(), (QList<Choice> { { "tls", "TLS" }, { "starttls", "STARTTLS" } }));
    form.smtp()->port()->type("2525");
    form.smtp()->setSecurity("starttls");
    EXPECT_EQ(form.smtp()->port()->text(), "2525") << "another one stays";
    form.smtp()->setSecurity("tls");
    form.smtp()->port()->type("");
    engineSays(R"({"type":"signIn","ok":true})");
    world.launcher.expect(FakeLauncher::stays());
    submit();
    EXPECT_FALSE(form.isOpen());
    EXPECT_EQ(form.field("password").text(), "") << "a secret does not stay in memory longer than its sheet";
    EXPECT_EQ(form.field("email").text() + form.imap()->host()->text() + form.smtp()->host()->text(), "");
    ASSERT_EQ(accounts.accounts().size(), 1);
    EXPECT_EQ(accounts.accounts()[0].email, "ana@studio.example");
    EXPECT_EQ(secret(),
        R"({"imap":{"host":"imap.host.example","port":993,"security":"tls"},"password":"app pass",)"
        R"("smtp":{"host":"mail.studio.example","port":465,"security":"tls"}})");
    EXPECT_EQ(world.launcher.last().spec.environment.value("EMAIL_PASS"), secret());

    form.open();
    form.field("email").type("Ana@Studio.example");
    form.field("password").type("x");
    submit();
    EXPECT_EQ(form.message(), "Ana@Studio.example is connected already.");
    form.cancel();
    EXPECT_FALSE(form.isOpen());
}

TEST_F(MailSheet, nothingIsSentBeforeTheFormIsComplete)
{
    struct Case {
        QString address, password, command;
        bool complete;
    };
    const QList<Case> cases { { "ana", "x", "", false }, { "ana@", "x", "", false },
        { " ana@studio.example ", " ", " ", false }, { "ana@studio.example", "x", "", true },
        { "ana@studio.example", "", "print-token", true } };
    for (const Case& each : cases) {
        form.field("email").type(each.address);
        form.field("password").type(each.password);
        form.field("tokenCommand").type(each.command);
        EXPECT_EQ(form.complete(), each.complete) << qPrintable(each.address + u' ' + each.password);
        if (!each.complete)
            form.submit();
        EXPECT_EQ(form.message(), "");
    }
    form.close();
    QSignalSpy changed(&form, &MailForm::changed);
    form.close();
    EXPECT_EQ(changed.size(), 0);
    form.field("email").type("ana@studio.example");
    form.field("password").type("x");
    form.submit();
    EXPECT_FALSE(form.busy()) << "the sheet is closed";
    EXPECT_EQ(form.message(), "");
    changed.clear();
    form.setServersShown(true);
    form.setServersShown(true);
    EXPECT_TRUE(form.serversShown());
    EXPECT_EQ(changed.size(), 1);
    form.open();
    EXPECT_FALSE(form.serversShown());
    EXPECT_EQ(form.field("email").text() + form.field("password").text(), "");
    EXPECT_FALSE(form.field("email").readOnly());
}

TEST_F(MailSheet, aPortIsANumberAndAnotherDomainHasOtherServers)
{
    find("one.example", R"("found":"guess","confirm":[],"signIn":"password","hint":"")");
    form.imap()->host()->type("imap.mine.example");
    for (const char* port : { "0", "abc", "65536", "-1" }) {
        form.imap()->port()->type(port);
        submit();
        EXPECT_EQ(form.message(), "A port is a number from 1 to 65535.") << port;
    }
    form.imap()->port()->type("");
    EXPECT_EQ(form.serversText(), "imap.mine.example:993");
    form.imap()->setSecurity("starttls");
    EXPECT_EQ(form.serversText(), "imap.mine.example:143");
    submit();
    EXPECT_EQ(form.message(), "Ended by itself.") << "the script of the search signs nobody in";
    EXPECT_TRUE(form.serversShown()) << "guessed servers may be wrong";
    EXPECT_EQ(form.serversText(), "imap.mine.example:143 · smtp.one.example:587");

    form.field("email").type("ana@two.example");
    find("two.example", R"("found":"srv","confirm":["imap.two.example"],"signIn":"password","hint":"")");
    submit();
    EXPECT_EQ(form.serversText(), "imap.mine.example:143 · smtp.two.example:587")
        << "what was typed stays, what was found is found again";
    EXPECT_EQ(form.message(), "Ended by itself.");

    engineSays(R"({"type":"signIn","ok":false,"at":"smtp","error":"No."})");
    form.submit();
    EXPECT_EQ(form.message(), "Signing in at imap.mine.example…");
    form.submit();
    EXPECT_TRUE(await([&] { return !form.busy(); }));
    EXPECT_EQ(form.message(), "Signing in to send mail failed: No.");
    engineSays(R"({"type":"signIn","ok":false,"error":"The engine is old."})");
    submit();
    EXPECT_EQ(form.message(), "The engine is old.");
    engineSays(R"({"type":"servers","imap":{"host":"imap.x.example","port":993}})");
    form.field("email").type("ana@three.example");
    submit();
    EXPECT_EQ(form.message(), "The servers were not found.");
    EXPECT_EQ(accounts.accounts().size(), 0);
}

TEST_F(MailSheet, aStepThatIsCancelledEndsItsEngine)
{
    MailForm other({ accounts, world.engines, world.keychain }, world.home.paths(), world.launcher, world.clock);
    const auto begin = [&] {
        other.open();
        other.field("email").type("ana@studio.example");
        other.field("password").type("app pass");
        world.launcher.expect(FakeLauncher::stays());
        other.submit();
        EXPECT_TRUE(other.busy());
    };
    begin();
    other.cancel();
    EXPECT_TRUE(world.launcher.last().terminated);
    EXPECT_EQ(other.message(), "");
    begin();
    other.close();
    EXPECT_TRUE(world.launcher.last().terminated);
    EXPECT_FALSE(other.isOpen() || other.busy());
}

TEST_F(MailSheet, aMailboxThatTakesNoPasswordAsksForACommand)
{
    find("studio.example", R"("found":"table","confirm":[],"signIn":"token","hint":"Name a command.")");
    submit();
    EXPECT_EQ(form.message(), "Name a command.");
    EXPECT_TRUE(form.serversShown());
    form.field("tokenCommand").type(R"(print-token --for "Ana Ruiz" --quote """)");
    engineSays(R"({"type":"signIn","ok":true})");
    world.launcher.expect(FakeLauncher::stays());
    submit();
    EXPECT_EQ(
        mailSettings(secret()).tokenCommand, QStringList({ "print-token", "--for", "Ana Ruiz", "--quote", "\"" }));
}

TEST_F(MailSheet, anAccountIsEditedWithWhatItHasAndKeepsWhatTheSheetDoesNotShow)
{
    Account account = accounts.add("ana@studio.example", Channel::Email);
    account.email = "ana@studio.example";
    accounts.update(account);
    world.keychain.set(R"({"tokenCommand":["a b","--c"],"user":"ana","aliases":["a@b"],)"
                       R"("imap":{"host":"localhost","port":1143,"security":"starttls"}})",
        account.slug);
    form.close();
    form.edit(account);
    EXPECT_TRUE(form.isOpen());
    EXPECT_EQ(form.title() + u' ' + form.buttonLabel(), "Edit ana@studio.example Save");
    EXPECT_EQ(form.field("userName").text() + form.field("password").text(), "ana");
    EXPECT_EQ(form.imap()->security(), "starttls");
    EXPECT_TRUE(form.field("email").readOnly());
    EXPECT_EQ(form.field("tokenCommand").text(), "\"a b\" --c");
    EXPECT_EQ(form.serversText(), "localhost:1143");
    form.imap()->port()->type("70000");
    submit();
    EXPECT_EQ(form.message(), "A port is a number from 1 to 65535.");
    form.imap()->port()->type("1144");
    find("studio.example", R"("found":"guess","confirm":["imap.studio.example"],"signIn":"password","hint":"")");
    form.submit();
    EXPECT_TRUE(form.busy());
    EXPECT_EQ(form.message(), "Looking for the mail servers of studio.example…");
    form.cancel();
    EXPECT_TRUE(form.isOpen() && !form.busy());
    world.home.write("resources/engine/src/email-main.ts", "exit 3");
    submit();
    EXPECT_EQ(form.message(), "Ended with exit code 3.");

    find("studio.example", R"("found":"srv","confirm":["imap.studio.example"],"signIn":"password","hint":"")");
    submit();
    EXPECT_EQ(form.message(), "Ended by itself.") << "a host that is not used is not asked about";
    engineSays(R"({"type":"signIn","ok":true})");
    world.launcher.expect(FakeLauncher::stays());
    submit();
    EXPECT_EQ(accounts.accounts().size(), 1);
    EXPECT_EQ(secret(),
        R"({"aliases":["a@b"],"imap":{"host":"localhost","port":1144,"security":"starttls"},)"
        R"("smtp":{"host":"smtp.studio.example","port":587,"security":"starttls"},)"
        R"("tokenCommand":["a b","--c"],"user":"ana"})");
}

TEST(MailSecret, aPasswordThatLooksLikeAnObjectIsAPassword)
{
    for (const QString& password : { "plain", "{}", R"({"pass":"x"})", R"({"password":7})", R"([1])" }) {
        EXPECT_EQ(mailSettings(password).password, password);
        EXPECT_EQ(mailSettings(mailSecret(mailSettings(password))).password, password);
    }
}

}
