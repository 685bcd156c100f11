#include "EngineTest.h"
#include "Foundation/Literals.h"

#include "Store/Messages/ThreadQueries.h"

using namespace corvane;

namespace {

class Commands : public EngineTest {
protected:
    QString lastCommand() const
    {
        return QString::fromUtf8(world.launcher.last().written).trimmed().section(u'\n', -1);
    }
};

}

TEST_F(Commands, eachCommandIsOneLineWithItsKeys)
{
    startShop();
    EngineManager& engines = world.engines;
    EXPECT_TRUE(engines.sendText(shop, u"c"_s, { u"line\nbreak \u2028 \"quoted\""_s }));
    EXPECT_EQ(lastCommand(), u"{\"chatId\":\"c\",\"cmd\":\"send\",\"text\":\"line\\nbreak \u2028 \\\"quoted\\\"\"}"_s);
    EXPECT_TRUE(engines.sendAudio(shop, u"c"_s, u"/tmp/a.m4a"_s));
    EXPECT_EQ(lastCommand(), uR"({"chatId":"c","cmd":"sendAudio","path":"/tmp/a.m4a"})"_s);
    EXPECT_TRUE(engines.markRead(shop, u"c"_s));
    EXPECT_EQ(lastCommand(), uR"({"chatId":"c","cmd":"markRead"})"_s);
    EXPECT_TRUE(engines.loadMoreHistory(shop, u"c"_s, 40));
    EXPECT_EQ(lastCommand(), uR"({"chatId":"c","cmd":"loadMore","count":40})"_s);
    EXPECT_TRUE(engines.react(shop, u"c"_s, u"m"_s, true, u"👍"_s));
    EXPECT_EQ(lastCommand(), uR"({"chatId":"c","cmd":"react","emoji":"👍","fromMe":true,"messageId":"m"})"_s);
    EXPECT_TRUE(engines.fetchAvatar(shop, u"j"_s));
    EXPECT_EQ(lastCommand(), uR"({"cmd":"fetchAvatar","jid":"j"})"_s);
    EXPECT_TRUE(engines.sync(shop));
    EXPECT_EQ(lastCommand(), uR"({"cmd":"sync"})"_s);
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
    EXPECT_FALSE(engines.sendText(shop, u"c"_s, { u"t"_s }));
    EXPECT_EQ(logs.lines().size(), before);

    startShop();
    world.launcher.last().writeFailure = u"full"_s;
    EXPECT_FALSE(engines.sync(shop));
    EXPECT_TRUE(logs.contains(u"EngineManager.writeCommand: pipe write failed for shop: full"_s));
    EXPECT_FALSE(engines.sendText(shop, u"c"_s, { u"t"_s }));
    EXPECT_TRUE(logs.contains(u"EngineManager.sendText: pipe write failed for shop: full"_s));
    engines.stop(shop);
    EXPECT_FALSE(engines.sendText(shop, u"c"_s, { u"t"_s })) << "a stopped engine takes nothing more";
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
    const MediaDownloadStatus notRunning { Kind::Failed, u"Telegram engine is not running for this account."_s };
    row.accountId = u"shop"_s;
    EXPECT_EQ(retry(),
        (MediaDownloadStatus { Kind::Failed, u"This message is missing the Telegram ids needed to retry."_s }));
    row.externalId = u"chat"_s;
    EXPECT_EQ(retry(), notRunning);

    startShop();
    row.direction = u"OUT"_s;
    row.sender = u"Ana"_s;
    EXPECT_EQ(retry(), (MediaDownloadStatus { Kind::Downloading, {} }));
    EXPECT_EQ(lastCommand(), uR"({"chatId":"chat","cmd":"downloadMedia","fromMe":true,"messageId":"m1"})"_s);
    row.providerMsgId = u"p1"_s;
    row.direction = u"IN"_s;
    row.sender = u"34600@s.whatsapp.net"_s;
    retry();
    EXPECT_EQ(lastCommand(),
        uR"({"chatId":"chat","cmd":"downloadMedia","fromMe":false,"messageId":"p1","participant":"34600@s.whatsapp.net"})"_s);

    world.launcher.last().exit();
    world.settle();
    EXPECT_EQ(world.engines.mediaDownloadStatus(row.id),
        (MediaDownloadStatus { Kind::Failed, u"The engine ended before the file was there."_s }));
    world.engines.stop(shop);
    EXPECT_EQ(retry(), notRunning);
}
