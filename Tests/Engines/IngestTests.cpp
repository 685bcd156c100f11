#include "EngineTest.h"

#include "CRM/ContactsBridge.h"
#include "Platform/AddressBook.h"
#include "Store/Messages/InboxQueries.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/IdentityQueries.h"
#include "Support/Await.h"

using namespace corvane;

namespace {

class IngestTest : public EngineTest {
protected:
    IngestTest() { startShop(); }

    /// A live incoming message, with changes and perhaps without one of its keys.
    void message(const QJsonObject& changes = {}, const QString& without = {})
    {
        QJsonObject event { { u"type"_s, u"message"_s }, { u"convExternalId"_s, u"34600@s.whatsapp.net"_s },
            { u"body"_s, u"hello"_s }, { u"providerMsgId"_s, u"m1"_s }, { u"ts"_s, 1000 },
            { u"convTitle"_s, u"Ana"_s } };
        for (auto i = changes.begin(); i != changes.end(); ++i)
            event.insert(i.key(), i.value());
        event.remove(without);
        report(event);
    }

    QString row(const QString& columns, const QString& id = u"wa:msg:m1"_s)
    {
        return cell(u"SELECT %1 FROM unified_message WHERE id='%2';"_s.arg(columns, id));
    }
    QString conversation(const QString& column) { return cell(u"SELECT %1 FROM unified_conversation;"_s.arg(column)); }
    QString count(const QString& table) { return cell(u"SELECT COUNT(*) FROM "_s + table + u';'); }

    const QString ana = u"ct:WHATSAPP:34600@s.whatsapp.net"_s;
};

class SmallBook final : public AddressBook {
public:
    bool requestAccess(const QStringList&) const override { return true; }
    QList<AddressBookPerson> people(const QStringList&) const override
    {
        return { { u"Ana"_s, u"Ruiz"_s, {}, { u"+34 600 111 222"_s }, "jpeg" },
            { u"Ana Ruiz"_s, {}, {}, { u"600333444"_s }, {} } };
    }
};

}

TEST_F(IngestTest, anEventThatIsNoObjectWithATypeIsIgnored)
{
    int published = 0;
    QStringList handled;
    QObject::connect(&world.engines, &EngineManager::runtimeChanged, &world.engines, [&] { ++published; });
    QObject::connect(&world.engines, &EngineManager::eventHandled, &world.engines,
        [&](const QString& slug, const QString& type) { handled.append(slug + u'/' + type); });
    for (const QByteArray& line : { "", "{", "[]", "null", "{}", R"({"type":7})", R"({"type":null})", "\"type\"" })
        handle(line);
    handle(QByteArray(2000, '[') + QByteArray(2000, ']'));
    handle(R"({"type":"log","msg":)" + QByteArray(2000, '[') + QByteArray(2000, ']') + '}');
    EXPECT_EQ(published, 0);

    handle(R"({"type":"never heard of"})");
    handle(R"({"type":"message"})");
    handle(R"({"type":"status","state":7})");
    EXPECT_EQ(published, 3) << "a well-formed event publishes the state, whether or not it changed anything";
    EXPECT_EQ(handled, QStringList({ u"shop/never heard of"_s, u"shop/message"_s, u"shop/status"_s }));
    EXPECT_EQ(status(), WAStatus::Starting);
    EXPECT_EQ(world.engines.inboxRevision(), 0);
}

TEST_F(IngestTest, aConnectionGoesItsWayFromTheCodeToOpen)
{
    handle(R"({"type":"status","state":"connecting"})");
    EXPECT_EQ(status(), WAStatus::Connecting);
    handle(R"({"type":"qr","qr":"pair me"})");
    EXPECT_EQ(status(), WAStatus::NeedsQR);
    handle(R"({"type":"status","state":"close"})");
    EXPECT_EQ(status(), WAStatus::NeedsQR) << "the code stays valid while the socket cycles";
    EXPECT_EQ(runtime().qr, u"pair me"_s);
    handle(R"({"type":"status","state":"open","user":"Ana"})");
    EXPECT_EQ(runtime(), (RuntimeState { WAStatus::Connected, {}, u"Ana"_s, {}, {} }));
    handle(R"({"type":"status","state":"close"})");
    EXPECT_EQ(status(), WAStatus::Connecting);
    EXPECT_EQ(runtime().userName, u"Ana"_s);
    handle(R"({"type":"status","state":"on holiday"})");
    EXPECT_EQ(status(), WAStatus::Connecting);
    handle(R"({"type":"status","state":"open"})");
    EXPECT_FALSE(runtime().userName);
    handle(R"({"type":"qr"})");
    EXPECT_EQ(runtime(), (RuntimeState { WAStatus::NeedsQR, {}, {}, {}, {} }));
    handle(R"({"type":"status","state":"logged_out"})");
    EXPECT_EQ(status(), WAStatus::LoggedOut);

    handle(R"({"type":"mcp","state":"starting","url":"http://a"})");
    EXPECT_FALSE(runtime().mcpURL);
    handle(R"({"type":"mcp","state":"listening","url":"http://a"})");
    EXPECT_EQ(runtime().mcpURL, u"http://a"_s);
    handle(R"({"type":"mcp","state":"listening"})");
    EXPECT_FALSE(runtime().mcpURL);
    handle(R"({"type":"log","msg":"one"})");
    EXPECT_EQ(runtime().lastLog, u"one"_s);
    handle(R"({"type":"log","msg":2})");
    EXPECT_EQ(runtime().lastLog, QString());
}

TEST_F(IngestTest, aLiveMessageBecomesRowsAnUnreadCountABannerAndARevision)
{
    message();
    EXPECT_EQ(row(u"conversation_id || '|' || direction || '|' || body || '|' || ts"_s),
        u"wa:shop:34600@s.whatsapp.net|IN|hello|1000"_s);
    EXPECT_EQ(
        conversation(u"account_id || '|' || title || '|' || unread || '|' || contact_id"_s), u"shop|Ana|1|"_s + ana);
    ASSERT_EQ(world.banners.shown.size(), 1);
    EXPECT_EQ(world.banners.shown.first().title, u"Ana"_s);
    EXPECT_EQ(world.banners.shown.first().thread, ana);
    EXPECT_EQ(world.engines.inboxRevision(), 1);
    EXPECT_EQ(world.engines.unreadTotal(), 1);
    EXPECT_EQ(world.desktop.badge, 1);
    EXPECT_EQ(world.banners.withdrawn, QStringList());
    markRead(world.engines.db(), ana);
    world.engines.refreshUnreadBadge();
    EXPECT_EQ(world.banners.withdrawn, QStringList(world.banners.shown.first().identifier));
}

TEST_F(IngestTest, aRepeatedMessageKeepsOneRowWithItsNewestBodyAndItsFirstOrigin)
{
    message({ { u"sender"_s, u"Ana"_s }, { u"mediaType"_s, u"image"_s }, { u"mediaPath"_s, u"/tmp/a.jpg"_s } });
    world.engines.db().exec(u"UPDATE unified_message SET source='web';"_s);
    message({ { u"body"_s, u"edited"_s }, { u"direction"_s, u"OUT"_s }, { u"ts"_s, 2000 }, { u"sender"_s, u"Other"_s },
        { u"convTitle"_s, QJsonValue() } });
    EXPECT_EQ(row(u"body || '|' || direction || '|' || ts || '|' || sender || '|' || media_path || '|' || source"_s),
        u"edited|IN|1000|Ana|/tmp/a.jpg|web"_s);
    EXPECT_EQ(conversation(u"title || '|' || last_ts"_s), u"Ana|2000"_s) << "a known title is never lost";
    message({ { u"body"_s, QString() }, { u"ts"_s, 500 } });
    EXPECT_EQ(row(u"body"_s), QString());
    EXPECT_EQ(conversation(u"last_ts || '|' || unread"_s), u"2000|2"_s)
        << "the time never goes back; a repeat of a live message counts again";
    EXPECT_EQ(count(u"unified_message"_s), u"1"_s);
}

TEST_F(IngestTest, onlyALiveIncomingMessageRaisesUnread)
{
    message({ { u"direction"_s, u"OUT"_s }, { u"providerMsgId"_s, u"a"_s } });
    message({ { u"historical"_s, true }, { u"providerMsgId"_s, u"b"_s } });
    EXPECT_EQ(conversation(u"unread"_s), u"0"_s);
    EXPECT_TRUE(world.banners.shown.isEmpty());
    message({ { u"direction"_s, u"out"_s }, { u"providerMsgId"_s, u"c"_s } });
    message({ { u"direction"_s, 1 }, { u"historical"_s, u"true"_s }, { u"providerMsgId"_s, u"d"_s } });
    EXPECT_EQ(conversation(u"unread"_s), u"2"_s) << "only the exact words count";
    EXPECT_EQ(row(u"direction"_s, u"wa:msg:c"_s), u"IN"_s);
    EXPECT_EQ(world.engines.inboxRevision(), 4);
}

TEST_F(IngestTest, theOpenThreadAndAMutedPersonRaiseNoBanner)
{
    world.engines.setOpenContactId(ana);
    message();
    EXPECT_EQ(conversation(u"unread"_s), u"1"_s) << "the view clears it, not ingest";
    EXPECT_TRUE(world.banners.shown.isEmpty());
    world.engines.setOpenContactId(QString());
    setMuted(world.engines.db(), ana, true);
    message();
    EXPECT_TRUE(world.banners.shown.isEmpty());
    setMuted(world.engines.db(), ana, false);
    message({ { u"convTitle"_s, QJsonValue() }, { u"sender"_s, u"Ana R."_s } });
    ASSERT_EQ(world.banners.shown.size(), 1);
    EXPECT_EQ(world.banners.shown.first().title, u"Ana R."_s);
    world.clock.advance(seconds(5));
    message({ { u"convTitle"_s, QJsonValue() } });
    EXPECT_EQ(world.banners.shown.last().title, u"+34600"_s);
}

TEST_F(IngestTest, whoWasMergedNotifiesAsTheOneThatTheyAre)
{
    LocalDB& db = world.engines.db();
    const QString mail = ensureContactId(db, u"EMAIL"_s, u"ana@x.y"_s, u"Ana"_s);
    message({ { u"historical"_s, true } });
    ASSERT_TRUE(mergeContacts(db, mail, ana, u"name"_s));
    world.engines.setOpenContactId(mail);
    message({ { u"providerMsgId"_s, u"b"_s } });
    EXPECT_TRUE(world.banners.shown.isEmpty()) << "their thread is open";
    world.engines.setOpenContactId(QString());
    message({ { u"providerMsgId"_s, u"c"_s } });
    ASSERT_EQ(world.banners.shown.size(), 1);
    EXPECT_EQ(world.banners.shown.first().thread, mail);
}

TEST_F(IngestTest, aMessageNeedsItsThreeKeysAsTexts)
{
    for (const QString& key : { u"convExternalId"_s, u"body"_s, u"providerMsgId"_s }) {
        message({}, key);
        message({ { key, 7 } });
        message({ { key, QJsonValue() } });
    }
    EXPECT_EQ(count(u"unified_message"_s) + count(u"unified_conversation"_s) + count(u"contact"_s), u"000"_s);
    EXPECT_EQ(world.engines.inboxRevision(), 0);
}

TEST_F(IngestTest, aTimeIsAWholeNumberOfMillisecondsOrNow)
{
    const QString now = QString::number(world.clock.nowMs());
    const auto stored = [&](const QByteArray& ts) {
        static int number = 0;
        const QByteArray id = 't' + QByteArray::number(++number);
        handle(R"({"type":"message","convExternalId":"c","body":"b","providerMsgId":")" + id + R"(","ts":)" + ts + '}');
        return row(u"ts"_s, u"wa:msg:"_s + QString::fromLatin1(id));
    };
    EXPECT_EQ(stored("1760000000123"), u"1760000000123"_s);
    EXPECT_EQ(stored("1760000000123.9"), u"1760000000123"_s);
    EXPECT_EQ(stored("1.76e12"), u"1760000000000"_s);
    EXPECT_EQ(stored("9007199254740993"), u"9007199254740993"_s) << "no way through a double";
    EXPECT_EQ(stored("-5"), u"-5"_s);
    for (const QByteArray& ts : { "1e300", "-1e300", "9223372036854775808", "\"5\"", "true", "null", "{}" })
        EXPECT_EQ(stored(ts), now) << ts.constData();
}

TEST_F(IngestTest, aStatusOnlyRises)
{
    message();
    const auto after = [&](const QByteArray& status) {
        handle(R"({"type":"msgStatus","providerMsgId":"m1","status":)" + status + '}');
        return row(u"status"_s);
    };
    EXPECT_EQ(after("0"), u"-"_s);
    EXPECT_EQ(after("2"), u"2"_s);
    EXPECT_EQ(after("1"), u"2"_s);
    const qint64 revision = world.engines.inboxRevision();
    EXPECT_EQ(after("4.5"), u"2"_s);
    EXPECT_EQ(after("\"4\""), u"2"_s);
    EXPECT_EQ(after("1e300"), u"2"_s);
    EXPECT_EQ(world.engines.inboxRevision(), revision) << "what is no whole number is dropped";
    EXPECT_EQ(after("4.0"), u"4"_s);
    EXPECT_EQ(world.engines.inboxRevision(), revision + 1);
}

TEST_F(IngestTest, aReactionIsSetAndCleared)
{
    message();
    handle(R"({"type":"reaction","targetProviderMsgId":"m1","emoji":"👍"})");
    EXPECT_EQ(row(u"reaction"_s), u"👍"_s);
    handle(R"({"type":"reaction","targetProviderMsgId":"m1"})");
    EXPECT_EQ(row(u"reaction"_s), QString());
    handle(R"({"type":"reaction","emoji":"👍"})");
    EXPECT_EQ(world.engines.inboxRevision(), 3);
}

TEST_F(IngestTest, aMediumIsRequestedFailsAndArrives)
{
    message({ { u"mediaType"_s, u"image"_s } });
    using Kind = MediaDownloadStatus::Kind;
    QStringList changed;
    QObject::connect(&world.engines, &EngineManager::mediaDownloadStatusChanged, &world.engines,
        [&](const QString& id) { changed.append(id); });
    const auto status = [&] {
        return world.engines.mediaDownloadStatus(u"wa:msg:m1"_s);
    };
    EXPECT_FALSE(status());

    handle(R"({"type":"media","providerMsgId":"m1","state":"requested"})");
    EXPECT_EQ(status(), (MediaDownloadStatus { Kind::Downloading, {} }));
    EXPECT_EQ(world.engines.inboxRevision(), 1) << "a request changes no row";
    handle(R"({"type":"media","providerMsgId":"m1","state":"failed"})");
    EXPECT_EQ(status(), (MediaDownloadStatus { Kind::Failed, u"Couldn't fetch this media from WhatsApp."_s }));
    handle(R"({"type":"media","providerMsgId":"m1","state":"failed","error":"gone"})");
    EXPECT_EQ(status(), (MediaDownloadStatus { Kind::Failed, u"gone"_s }));
    handle(R"({"type":"media","providerMsgId":"m1","state":"success"})");
    EXPECT_FALSE(status());
    EXPECT_EQ(row(u"media_path"_s), u"-"_s) << "a success without a path leaves the row";
    handle(R"({"type":"media","providerMsgId":"m1","state":"success","mediaType":"gif","mediaPath":"/tmp/a.jpg"})");
    EXPECT_EQ(row(u"media_type || '|' || media_path"_s), u"gif|/tmp/a.jpg"_s);
    EXPECT_EQ(world.engines.inboxRevision(), 5);

    handle(R"({"type":"media","providerMsgId":"m1","state":"requested"})");
    message({ { u"mediaPath"_s, u"/tmp/b.jpg"_s } });
    EXPECT_FALSE(status()) << "the message brought the file";
    handle(R"({"type":"media","providerMsgId":"m1","state":"paused"})");
    handle(R"({"type":"media","providerMsgId":"m1"})");
    handle(R"({"type":"media","state":"failed"})");
    EXPECT_EQ(world.engines.inboxRevision(), 6);
    EXPECT_EQ(changed.size(), 6) << "only changes are told";
}

TEST_F(IngestTest, namesAndPhotosReachTheContact)
{
    message();
    const auto contact = [&](const QString& column) {
        return cell(u"SELECT %1 FROM contact;"_s.arg(column));
    };
    handle(R"({"type":"contactName","jid":"34600@s.whatsapp.net","name":"Ana R"})");
    EXPECT_EQ(contact(u"display_name"_s), u"Ana R"_s);
    EXPECT_EQ(cell(u"SELECT entity_type || entity_id || action || origin || payload_json FROM crm_mutation_queue;"_s),
        u"contact"_s + ana + u"updatelocal-contact-name{\"display_name\":\"Ana R\"}"_s);
    handle(R"({"type":"avatar","jid":"34600@s.whatsapp.net","path":"/tmp/a.jpg"})");
    EXPECT_EQ(contact(u"avatar_path"_s), u"/tmp/a.jpg"_s);
    const qint64 revision = world.engines.inboxRevision();
    EXPECT_EQ(revision, 3);

    handle(R"({"type":"contactName","jid":"34600@s.whatsapp.net","name":""})");
    handle(R"({"type":"avatar","jid":"34600@s.whatsapp.net"})");
    handle(R"({"type":"phone","jid":"34600@s.whatsapp.net","phone":"34600"})");
    const SmallBook book;
    ContactsBridge contacts(book, world.background, world.defaults);
    contacts.load();
    ASSERT_TRUE(await([&] { return contacts.ready(); }));
    world.engines.setContactsBridge(&contacts);
    handle(R"({"type":"phone","jid":"34600@s.whatsapp.net","phone":"34600999999"})");
    EXPECT_EQ(world.engines.inboxRevision(), revision) << "a number that nobody has changes nothing";

    handle(R"({"type":"phone","jid":"34600@s.whatsapp.net","phone":"34600111222"})");
    EXPECT_EQ(contact(u"display_name"_s), u"Ana Ruiz"_s);
    const QString photo = u"share/Corvane/media/shop/avatars/34600swhatsappnet-ab.jpg"_s;
    EXPECT_EQ(contact(u"avatar_path"_s), world.home.path(photo));
    EXPECT_EQ(world.home.read(photo), QByteArray("jpeg"));
    EXPECT_EQ(world.engines.inboxRevision(), revision + 1);

    handle(R"({"type":"avatar","jid":"34600@s.whatsapp.net","path":"/tmp/a.jpg"})");
    handle(R"({"type":"phone","jid":"34600@s.whatsapp.net","phone":"34600333444"})");
    EXPECT_EQ(contact(u"avatar_path"_s), u"/tmp/a.jpg"_s) << "a person without a photo keeps the avatar";
}

TEST_F(IngestTest, anEventOfAnAccountThatWasNeverStartedCountsAsWhatsAppUnderItsId)
{
    const QUuid stranger = QUuid::createUuid();
    world.engines.handleEvent(
        stranger, uR"({"type":"message","convExternalId":"c","body":"b","providerMsgId":"m1"})"_s, Speaker::Current);
    const QString id = stranger.toString(QUuid::WithoutBraces).toUpper();
    EXPECT_EQ(row(u"conversation_id"_s), u"wa:%1:c"_s.arg(id));
    EXPECT_EQ(conversation(u"channel"_s), u"WHATSAPP"_s);
}

TEST_F(IngestTest, theChannelIsTheAccountsAndNeverTheEvents)
{
    const Account mail = accountNamed(u"mail"_s, Channel::Email);
    world.launcher.expect(FakeLauncher::stays());
    world.engines.start(mail);
    world.engines.handleEvent(mail.id,
        uR"({"type":"message","channel":"SMS","convExternalId":"Ana@Example.org","body":"b","providerMsgId":"m1"})"_s,
        Speaker::Current);
    EXPECT_EQ(conversation(u"id || '|' || channel || '|' || contact_id"_s),
        u"wa:mail:Ana@Example.org|EMAIL|ct:EMAIL:Ana@Example.org"_s);
    EXPECT_EQ(cell(u"SELECT email FROM contact_identity;"_s), u"ana@example.org"_s);
}

TEST_F(IngestTest, aBurstRaisesTheRevisionAtOnceAndTheBadgeAFewTimes)
{
    int badges = 0;
    QObject::connect(&world.engines, &EngineManager::unreadTotalChanged, &world.engines, [&] { ++badges; });
    for (int i = 0; i < 200; ++i)
        world.launcher.last().printEvent({ { u"type"_s, u"message"_s }, { u"convExternalId"_s, u"c"_s },
            { u"body"_s, u"b"_s }, { u"providerMsgId"_s, QString::number(i) } });
    world.clock.advance(Milliseconds(100));
    EXPECT_EQ(world.engines.inboxRevision(), 200);
    EXPECT_EQ(world.engines.unreadTotal(), 200);
    EXPECT_LE(badges, 2);
    EXPECT_EQ(world.banners.shown.size(), 1);
}

TEST_F(IngestTest, aDatabaseThatDoesNotOpenLosesRowsButNotTheEngine)
{
    EngineSurroundings around;
    FakeLauncher launcher(around.clock);
    auto database = std::make_unique<LocalDB>(
        u"/proc/nowhere/x.db"_s, LocalDB::SchemaFolders {}, around.clock, around.defaults, around.centre);
    EngineManager engines(around.on(around.clock, launcher), std::move(database));
    launcher.expect(FakeLauncher::stays());
    engines.start(shop);
    launcher.last().printEvent({ { u"type"_s, u"message"_s }, { u"convExternalId"_s, u"c"_s }, { u"body"_s, u"b"_s },
        { u"providerMsgId"_s, u"m"_s } });
    launcher.last().printEvent({ { u"type"_s, u"sendAck"_s }, { u"draftId"_s, u"d"_s } });
    launcher.last().printEvent({ { u"type"_s, u"status"_s }, { u"state"_s, u"open"_s } });
    around.clock.advance(seconds(1));
    EXPECT_EQ(engines.runtime(shop.id).status, WAStatus::Connected);
}

TEST_F(IngestTest, aMessageWaitsWhileAnotherProgramHoldsTheDatabase)
{
    const auto other = world.openDatabase(world.clock);
    other->exec(u"BEGIN IMMEDIATE;"_s);
    report({ { u"type"_s, u"message"_s }, { u"convExternalId"_s, u"ana"_s }, { u"body"_s, u"hello"_s },
        { u"providerMsgId"_s, u"1"_s } });
    world.clock.advance(seconds(1));
    EXPECT_EQ(cell(u"SELECT COUNT(*) FROM unified_message;"_s), u"0"_s);
    EXPECT_FALSE(logs.contains(u"locked"_s)) << "no write was tried";
    other->exec(u"COMMIT;"_s);
    world.clock.advance(Milliseconds(200));
    EXPECT_EQ(cell(u"SELECT body FROM unified_message;"_s), u"hello"_s);
}
