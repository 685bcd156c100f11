#include "EngineTest.h"
#include "Foundation/Literals.h"

#include "Engines/EngineSpec.h"
#include "Support/Environment.h"

#include <QFile>
#include <QSysInfo>

using namespace corvane;

namespace {

class EngineSpecTest : public testing::Test {
protected:
    void setVariable(const char* name, const QByteArray& value) { m_environment.set(name, value); }

    QString executable(const QString& path) const
    {
        world.home.write(path, "#!/bin/sh\n");
        QFile::setPermissions(world.home.path(path), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return world.home.path(path);
    }

    ProcessSpec spec(Channel channel, const QString& slug = u"shop"_s)
    {
        return engineSpec(world.home.paths(), world.keychain, accountNamed(slug, channel));
    }

    EngineSurroundings world;

private:
    Environment m_environment;
};

}

TEST_F(EngineSpecTest, theEngineFolderIsInTheResourcesOrInADevelopersCheckout)
{
    const QString checkout = world.home.path(u"nimb/apps/nimb-local/mac/engine"_s);
    EXPECT_EQ(engineDir(world.home.paths()), checkout);
    world.home.write(u"resources/engine/src/email-main.ts"_s, "");
    EXPECT_EQ(engineDir(world.home.paths()), checkout) << "main.ts alone decides";
    world.home.write(u"resources/engine/src/main.ts"_s, "");
    EXPECT_EQ(engineDir(world.home.paths()), world.home.path(u"resources/engine"_s));
}

TEST_F(EngineSpecTest, aNodeNamedByHandComesBeforeTheEnginesOwnAndThatBeforeTheSystems)
{
    setVariable("CORVANE_NODE", QByteArray());
    const QString folder = world.home.path(u"engine"_s);
    const QString system = nodePath(folder);
    EXPECT_TRUE(
        QStringList({ u"/opt/homebrew/bin/node"_s, u"/usr/local/bin/node"_s, u"/usr/bin/node"_s, u"/usr/bin/env"_s })
            .contains(system));
    const QString processor = QSysInfo::currentCpuArchitecture() == u"arm64"_s ? u"arm64"_s : u"x64"_s;
    const QString own = executable(u"engine/node_modules/node-linux-%1/bin/node"_s.arg(processor));
    EXPECT_EQ(nodePath(folder), own);

    world.home.write(u"plain"_s, "");
    setVariable("CORVANE_NODE", QFile::encodeName(world.home.path(u"plain"_s)));
    EXPECT_EQ(nodePath(folder), own) << "not executable";
    setVariable("CORVANE_NODE", QFile::encodeName(world.home.path(u"engine"_s)));
    EXPECT_EQ(nodePath(folder), own) << "a folder";
    setVariable("CORVANE_NODE", QFile::encodeName(executable(u"named"_s)));
    EXPECT_EQ(nodePath(folder), world.home.path(u"named"_s));
}

TEST_F(EngineSpecTest, anEngineIsNodeWithCappedHeapAndTheScriptsWholePath)
{
    setVariable("CORVANE_NODE", QFile::encodeName(executable(u"node"_s)));
    setVariable("PATH", "/bin/own");
    setVariable("MCP_HTTP_PORT", "9999");
    setVariable("LOG_LEVEL", "trace");
    setVariable("CORVANE_SOMETHING", "inherited");
    const QString folder = world.home.path(u"nimb/apps/nimb-local/mac/engine"_s);
    const auto arguments = [&](const QString& heap, const QString& script) {
        return QStringList { u"--max-old-space-size="_s + heap, u"--max-semi-space-size=2"_s,
            u"--experimental-strip-types"_s, u"--no-warnings"_s, folder + u"/src/"_s + script };
    };
    const QList<std::pair<Channel, QString>> scripts { { Channel::LinkedIn, u"linkedin-main.ts"_s },
        { Channel::Email, u"email-main.ts"_s }, { Channel::Telegram, u"telegram-main.ts"_s },
        { Channel::Discord, u"discord-main.ts"_s }, { Channel::Slack, u"slack-main.ts"_s },
        { Channel::Instagram, u"instagram-main.ts"_s }, { Channel::Messenger, u"messenger-main.ts"_s },
        { Channel::Sms, u"twilio-main.ts"_s }, { Channel::IMessage, u"imessage-main.ts"_s } };
    for (const auto& [channel, script] : scripts)
        EXPECT_EQ(spec(channel).arguments, arguments(u"128"_s, script));

    Account unknown = accountNamed(u"shop"_s);
    unknown.channelRaw = u"FAX"_s;
    const ProcessSpec whatsapp = engineSpec(world.home.paths(), world.keychain, unknown);
    EXPECT_EQ(whatsapp.executable, world.home.path(u"node"_s));
    EXPECT_EQ(whatsapp.arguments, arguments(u"384"_s, u"main.ts"_s));
    EXPECT_EQ(whatsapp.workingDirectory, folder);
    EXPECT_TRUE(whatsapp.pipes);
    const QProcessEnvironment& environment = whatsapp.environment;
    EXPECT_EQ(environment.value(u"PATH"_s), u"/bin/own:/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin"_s);
    EXPECT_EQ(environment.value(u"LOG_LEVEL"_s), u"info"_s);
    EXPECT_EQ(environment.value(u"WHATSAPP_ACCOUNT_NAME"_s), u"shop"_s);
    EXPECT_EQ(environment.value(u"CORVANE_SOMETHING"_s), u"inherited"_s);
    EXPECT_EQ(environment.value(u"CORVANE_ACCOUNT"_s), u"shop"_s);
    EXPECT_EQ(environment.value(u"CORVANE_STATE_DIR"_s), memoryFolder(world.home.paths(), unknown));
    EXPECT_TRUE(environment.value(u"CORVANE_MEDIA_DIR"_s).startsWith(world.home.path(QString())));
    EXPECT_FALSE(environment.contains(u"MCP_HTTP_PORT"_s));

    setVariable("PATH", QByteArray());
    EXPECT_EQ(
        spec(Channel::IMessage).environment.value(u"PATH"_s), u"/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin"_s);

    const ProcessSpec tools = toolServerSpec(world.home.paths(), 8765);
    EXPECT_EQ(tools.arguments, arguments(u"96"_s, u"nimb-mcp.ts"_s));
    EXPECT_EQ(tools.environment.value(u"NIMB_MCP_PORT"_s), u"8765"_s);
    EXPECT_FALSE(tools.pipes);
}

TEST_F(EngineSpecTest, withoutAnyNodeThePathIsSearched)
{
    setVariable("CORVANE_NODE", QByteArray());
    const ProcessSpec found = spec(Channel::Email);
    const bool searches = found.executable == u"/usr/bin/env"_s;
    EXPECT_EQ(found.arguments.first() == u"node"_s, searches);
    setVariable("CORVANE_NODE", "/usr/bin/env");
    EXPECT_EQ(spec(Channel::Email).arguments.first(), u"node"_s);
}

TEST_F(EngineSpecTest, anEngineGetsItsAccountsSecret)
{
    for (const char* name : { "SLACK_APP_TOKEN", "SLACK_BOT_TOKEN", "TWILIO_SID", "TWILIO_AUTH", "TWILIO_FROM" })
        setVariable(name, "of another");
    Account mail = accountNamed(u"mail"_s, Channel::Email);
    const auto value = [&](const Account& account, const QString& name) {
        return engineSpec(world.home.paths(), world.keychain, account).environment.value(name, u"unset"_s);
    };
    EXPECT_EQ(value(mail, u"EMAIL_USER"_s), QString());
    EXPECT_EQ(value(mail, u"EMAIL_PASS"_s), QString());
    mail.email = u"ana@example.org"_s;
    world.keychain.set(u" app password\n"_s, u"mail"_s);
    EXPECT_EQ(value(mail, u"EMAIL_USER"_s), u"ana@example.org"_s);
    EXPECT_EQ(value(mail, u"EMAIL_PASS"_s), u"app password"_s);

    world.keychain.set(u"token"_s, u"bot"_s);
    EXPECT_EQ(value(accountNamed(u"bot"_s, Channel::Telegram), u"TELEGRAM_BOT_TOKEN"_s), u"token"_s);
    EXPECT_EQ(value(accountNamed(u"bot"_s, Channel::Discord), u"DISCORD_BOT_TOKEN"_s), u"token"_s);

    const Account slack = accountNamed(u"slack"_s, Channel::Slack);
    for (const QString& secret : { u"not JSON"_s, u"[]"_s, u"{\"app\":1,\"bot\":\"b\"}"_s, QString() }) {
        world.keychain.set(secret, u"slack"_s);
        EXPECT_EQ(value(slack, u"SLACK_APP_TOKEN"_s), u"unset"_s) << qPrintable(secret);
        EXPECT_EQ(value(slack, u"SLACK_BOT_TOKEN"_s), u"unset"_s) << qPrintable(secret);
    }
    world.keychain.set(u"{\"app\":\"a\"}"_s, u"slack"_s);
    EXPECT_EQ(value(slack, u"SLACK_APP_TOKEN"_s), u"a"_s);
    EXPECT_EQ(value(slack, u"SLACK_BOT_TOKEN"_s), QString()) << "a missing key is empty";

    const Account sms = accountNamed(u"sms"_s, Channel::Sms);
    EXPECT_EQ(value(sms, u"TWILIO_SID"_s), u"unset"_s);
    world.keychain.set(uR"({"sid":"s","auth":"t","from":"+1"})"_s, u"sms"_s);
    EXPECT_EQ(value(sms, u"TWILIO_SID"_s) + value(sms, u"TWILIO_AUTH"_s) + value(sms, u"TWILIO_FROM"_s), u"st+1"_s);
}

TEST_F(EngineSpecTest, aBrowserDrivenEngineIsHiddenOnceItsProfileExists)
{
    setVariable("META_HIDDEN", "1");
    setVariable("LINKEDIN_HIDDEN", "1");
    const auto hidden = [&](Channel channel, const QString& prefix) {
        const QProcessEnvironment environment = spec(channel).environment;
        EXPECT_EQ(environment.value(prefix + u"_ACCOUNT_NAME"_s), u"shop"_s);
        EXPECT_FALSE(environment.contains(prefix + u"_CHROME_PROFILE"_s));
        return environment.value(prefix + u"_HIDDEN"_s, u"unset"_s);
    };
    EXPECT_EQ(hidden(Channel::LinkedIn, u"LINKEDIN"_s), u"unset"_s);
    EXPECT_EQ(hidden(Channel::Instagram, u"META"_s), u"unset"_s);
    world.home.write(u".corvane-instagram/shop/profile"_s, "");
    EXPECT_EQ(hidden(Channel::Instagram, u"META"_s), u"1"_s);
    EXPECT_EQ(hidden(Channel::Messenger, u"META"_s), u"unset"_s);
    world.home.write(u".corvane-messenger/shop/profile"_s, "");
    EXPECT_EQ(hidden(Channel::Messenger, u"META"_s), u"1"_s);
    world.home.write(u".corvane-linkedin/shop/profile"_s, "");
    EXPECT_EQ(hidden(Channel::LinkedIn, u"LINKEDIN"_s), u"1"_s);
    EXPECT_EQ(spec(Channel::Instagram).environment.value(u"META_MODE"_s), u"instagram"_s);
    EXPECT_EQ(spec(Channel::Messenger).environment.value(u"META_MODE"_s), u"messenger"_s);

    Account withProfile = accountNamed(u"shop"_s, Channel::LinkedIn);
    withProfile.chromeProfile = u"Work"_s;
    EXPECT_EQ(
        engineSpec(world.home.paths(), world.keychain, withProfile).environment.value(u"LINKEDIN_CHROME_PROFILE"_s),
        u"Work"_s);
}

TEST_F(EngineSpecTest, anExitIsToldInWordsThatHelp)
{
    world.home.write(u"engine/main.ts"_s, "");
    ProcessSpec node;
    node.executable = u"/opt/node"_s;
    node.arguments = { u"--flag"_s, world.home.path(u"engine/main.ts"_s) };
    EXPECT_EQ(exitWords(node, 0), u"Ended by itself"_s);
    EXPECT_EQ(exitWords(node, 3), u"Ended with exit code 3"_s);
    EXPECT_EQ(exitWords(node, 127), u"Ended with exit code 127"_s);
    EXPECT_EQ(exitWords(node, -9), u"Ended by signal 9 (Killed)"_s);
    EXPECT_EQ(exitWords(node, 9), u"/opt/node is too old. Engines need Node 22.6 or newer."_s);
    QFile::remove(node.arguments.last());
    EXPECT_EQ(exitWords(node, 0), u"Ended by itself"_s);
    EXPECT_EQ(exitWords(node, 1), u"The engine's program is missing: "_s + node.arguments.last());
    node.arguments.clear();
    EXPECT_EQ(exitWords(node, 1), u"Ended with exit code 1"_s);
    node.executable = u"/usr/bin/env"_s;
    EXPECT_EQ(exitWords(node, 127), u"Node was not found. Engines need Node 22.6 or newer."_s);
    EXPECT_EQ(exitWords(node, 126), u"Ended with exit code 126"_s);
}

TEST_F(EngineSpecTest, everyEngineWithAMemoryIsAskedToRetell)
{
    const QString engines = u"share/Corvane/engines/"_s;
    world.home.write(engines + u"shop/state.sqlite"_s, "x");
    world.home.write(engines + u"mail/retell/in the way"_s, "x");
    const LogCapture logs;
    askToRetell(world.home.paths());
    EXPECT_TRUE(QFile::exists(world.home.path(engines + u"shop/retell"_s)));
    ASSERT_EQ(logs.lines().size(), 1);
    EXPECT_TRUE(logs.contains(u"The engine of mail cannot be asked to retell: "_s));
}
