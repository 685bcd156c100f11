#include "EngineTest.h"
#include "Foundation/Literals.h"

#include "CRM/ContactsBridge.h"
#include "Platform/AddressBook.h"
#include "Store/Core/StoreHealth.h"
#include "Store/Messages/InboxQueries.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/IdentityQueries.h"
#include "Support/Await.h"

#include <QDir>
#include <QFile>

using namespace corvane;

namespace {

class IngestTest : public EngineTest {
protected:
    IngestTest() { startShop(); }

    /// A live incoming message, with some values changed and optionally one key missing.
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

    QString media(const QString& name) const { return world.home.path(u"share/Corvane/media/shop/"_s + name); }

    void avatar(const QString& path)
    {
        report({ { u"type"_s, u"avatar"_s }, { u"jid"_s, u"34600@s.whatsapp.net"_s }, { u"path"_s, path } });
    }

    QList<int> acknowledged() const
    {
        QList<int> numbers;
        for (const QJsonObject& command : world.launcher.last().commands())
            numbers.append(command.value(u"n"_s).toInt());
        return numbers;
    }

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
    for (const char* line :
        { R"({"type":"never heard of"})", R"({"type":"message"})", R"({"type":"status","state":7})" })
        handle(line);
    EXPECT_EQ(published, 1) << "an event about the connection publishes the state, whether or not it changed";
    EXPECT_EQ(handled, QStringList({ u"shop/never heard of"_s, u"shop/status"_s })) << "there is no row of a message";
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
    message({ { u"sender"_s, u"Ana"_s }, { u"mediaType"_s, u"image"_s }, { u"mediaPath"_s, media(u"a.jpg"_s) } });
    world.engines.db().exec(u"UPDATE unified_message SET source='web';"_s);
    message({ { u"body"_s, u"edited"_s }, { u"direction"_s, u"OUT"_s }, { u"ts"_s, 2000 }, { u"sender"_s, u"Other"_s },
        { u"convTitle"_s, QJsonValue() } });
    EXPECT_EQ(row(u"body || '|' || direction || '|' || ts || '|' || sender || '|' || media_path || '|' || source"_s),
        u"edited|IN|1000|Ana|%1|web"_s.arg(media(u"a.jpg"_s)));
    EXPECT_EQ(conversation(u"title || '|' || last_ts"_s), u"Ana|2000"_s) << "a known title is never lost";
    message({ { u"body"_s, QString() }, { u"ts"_s, 500 } });
    EXPECT_EQ(row(u"body"_s), QString());
    EXPECT_EQ(conversation(u"last_ts || '|' || unread"_s), u"2000|1"_s)
        << "the time never goes back; what is repeated is not unread again";
    EXPECT_EQ(world.banners.shown.size(), 1);
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
    message({ { u"providerMsgId"_s, u"m2"_s } });
    EXPECT_TRUE(world.banners.shown.isEmpty());
    setMuted(world.engines.db(), ana, false);
    message({ { u"convTitle"_s, QJsonValue() }, { u"sender"_s, u"Ana R."_s }, { u"providerMsgId"_s, u"m3"_s } });
    ASSERT_EQ(world.banners.shown.size(), 1);
    EXPECT_EQ(world.banners.shown.first().title, u"Ana R."_s);
    world.clock.advance(seconds(5));
    message({ { u"convTitle"_s, QJsonValue() }, { u"providerMsgId"_s, u"m4"_s } });
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
    EXPECT_EQ(world.banners.shown.value(0).thread, mail);
    repeatMerges(db); // moves the conversation to the merged contact without a new message
    message({ { u"providerMsgId"_s, u"d"_s } });
    world.clock.advance(Milliseconds(100));
    EXPECT_EQ(world.engines.unreadTotal(), 3) << "counted once, whoever has the conversation";
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
    report({ { u"type"_s, u"media"_s }, { u"providerMsgId"_s, u"m1"_s }, { u"state"_s, u"success"_s },
        { u"mediaType"_s, u"gif"_s }, { u"mediaPath"_s, media(u"a.jpg"_s) } });
    EXPECT_EQ(row(u"media_type || '|' || media_path"_s), u"gif|"_s + media(u"a.jpg"_s));
    EXPECT_EQ(world.engines.inboxRevision(), 5);

    handle(R"({"type":"media","providerMsgId":"m1","state":"requested"})");
    message({ { u"mediaPath"_s, media(u"b.jpg"_s) } });
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
    avatar(media(u"a.jpg"_s));
    EXPECT_EQ(contact(u"avatar_path"_s), media(u"a.jpg"_s));
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

    avatar(media(u"a.jpg"_s));
    handle(R"({"type":"phone","jid":"34600@s.whatsapp.net","phone":"34600333444"})");
    EXPECT_EQ(contact(u"avatar_path"_s), media(u"a.jpg"_s)) << "a person without a photo keeps the avatar";
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

TEST_F(IngestTest, aDatabaseThatDoesNotOpenHoldsTheLinesBack)
{
    EngineSurroundings around;
    FakeLauncher launcher(around.clock);
    QDir().mkpath(around.home.paths().database()); // a folder at the file's path
    EngineManager engines(around.on(around.clock, launcher), around.openDatabase(around.clock));
    launcher.expect(FakeLauncher::stays());
    engines.start(shop);
    launcher.last().printEvent({ { u"type"_s, u"status"_s }, { u"state"_s, u"open"_s } });
    launcher.last().printEvent({ { u"type"_s, u"message"_s }, { u"convExternalId"_s, u"c"_s }, { u"body"_s, u"b"_s },
        { u"providerMsgId"_s, u"m"_s } });
    around.clock.advance(seconds(10));
    EXPECT_EQ(engines.runtime(shop.id).status, WAStatus::Connected) << "what needs no row is not held";
    EXPECT_TRUE(launcher.last().chunkIsHeld());
    QDir().rmdir(around.home.paths().database());
    around.clock.advance(seconds(5));
    EXPECT_EQ(engines.db().scalar(u"SELECT COUNT(*) FROM unified_message;"_s), u"1"_s);
    EXPECT_FALSE(launcher.last().chunkIsHeld());
}

TEST_F(IngestTest, whatAnotherProgramHoldsUpIsStoredLaterAndOnlyThenAcknowledged)
{
    const auto other = world.openDatabase(world.clock);
    other->exec(u"BEGIN IMMEDIATE;"_s);
    report({ { u"type"_s, u"log"_s }, { u"ack"_s, 6 } });
    message({ { u"ack"_s, 7 } });
    report({ { u"type"_s, u"message"_s }, { u"ack"_s, 8 } });
    world.clock.advance(seconds(1));
    EXPECT_EQ(count(u"unified_message"_s), u"0"_s);
    EXPECT_EQ(acknowledged(), QList<int>({ 6 }));
    EXPECT_FALSE(logs.contains(u"locked"_s)) << "no write was tried";
    other->exec(u"COMMIT;"_s);
    world.clock.advance(Milliseconds(200));
    EXPECT_EQ(row(u"body"_s), u"hello"_s);
    EXPECT_EQ(acknowledged(), QList<int>({ 6, 8 })) << "one that is refused counts";
}

TEST_F(IngestTest, aFullDiskKeepsEveryLineAndTheEngineWaits)
{
    LocalDB& db = world.engines.db();
    int numbers = 0;
    while (db.health().fault() == StoreFault::None) {
        if (numbers == 50)
            db.exec(u"PRAGMA max_page_count=1;"_s); // no more than now
        for (int i = 0; i < 50; ++i, ++numbers)
            world.launcher.last().printEvent(
                { { u"type"_s, u"message"_s }, { u"convExternalId"_s, u"c"_s }, { u"body"_s, QString(500, u'b') },
                    { u"providerMsgId"_s, QString::number(numbers) }, { u"ack"_s, numbers } });
        world.settle();
    }
    world.clock.advance(seconds(60));
    EXPECT_TRUE(world.launcher.last().chunkIsHeld());
    const QString stored = count(u"unified_message"_s);
    EXPECT_EQ(acknowledged().last(), stored.toInt() - 1) << "a group that was undone is not acknowledged";
    EXPECT_EQ(conversation(u"unread"_s), stored);

    db.exec(u"PRAGMA max_page_count=1000000;"_s);
    world.clock.advance(seconds(5));
    EXPECT_EQ(count(u"unified_message"_s), QString::number(numbers));
    EXPECT_EQ(conversation(u"unread"_s), QString::number(numbers));
    EXPECT_EQ(acknowledged().last(), numbers - 1);
}

TEST_F(IngestTest, aLineThatCannotBeStoredIsUndoneAloneAndWhole)
{
    world.engines.db().exec(u"CREATE TRIGGER t BEFORE INSERT ON unified_message WHEN new.body='bad' "
                            "BEGIN SELECT RAISE(ABORT, 'no'); END;"_s);
    for (const QString& body : { u"one"_s, u"bad"_s, u"two"_s })
        world.launcher.last().printEvent({ { u"type"_s, u"message"_s }, { u"convExternalId"_s, body },
            { u"body"_s, body }, { u"providerMsgId"_s, body }, { u"ack"_s, body.size() } });
    world.settle();
    EXPECT_EQ(count(u"unified_message"_s) + count(u"unified_conversation"_s) + count(u"contact"_s), u"222"_s);
    EXPECT_EQ(world.banners.shown.size(), 2);
    EXPECT_EQ(world.engines.inboxRevision(), 2);
    EXPECT_EQ(acknowledged(), QList<int>({ 3 }));
}

TEST_F(IngestTest, twoAccountsMayUseTheSameMessageIdAndReachOnlyTheirOwn)
{
    const Account other = accountNamed(u"other"_s);
    message();
    world.launcher.expect(FakeLauncher::stays());
    world.engines.start(other);
    const auto theirs = [&](const QByteArray& event) {
        world.engines.handleEvent(other.id, QString::fromUtf8(event), Speaker::Current);
    };
    theirs(R"({"type":"msgStatus","providerMsgId":"m1","status":4})");
    theirs(R"({"type":"reaction","targetProviderMsgId":"m1","emoji":"x"})");
    theirs(R"({"type":"media","providerMsgId":"m1","state":"success","mediaPath":"/x"})");
    EXPECT_EQ(row(u"COALESCE(status, reaction, media_path)"_s), u"-"_s);
    theirs(R"({"type":"message","convExternalId":"34600@s.whatsapp.net","body":"theirs","providerMsgId":"m1"})");
    theirs(R"({"type":"msgStatus","providerMsgId":"m1","status":4})");
    EXPECT_EQ(row(u"body || '|' || COALESCE(status, '')"_s), u"hello|"_s);
    EXPECT_EQ(row(u"body || '|' || status || '|' || provider_msg_id"_s, u"wa:msg:other:m1"_s), u"theirs|4|m1"_s);
    EXPECT_EQ(count(u"unified_message"_s), u"2"_s);

    // The id that resolved another account's collision cannot be used to overwrite it either.
    handle(R"({"type":"message","convExternalId":"34600@s.whatsapp.net","body":"mine","providerMsgId":"other:m1"})");
    EXPECT_EQ(row(u"body"_s, u"wa:msg:other:m1"_s), u"theirs"_s);
    EXPECT_EQ(row(u"body"_s, u"wa:msg:shop:other:m1"_s), u"mine"_s);
}

TEST_F(IngestTest, anEngineNamesOnlyPlainFilesInItsOwnFolders)
{
    message();
    world.home.write(u"share/Corvane/media/shop/plain.jpg"_s, "x");
    world.home.write(u"share/Corvane/media/other/theirs.jpg"_s, "x");
    ASSERT_TRUE(QFile::link(u"/etc/passwd"_s, media(u"link.jpg"_s)));
    ASSERT_TRUE(QFile::link(u"/etc"_s, media(u"folder"_s)));
    for (const QString& path : { u"/etc/passwd"_s, media(u"link.jpg"_s), media(u"folder/passwd"_s),
             media(u"../other/theirs.jpg"_s), media(u"../shop"_s), world.home.path(u"share/Corvane/media/shop"_s) }) {
        avatar(path);
        EXPECT_EQ(cell(u"SELECT avatar_path FROM contact;"_s), u"-"_s) << qPrintable(path);
    }
    avatar(media(u"plain.jpg"_s));
    EXPECT_EQ(cell(u"SELECT avatar_path FROM contact;"_s), media(u"plain.jpg"_s));
}
