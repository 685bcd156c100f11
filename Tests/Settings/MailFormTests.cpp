#include "Settings/MailForm.h"

#include "Engines/AccountStore.h"
#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Services.h"
#include "Support/Await.h"
#include "Support/EngineWorld.h"
#include "Support/Environment.h"
#include "Support/Places.h"
#include "Support/Print.h"

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
    submit();
    EXPECT_EQ(form.messageKind(), "warn");
    EXPECT_TRUE(form.message().contains("imap.host.example and smtp.host.example"));
    EXPECT_TRUE(form.serversShown());
    engineSays(R"({"type":"signIn","ok":false,"at":"imap","error":"Authentication failed."})");
    submit();
    EXPECT_EQ(form.messageKind(), "bad");
    EXPECT_EQ(form.message(), "Signing in to read mail failed: Authentication failed. Mind the gap.");
    EXPECT_EQ(accounts.accounts().size(), 0);
    EXPECT_EQ(secret(), "none");

    form.smtp()->host()->type(" Mail.Studio.example");
    form.smtp()->setSecurity("tls");
    EXPECT_EQ(form.smtp()->port()->text(), "465") << "a usual port follows";
    engineSays(R"({"type":"signIn","ok":true})");
    world.launcher.expect(FakeLauncher::stays());
    submit();
    EXPECT_FALSE(form.isOpen());
    EXPECT_EQ(form.field("password").text(), "") << "a secret does not stay in memory longer than its sheet";
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
    form.edit(account);
    EXPECT_EQ(form.title(), "Edit ana@studio.example");
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
