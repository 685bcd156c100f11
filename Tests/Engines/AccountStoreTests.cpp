#include "Engines/AccountStore.h"
#include "Foundation/Literals.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

using namespace corvane;
namespace {

class AccountStoreTest : public testing::Test {
protected:
    QString folder() const { return home.paths().applicationSupport; }
    QByteArray file() const { return home.read(u"share/Corvane/accounts.json"_s); }
    void writeFile(const QByteArray& content) const { home.write(u"share/Corvane/accounts.json"_s, content); }

    TemporaryHome home;
};

/// Makes every write to a file fail, as on a full disk.
class FullDisk {
public:
    FullDisk()
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit none { 0, m_before.rlim_max };
        ::setrlimit(RLIMIT_FSIZE, &none);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*m_handler)(int);
    rlimit m_before {};
};

const QByteArray earlierFile = R"([{"id":"0B7C1A52-4C1B-4E51-9E0C-6D4E4D1E0A11","name":"Shop","slug":"shop",
    "mcpEnabled":true,"mcpPort":8790,"autoStart":false}])";

}

TEST_F(AccountStoreTest, aSlugIsUrlSafeAndUnique)
{
    AccountStore store(folder());
    for (const auto& [name, slug] : { std::pair("Acme Sales!", "acme-sales"), std::pair("Acme Sales!", "acme-sales-2"),
             std::pair("ACME sales", "acme-sales-3"), std::pair("--Ünï  çode--", "n-ode"),
             std::pair("  ?!  ", "account"), std::pair("", "account-2") })
        EXPECT_EQ(store.add(QString::fromUtf8(name), Channel::Email).slug, QString::fromUtf8(slug));
    EXPECT_EQ(store.accounts()[4].name, u"?!"_s);
    EXPECT_EQ(store.accounts()[5].name, u"account-2"_s);
}

TEST_F(AccountStoreTest, aNewAccountTakesTheFirstFreePortAndIsReadBackAsItWas)
{
    QList<Account> written;
    {
        AccountStore store(folder());
        Account first = store.add(u"One"_s, Channel::WhatsApp);
        Account second = store.add(u"Two \"quoted\" \u2028 名"_s, Channel::Email);
        Account third = store.add(u"Three"_s, Channel::Slack);
        EXPECT_EQ(first.mcpPort, 8790);
        EXPECT_EQ(third.mcpPort, 8792);
        EXPECT_TRUE(first.mcpEnabled && first.autoStart && !first.paused && !first.email && !first.chromeProfile);

        store.remove(second);
        EXPECT_EQ(store.nextFreePort(), 8791);
        third.paused = true;
        third.email = u"x@y.example"_s;
        third.chromeProfile = u"Default"_s;
        store.update(third);
        written = store.accounts();
    }
    EXPECT_EQ(AccountStore(folder()).accounts(), written);
    EXPECT_TRUE(
        QRegularExpression(u"^\\[\\{\"id\":\"[0-9A-F-]{36}\",\"name\":\"One\",\"slug\":\"one\",\"mcpEnabled\":true,"
                           "\"mcpPort\":8790,\"autoStart\":true,\"channelRaw\":\"WHATSAPP\"\\},"_s)
            .match(QString::fromUtf8(file()))
            .hasMatch())
        << file().constData();
    EXPECT_TRUE(
        file().contains(R"("channelRaw":"SLACK","chromeProfile":"Default","email":"x@y.example","paused":true})"));
}

TEST_F(AccountStoreTest, anEarlierFileLoadsAsWhatsAppAndAnUnknownAccountChangesNothing)
{
    writeFile(earlierFile);
    AccountStore store(folder());
    Account stranger;
    stranger.id = QUuid::createUuid();
    store.update(stranger);
    store.remove(stranger);
    EXPECT_EQ(file(), earlierFile);
    ASSERT_EQ(store.accounts().size(), 1);
    EXPECT_EQ(store.accounts().first().channel(), Channel::WhatsApp);
    EXPECT_FALSE(store.accounts().first().channelRaw);
    EXPECT_FALSE(store.accounts().first().autoStart);
    EXPECT_TRUE(store.findBySlug(u"shop"_s));
}

TEST_F(AccountStoreTest, whetherAnAccountStartsWithTheProgramIsKept)
{
    AccountStore store(folder());
    Account account = store.add(u"mail"_s, Channel::Email);
    EXPECT_FALSE(account.startAtBoot);
    account.startAtBoot = true;
    store.update(account);
    EXPECT_EQ(AccountStore(folder()).accounts(), QList { account });
}

TEST(Accounts, aFileDecodesWholeOrNotAtAll)
{
    const QByteArray good = earlierFile;
    EXPECT_TRUE(decodeAccounts(good));
    EXPECT_TRUE(decodeAccounts("[]"));
    EXPECT_TRUE(decodeAccounts(QByteArray(good).replace("false}", R"(false,"paused":null,"channelRaw":"FAX"})")));
    for (const QByteArray& key : { "id", "name", "slug", "mcpEnabled", "mcpPort", "autoStart" }) {
        EXPECT_FALSE(decodeAccounts(QByteArray(good).replace('"' + key + '"', "\"other\""))) << key.constData();
        EXPECT_FALSE(decodeAccounts(QByteArray(good).replace('"' + key + "\":", '"' + key + "\":[],\"x\":")))
            << key.constData();
    }
    for (const QByteArray& bad : { R"("paused":1)", R"("email":2)", R"("channelRaw":{})", R"("chromeProfile":false)" })
        EXPECT_FALSE(decodeAccounts(QByteArray(good).replace("false}", "false," + bad + '}'))) << bad.constData();
    for (const QByteArray& bad : { "", "{}", "[1]", "[null]", "nonsense", "[{]" })
        EXPECT_FALSE(decodeAccounts(bad)) << bad.constData();
    EXPECT_FALSE(decodeAccounts(QByteArray(good).replace("8790", "8790.5")));
    EXPECT_FALSE(decodeAccounts(QByteArray(good).replace("8790", "1e99")));
    EXPECT_FALSE(decodeAccounts(QByteArray(good).replace("0B7C1A52", "nonsense")));
}

TEST_F(AccountStoreTest, aDamagedFileIsCopiedBesideItselfBeforeItIsFirstWrittenOver)
{
    const LogCapture logs;
    const QString damaged = folder() + u"/accounts.json.damaged"_s;
    writeFile("[{\"half\":");
    AccountStore store(folder());
    EXPECT_TRUE(store.accounts().isEmpty());
    EXPECT_FALSE(QFile::exists(damaged)) << "reading alone copies nothing";
    store.add(u"One"_s, Channel::Sms);
    store.add(u"Two"_s, Channel::Sms);
    EXPECT_EQ(home.read(u"share/Corvane/accounts.json.damaged"_s), QByteArray("[{\"half\":"));
    EXPECT_EQ(AccountStore(folder()).accounts().size(), 2);

    writeFile("once more");
    AccountStore(folder()).add(u"Three"_s, Channel::Sms);
    EXPECT_EQ(home.read(u"share/Corvane/accounts.json.damaged"_s), QByteArray("[{\"half\":")) << "the first copy stays";
    EXPECT_EQ(home.read(u"share/Corvane/accounts.json.damaged-2"_s), QByteArray("once more"));
}

TEST(Channels, aRawWordFindsItsChannelAndItsName)
{
    EXPECT_EQ(channelFromRaw(std::nullopt), Channel::WhatsApp);
    EXPECT_EQ(channelFromRaw(u"whatsapp"_s), Channel::WhatsApp);
    EXPECT_EQ(channelFromRaw(u"email"_s), Channel::WhatsApp) << "the words are compared as they stand";
    for (int i = 0; i <= static_cast<int>(Channel::IMessage); ++i)
        EXPECT_EQ(channelFromRaw(channelRaw(static_cast<Channel>(i))), static_cast<Channel>(i));
    EXPECT_EQ(channelLabel(u"IMESSAGE"_s), u"iMessage"_s);
    EXPECT_EQ(channelLabel(u"fax"_s), u"Fax"_s);
    EXPECT_EQ(channelLabel(QString()), QString());
}

TEST_F(AccountStoreTest, aFullDiskKeepsTheFileAsItWasAndTheListInMemory)
{
    writeFile(earlierFile);
    const LogCapture logs;
    AccountStore store(folder());
    {
        const FullDisk full;
        store.add(u"One"_s, Channel::Email);
    }
    EXPECT_EQ(file(), earlierFile);
    EXPECT_EQ(QDir(folder()).entryList(QDir::Files), QStringList(u"accounts.json"_s)) << "no temporary file is left";
    EXPECT_EQ(store.accounts().size(), 2);
    EXPECT_TRUE(logs.contains(u"AccountStore: could not write"_s));
    store.add(u"Two"_s, Channel::Email);
    EXPECT_EQ(decodeAccounts(file())->size(), 3) << "with room again, nothing is missing";
}
