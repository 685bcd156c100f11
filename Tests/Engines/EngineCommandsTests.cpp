#include "EngineTest.h"

#include "Store/ThreadQueries.h"

using namespace corvane;

namespace {

class Commands : public EngineTest {
protected:
    QJsonObject lastCommand() const { return world.launcher.last().commands().last(); }
};

}

TEST_F(Commands, eachCommandIsOneLineWithItsKeys)
{
    startShop();
    EngineManager& engines = world.engines;
    EXPECT_TRUE(engines.sendText(shop, u"c"_s, u"line\nbreak \u2028 \"quoted\""_s));
    EXPECT_EQ(lastCommand(),
        QJsonObject(
            { { u"cmd"_s, u"send"_s }, { u"chatId"_s, u"c"_s }, { u"text"_s, u"line\nbreak \u2028 \"quoted\""_s } }));
    EXPECT_TRUE(engines.sendAudio(shop, u"c"_s, u"/tmp/a.m4a"_s));
    EXPECT_EQ(lastCommand(),
        QJsonObject({ { u"cmd"_s, u"sendAudio"_s }, { u"chatId"_s, u"c"_s }, { u"path"_s, u"/tmp/a.m4a"_s } }));
    EXPECT_TRUE(engines.markRead(shop, u"c"_s));
    EXPECT_EQ(lastCommand(), QJsonObject({ { u"cmd"_s, u"markRead"_s }, { u"chatId"_s, u"c"_s } }));
    EXPECT_TRUE(engines.loadMoreHistory(shop, u"c"_s, 40));
    EXPECT_EQ(lastCommand(), QJsonObject({ { u"cmd"_s, u"loadMore"_s }, { u"chatId"_s, u"c"_s }, { u"count"_s, 40 } }));
    EXPECT_TRUE(engines.react(shop, u"c"_s, u"m"_s, true, u"👍"_s));
    EXPECT_EQ(lastCommand(),
        QJsonObject({ { u"cmd"_s, u"react"_s }, { u"chatId"_s, u"c"_s }, { u"messageId"_s, u"m"_s },
            { u"fromMe"_s, true }, { u"emoji"_s, u"👍"_s } }));
    EXPECT_TRUE(engines.fetchAvatar(shop, u"j"_s));
    EXPECT_EQ(lastCommand(), QJsonObject({ { u"cmd"_s, u"fetchAvatar"_s }, { u"jid"_s, u"j"_s } }));
    EXPECT_TRUE(engines.sync(shop));
    EXPECT_EQ(lastCommand(), QJsonObject({ { u"cmd"_s, u"sync"_s } }));
}

TEST_F(Commands, aCommandWithoutAPipeIsRefusedWithALogLine)
{
    EngineManager& engines = world.engines;
    EXPECT_FALSE(engines.writeCommand(shop, {}));
    EXPECT_TRUE(logs.contains(u"EngineManager.writeCommand: no running engine pipe for shop cmd=unknown"_s));
    EXPECT_FALSE(engines.markRead(shop, u"c"_s));
    EXPECT_TRUE(logs.contains(u"EngineManager.writeCommand: no running engine pipe for shop cmd=markRead"_s));
    EXPECT_TRUE(logs.contains(u"EngineManager.markRead: command write failed for shop chatId=c"_s));
    const qsizetype before = logs.lines().size();
    EXPECT_FALSE(engines.sendText(shop, u"c"_s, u"t"_s));
    EXPECT_EQ(logs.lines().size(), before);

    startShop();
    world.launcher.last().writeFailure = u"full"_s;
    EXPECT_FALSE(engines.sync(shop));
    EXPECT_TRUE(logs.contains(u"EngineManager.writeCommand: pipe write failed for shop: full"_s));
    EXPECT_FALSE(engines.sendText(shop, u"c"_s, u"t"_s));
    EXPECT_TRUE(logs.contains(u"EngineManager.sendText: pipe write failed for shop: full"_s));
    engines.stop(shop);
    EXPECT_FALSE(engines.sendText(shop, u"c"_s, u"t"_s)) << "a stopped engine takes nothing more";
}

TEST_F(Commands, aFailedDownloadIsAskedForAgain)
{
    using Kind = MediaDownloadStatus::Kind;
    UnifiedMsgRow row;
    row.id = u"wa:msg:m1"_s;
    row.platform = u"TELEGRAM"_s;
    const auto retry = [&] {
        world.engines.retryMediaDownload(row);
        return world.engines.mediaDownloadStatus(row.id);
    };
    const MediaDownloadStatus notRunning { Kind::Failed, u"WhatsApp engine is not running for this account."_s };
    EXPECT_FALSE(retry()) << "only WhatsApp can";
    row.platform = u"WHATSAPP"_s;
    row.accountId = u"shop"_s;
    EXPECT_EQ(retry(),
        (MediaDownloadStatus { Kind::Failed, u"This message is missing the WhatsApp ids needed to retry."_s }));
    row.externalId = u"chat"_s;
    EXPECT_EQ(retry(), notRunning);

    startShop();
    row.direction = u"OUT"_s;
    row.sender = u"Ana"_s;
    EXPECT_EQ(retry(), (MediaDownloadStatus { Kind::Downloading, {} }));
    QJsonObject expected { { u"cmd"_s, u"downloadMedia"_s }, { u"chatId"_s, u"chat"_s }, { u"messageId"_s, u"m1"_s },
        { u"fromMe"_s, true } };
    EXPECT_EQ(lastCommand(), expected);
    row.providerMsgId = u"p1"_s;
    row.direction = u"IN"_s;
    row.sender = u"34600@s.whatsapp.net"_s;
    retry();
    expected.insert(u"messageId"_s, u"p1"_s);
    expected.insert(u"fromMe"_s, false);
    expected.insert(u"participant"_s, u"34600@s.whatsapp.net"_s);
    EXPECT_EQ(lastCommand(), expected);

    world.engines.stop(shop);
    EXPECT_EQ(retry(), notRunning);
}
