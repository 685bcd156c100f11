#include "EngineTest.h"
#include "Foundation/Literals.h"

#include "Store/Messages/ChannelFeatures.h"
#include "Store/Messages/ThreadQueries.h"

using namespace corvane;

namespace {

/// Subjects, read receipts from other devices, and channel features.
class ChannelEvents : public EngineTest {
protected:
    ChannelEvents() { startShop(); }

    void message(QJsonObject event = {})
    {
        event.insert(u"type"_s, u"message"_s);
        event.insert(u"convExternalId"_s, u"34600@s.whatsapp.net"_s);
        event.insert(u"body"_s, u"hello"_s);
        if (!event.contains(u"providerMsgId"_s))
            event.insert(u"providerMsgId"_s, u"m1"_s);
        report(event);
    }

    const QString ana = u"ct:WHATSAPP:34600@s.whatsapp.net"_s;
};

}

TEST_F(ChannelEvents, aSubjectIsOneLineAndARepeatWithoutItKeepsIt)
{
    message({ { u"subject"_s, u" Re:\r\nBcc: all "_s + QString(2000, u'x') } });
    EXPECT_EQ(cell(u"SELECT substr(subject, 1, 12) || length(subject) FROM unified_message;"_s), u"Re: Bcc: all998"_s);
    message({ { u"subject"_s, u"Plan"_s } });
    message();
    message({ { u"subject"_s, 7 } });
    EXPECT_EQ(cell(u"SELECT subject FROM unified_message;"_s), u"Plan"_s);
    EXPECT_EQ(fetchUnifiedThread(world.engines.db(), ana, 10).first().subject, u"Plan"_s);
}

TEST_F(ChannelEvents, whatWasReadElsewhereLowersTheUnreadCountAndTakesTheBanner)
{
    message();
    message({ { u"providerMsgId"_s, u"m2"_s } });
    const auto unread = [&](const QJsonValue& count) {
        report(
            { { u"type"_s, u"unread"_s }, { u"convExternalId"_s, u"34600@s.whatsapp.net"_s }, { u"count"_s, count } });
        world.clock.advance(seconds(1));
        return cell(u"SELECT unread FROM unified_conversation;"_s);
    };
    for (const QJsonValue& none : { QJsonValue(-1), QJsonValue(0.5), QJsonValue(u"0"_s), QJsonValue(5) })
        EXPECT_EQ(unread(none), u"2"_s);
    EXPECT_EQ(unread(1), u"1"_s);
    EXPECT_EQ(world.banners.withdrawn, QStringList());
    EXPECT_EQ(unread(0), u"0"_s);
    EXPECT_EQ(world.banners.withdrawn.size(), world.banners.shown.size());
    EXPECT_EQ(world.desktop.badge, 0);
}

TEST_F(ChannelEvents, whatAChannelCarriesIsRememberedWithoutItsEngine)
{
    int changes = 0;
    QObject::connect(&world.engines, &EngineManager::featuresChanged, &world.engines, [&] { ++changes; });
    const auto features = [&](const QByteArray& keys) {
        handle(R"({"type":"features",)" + keys + '}');
        return fetchFeatures(world.engines.db(), u"shop"_s);
    };
    EXPECT_EQ(fetchFeatures(world.engines.db(), u"shop"_s), ChannelFeatures());
    const ChannelFeatures mail { true, 18'874'368, true };
    EXPECT_EQ(features(R"("files":true,"maxBytes":18874368,"subject":true)"), mail);
    EXPECT_EQ(features(R"("files":true,"maxBytes":18874368,"subject":true)"), mail);
    EXPECT_EQ(changes, 1);
    for (const char* bad : { R"("files":1)", R"("files":true,"maxBytes":0)", R"("subject":"yes")" })
        EXPECT_EQ(features(bad), mail) << bad;
    EXPECT_EQ(features(R"("files":true)"), (ChannelFeatures { true, std::nullopt, false })) << "whole, not in parts";
    EXPECT_EQ(changes, 2);
}

TEST_F(ChannelEvents, onlyWhatWasStoredCountsAsHandled)
{
    QStringList handled;
    QObject::connect(&world.engines, &EngineManager::eventHandled, &world.engines,
        [&](const QString& slug, const QString& type) { handled.append(slug + u' ' + type); });
    message();
    report({ { u"type"_s, u"reaction"_s }, { u"emoji"_s, u"+"_s } });
    report({ { u"type"_s, u"reaction"_s }, { u"targetProviderMsgId"_s, u"m1"_s }, { u"emoji"_s, u"+"_s } });
    report({ { u"type"_s, u"log"_s }, { u"msg"_s, u"done"_s } });
    EXPECT_EQ(handled, QStringList({ u"shop message"_s, u"shop reaction"_s, u"shop log"_s }));
}
