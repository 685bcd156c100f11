#include "EngineTest.h"
#include "Engines/MailProbe.h"

#include <QJsonArray>

using namespace corvane;

namespace {

class MailProbeTest : public EngineTest {
protected:
    void find()
    {
        world.launcher.expect(FakeLauncher::stays());
        probe.findServers(u"ana@studio.example"_s, [this](const Result<FoundMailServers>& answer) {
            words.append(answer ? answer->imap.host + u' ' + answer->smtp.host : answer.error().message);
            found = answer ? *answer : FoundMailServers();
        });
    }

    void signIn()
    {
        world.launcher.expect(FakeLauncher::stays());
        probe.signIn(u"ana@studio.example"_s, { u"app pass"_s, {}, {}, {}, {}, {} },
            [this](const Result<void>& answer) { words.append(answer ? u"signed in"_s : answer.error().message); });
    }

    void answer(const QJsonObject& event)
    {
        world.launcher.last().printEvent(event);
        world.launcher.last().exit();
    }

    static QJsonObject server(const QString& host)
    {
        return { { u"host"_s, host }, { u"port"_s, 993 }, { u"security"_s, u"tls"_s } };
    }

    MailProbe probe { world.home.paths(), world.launcher, world.clock };
    QStringList words;
    FoundMailServers found;
};

}

TEST_F(MailProbeTest, theServersOfAnAddressAreReadWithWhatThePersonMustKnow)
{
    find();
    world.launcher.last().printEvent({ { u"type"_s, u"log"_s }, { u"msg"_s, u"looking"_s } });
    EXPECT_TRUE(words.isEmpty());
    answer({ { u"type"_s, u"servers"_s }, { u"imap"_s, server(u"i.example"_s) }, { u"smtp"_s, server(u"s.example"_s) },
        { u"found"_s, u"guess"_s }, { u"confirm"_s, QJsonArray { u"i.example"_s } }, { u"signIn"_s, u"token"_s },
        { u"hint"_s, u"Mind the gap."_s } });
    EXPECT_EQ(words, QStringList(u"i.example s.example"_s));
    EXPECT_TRUE(found.isGuess && found.needsToken);
    EXPECT_EQ(found.strangers, QStringList(u"i.example"_s));
    EXPECT_EQ(found.hint, u"Mind the gap."_s);
    find();
    answer({ { u"type"_s, u"servers"_s }, { u"imap"_s, server(u"i.example"_s) }, { u"smtp"_s, server(u"s.example"_s) },
        { u"found"_s, u"srv"_s }, { u"signIn"_s, u"password"_s } });
    EXPECT_FALSE(found.isGuess || found.needsToken);
    for (const QString& missing : { u"imap"_s, u"smtp"_s }) {
        find();
        QJsonObject event { { u"type"_s, u"servers"_s }, { u"imap"_s, server(u"i.example"_s) },
            { u"smtp"_s, server(u"s.example"_s) } };
        event.remove(missing);
        answer(event);
        EXPECT_EQ(words.last(), u"The servers were not found."_s);
    }
}

TEST_F(MailProbeTest, aSignInFailsInTheWordsOfItsServer)
{
    const auto refused = [&](const QString& at) {
        signIn();
        answer({ { u"type"_s, u"signIn"_s }, { u"ok"_s, false }, { u"at"_s, at }, { u"error"_s, u"No."_s } });
        return words.last();
    };
    signIn();
    EXPECT_EQ(world.launcher.last().spec.environment.value(u"EMAIL_PASS"_s), uR"({"password":"app pass"})"_s);
    answer({ { u"type"_s, u"signIn"_s }, { u"ok"_s, true } });
    EXPECT_EQ(words, QStringList(u"signed in"_s));
    EXPECT_EQ(refused(u"imap"_s), u"Signing in to read mail failed: No."_s);
    EXPECT_EQ(refused(u"smtp"_s), u"Signing in to send mail failed: No."_s);
    EXPECT_EQ(refused(u"elsewhere"_s), u"No."_s);
    world.launcher.expect(FakeLauncher::fails(u"no such file"_s));
    probe.signIn({}, {}, [this](const Result<void>& answer) { words.append(answer.error().message); });
    EXPECT_EQ(words.last(), u"no such file"_s);
    signIn();
    world.launcher.last().exit(-9);
    EXPECT_EQ(words.last(), u"Ended by signal 9 (Killed)."_s);
}

TEST_F(MailProbeTest, onlyTheLastRunAnswersAndNoRunTakesLongerThanFortySeconds)
{
    find();
    FakeChild& first = world.launcher.last();
    find();
    EXPECT_TRUE(first.terminated);
    first.exit();
    EXPECT_TRUE(words.isEmpty());
    world.clock.advance(Milliseconds(39'999));
    EXPECT_TRUE(words.isEmpty());
    world.clock.advance(Milliseconds(1));
    EXPECT_EQ(words, QStringList(u"There was no answer in time."_s));
    EXPECT_TRUE(world.launcher.last().terminated);
    world.launcher.last().exit();
    find();
    probe.cancel();
    EXPECT_TRUE(world.launcher.last().terminated);
    world.clock.advance(seconds(60));
    EXPECT_EQ(words.size(), 1) << "whoever cancels wants no answer";
    {
        MailProbe brief(world.home.paths(), world.launcher, world.clock);
        world.launcher.expect(FakeLauncher::stays());
        brief.findServers(u"ana@studio.example"_s, [this](const auto&) { words.append(u"late"_s); });
    }
    EXPECT_TRUE(world.launcher.last().terminated);
    world.launcher.last().exit();
    EXPECT_EQ(words.size(), 1);
}
