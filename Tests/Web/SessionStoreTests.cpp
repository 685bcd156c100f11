#include "Web/SessionStore.h"

#include "Foundation/UserDefaults.h"
#include "Platform/Keychain.h"
#include "Support/Await.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeKeyring.h"
#include "Support/LogCapture.h"
#include "Support/LoopbackWeb.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace corvane {

namespace {

const QString loginPath = "/api/auth/login";
const QString handshakePath = "/api/auth/companion-login";
const QString exchangePath = "/api/auth/companion-exchange";

QString tokenOf(const QByteArray& claims)
{
    return "head."
        + QString::fromLatin1(claims.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals))
        + ".signature";
}

QJsonObject credentials(const QString& token)
{
    return { { "data", QJsonObject { { "token", token }, { "deviceId", "device-7" } } } };
}

class Session : public testing::Test {
protected:
    Session()
    {
        defaults.setText("nimb.apiBaseUrl", web.base());
        open();
    }

    void open() { session = std::make_unique<SessionStore>(home.paths(), keychain, defaults, desktop, clock); }

    /// Makes every request of a sign-in succeed.
    void answerWell(const QString& token = tokenOf(R"({"email":"ana@ruiz.example","name":"Ana Ruiz"})"))
    {
        web.answer(loginPath, LoopbackWeb::json({ { "data", QJsonObject { { "accessToken", "short-term" } } } }));
        web.answer(handshakePath, LoopbackWeb::redirect("nimb-companion://auth?code=one%2Btime"));
        web.answer(exchangePath, LoopbackWeb::json(credentials(token)));
    }

    void signIn()
    {
        session->signIn("ana@ruiz.example", "secret word");
        EXPECT_TRUE(session->busy());
        EXPECT_EQ(session->lastErrorText(), "") << "what failed before is over";
        EXPECT_TRUE(await([&] { return !session->busy(); }));
    }

    QString lastErrorAfterSignIn()
    {
        signIn();
        return session->lastErrorText();
    }

    QString tokenFile() const { return home.path("share/Corvane/companion.jwt"); }
    QString kept(const QString& account) { return keychain.get(account).value_or("none"); }

    TemporaryHome home;
    VirtualScheduler clock;
    FakeKeyring keyring;
    Keychain keychain { keyring, home.paths().secretsFile(), clock };
    UserDefaults defaults { home.paths().defaultsFile };
    FakeDesktop desktop;
    LoopbackWeb web;
    std::unique_ptr<SessionStore> session;
};

}

TEST_F(Session, aPasswordBecomesADeviceTokenInThreeCalls)
{
    answerWell();
    signIn();

    EXPECT_TRUE(session->signedIn());
    EXPECT_EQ(session->lastErrorText(), "");
    EXPECT_EQ(session->displayLine(), "Ana Ruiz");
    EXPECT_EQ(session->initial(), "A");
    EXPECT_EQ(session->deviceId(), "device-7");
    EXPECT_EQ(kept("companion.jwt"), session->token());
    EXPECT_EQ(kept("companion.deviceId"), "device-7");

    ASSERT_EQ(web.paths(), QStringList({ loginPath, handshakePath, exchangePath }));
    const auto& [login, handshake, exchange] = std::tie(web.requests()[0], web.requests()[1], web.requests()[2]);
    EXPECT_EQ(login.method, "POST");
    EXPECT_EQ(login.headers["content-type"], "application/json");
    EXPECT_EQ(login.json(), QJsonObject({ { "email", "ana@ruiz.example" }, { "password", "secret word" } }));
    EXPECT_EQ(handshake.method, "GET");
    EXPECT_EQ(handshake.headers["authorization"], "Bearer short-term");
    EXPECT_EQ(handshake.query("callback"), "nimb-companion://auth");
    EXPECT_TRUE(handshake.url.toEncoded().contains("deviceName=studio%2B1")) << handshake.url.toEncoded().data();
    EXPECT_EQ(exchange.json(), QJsonObject({ { "code", "one+time" }, { "deviceName", "studio+1" } }));
}

TEST_F(Session, theTokenFileIsPrivateAndHoldsTheTokenThoughTheKeyringRefuses)
{
    keyring.failure = Keyring::Failure::Failed;
    const mode_t before = ::umask(0);
    session->setAuth("a.b.c", "d");
    ::umask(before);

    EXPECT_TRUE(session->signedIn());
    EXPECT_EQ(home.read("share/Corvane/companion.jwt"), "a.b.c");
    struct stat facts {};
    ASSERT_EQ(::stat(qPrintable(tokenFile()), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777, 0600);
    EXPECT_EQ(QFileInfo(tokenFile()).dir().entryList(QDir::Files), QStringList("companion.jwt"));
    open();
    EXPECT_TRUE(session->signedIn());

    EXPECT_TRUE(QFile::remove(tokenFile()));
    QDir().mkpath(tokenFile() + "/in the way");
    const LogCapture logs;
    session->setAuth("d.e.f", "d");
    EXPECT_EQ(session->token(), "d.e.f") << "the session lives without its file";
    EXPECT_EQ(logs.lines(), QStringList("SessionStore: " + tokenFile() + " could not be written"));
}

TEST_F(Session, theAddressOfTheServiceMayEndWithSlashes)
{
    answerWell();
    defaults.setText("nimb.apiBaseUrl", web.base() + "//");
    signIn();
    EXPECT_TRUE(session->signedIn());
    EXPECT_EQ(web.paths(), QStringList({ loginPath, handshakePath, exchangePath }));
}

TEST_F(Session, aKeptTokenIsTakenUpAtStartAndItsFileMadeAgain)
{
    keychain.set(tokenOf(R"({"email":"ana@ruiz.example","workspace_id":"ws-123456789"})"), "companion.jwt");
    keychain.set("device-1", "companion.deviceId");
    home.write("share/Corvane/companion.jwt", "stale, and readable by all");
    open();

    EXPECT_TRUE(session->signedIn());
    EXPECT_EQ(session->deviceId(), "device-1");
    EXPECT_EQ(session->displayLine(), "ana@ruiz.example · workspace ws-12345");
    EXPECT_EQ(home.read("share/Corvane/companion.jwt"), session->token()->toUtf8());
    EXPECT_EQ(QFileInfo(tokenFile()).permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    EXPECT_TRUE(web.requests().isEmpty());
}

TEST_F(Session, everyFailureEndsInItsWords)
{
    struct Case {
        QString path;
        LoopbackWeb::Answer answer;
        QString words;
    };
    const QString twoFactor = "This account uses two-factor — use “Sign in with browser” below.";
    const QString unreadable = "The data couldn’t be read because it isn’t in the correct format.";
    const QJsonObject needsTwoFactor { { "requires2fa", true } };
    const QList<Case> cases {
        { loginPath, LoopbackWeb::json({}, 401), "Wrong email or password." },
        { loginPath, LoopbackWeb::status(401, "", { "WWW-Authenticate: Basic realm=\"x\"" }),
            "Wrong email or password." },
        { loginPath, LoopbackWeb::json(needsTwoFactor, 403), "Wrong email or password." },
        { loginPath, LoopbackWeb::json(needsTwoFactor), twoFactor },
        { loginPath, LoopbackWeb::json({ { "requiresTwoFactor", true } }), twoFactor },
        { loginPath, LoopbackWeb::status(200, "<html>hello"), "Unexpected login response (HTTP 200)" },
        { loginPath, LoopbackWeb::json({ { "data", QJsonObject { { "accessToken", 7 } } } }),
            "Unexpected login response (HTTP 200)" },
        { loginPath, LoopbackWeb::status(500, "{}"), "Unexpected login response (HTTP 500)" },
        { loginPath, LoopbackWeb::status(200, QByteArray(5 * 1024 * 1024, ' ')), "The reply is too large." },
        { handshakePath, LoopbackWeb::status(200, "a page"), "Companion handshake failed (HTTP 200)" },
        { handshakePath, LoopbackWeb::redirect("nimb-companion://auth?code="),
            "Companion handshake failed (HTTP 302)" },
        { handshakePath, LoopbackWeb::redirect("nimb-companion://auth?code=x", 307),
            "Companion handshake failed (HTTP 307)" },
        { handshakePath, LoopbackWeb::status(302), "Companion handshake failed (HTTP 302)" },
        { exchangePath, LoopbackWeb::status(410, "gone"), "Sign-in failed (HTTP 410)" },
        { exchangePath, LoopbackWeb::status(200, "{}"), unreadable },
        { exchangePath, LoopbackWeb::status(200, "\xff\xfe nonsense"), unreadable },
        { exchangePath, LoopbackWeb::json({ { "data", QJsonObject { { "token", "t" }, { "deviceId", 4 } } } }),
            unreadable },
    };
    session->setAuth("earlier", "device-0");
    for (const Case& each : cases) {
        answerWell();
        web.answer(each.path, each.answer);
        EXPECT_EQ(lastErrorAfterSignIn(), each.words) << each.answer.bytes.left(300).toStdString();
        EXPECT_EQ(session->token(), "earlier");
        EXPECT_EQ(home.read("share/Corvane/companion.jwt"), "earlier");
    }
    answerWell();
    EXPECT_EQ(lastErrorAfterSignIn(), "") << "a later success clears the words";
}

TEST_F(Session, bytesThatAreNoHttpAndBrokenAnswersFailInTheWordsOfTheTransport)
{
    answerWell();
    for (const QByteArray& bytes :
        QList<QByteArray> { "", "SSH-2.0-thing\r\n", "HTTP/1.1 200 OK\r\nContent-Length: 50\r\n\r\n{" }) {
        web.answer(loginPath, { bytes });
        EXPECT_NE(lastErrorAfterSignIn(), "") << bytes.data();
        EXPECT_FALSE(session->signedIn());
    }
    EXPECT_EQ(web.paths().count(handshakePath), 0);
    for (const QString& path : { handshakePath, exchangePath }) {
        answerWell();
        web.answer(path, { "" });
        EXPECT_EQ(lastErrorAfterSignIn(), "Connection closed") << qPrintable(path);
        EXPECT_FALSE(session->signedIn());
    }
}

TEST_F(Session, aServiceThatNeverAnswersEndsAfterAMinute)
{
    for (const QByteArray& begun : QList<QByteArray> { "", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{" }) {
        const qsizetype asked = web.requests().size();
        web.answer(loginPath, { begun, true });
        session->signIn("a@b", "c");
        ASSERT_TRUE(await([&] { return web.requests().size() > asked; }));
        clock.advance(seconds(59));
        EXPECT_TRUE(session->busy());
        clock.advance(seconds(1));
        EXPECT_FALSE(session->busy());
        EXPECT_EQ(session->lastErrorText(), "The request timed out.");
    }
}

TEST_F(Session, credentialsNeverFollowARedirectToAnotherOrigin)
{
    LoopbackWeb elsewhere;
    const std::pair<QString, QString> calls[] { { loginPath, "Unexpected login response (HTTP %1)" },
        { exchangePath, "Sign-in failed (HTTP %1)" }, { handshakePath, "Companion handshake failed (HTTP %1)" } };
    for (const int status : { 301, 302, 303, 307, 308 }) {
        for (const auto& [path, words] : calls) {
            answerWell();
            web.answer(path, LoopbackWeb::redirect(elsewhere.base() + "/?no=code", status));
            EXPECT_EQ(lastErrorAfterSignIn(), words.arg(status));
        }
    }
    EXPECT_TRUE(elsewhere.requests().isEmpty());
}

TEST_F(Session, aBaseThatIsNoWebAddressHasItsWords)
{
    for (const QString& base : { "not an address", "file:///tmp", "" }) {
        defaults.setText("nimb.apiBaseUrl", base);
        session->signIn("a@b", "c");
        EXPECT_EQ(session->lastErrorText(), "Bad API URL");
        EXPECT_FALSE(session->busy());
        session->handleCallback(QUrl("nimb-companion://auth?code=x"));
        session->acceptLink();
        EXPECT_EQ(session->lastErrorText(), "Bad companion URL");
        EXPECT_FALSE(session->busy());
        session->startSignIn();
        EXPECT_EQ(session->lastErrorText(), "Bad companion URL");
    }
    EXPECT_TRUE(desktop.opened.isEmpty());
}

TEST_F(Session, theBrowserComesBackThroughTheCallback)
{
    answerWell();
    desktop.host.clear();
    session->startSignIn();
    ASSERT_EQ(desktop.opened.size(), 1);
    EXPECT_EQ(desktop.opened[0].toString(QUrl::FullyEncoded),
        web.base() + handshakePath + "?callback=nimb-companion%3A%2F%2Fauth&deviceName=This%20computer");
    EXPECT_FALSE(session->busy());

    for (const char* url : { "nimb-companion://auth?code=", "nimb-companion://auth", "nimb-companion://other?code=x",
             "https://auth?code=x", "nimb-companion:auth?code=x", "" }) {
        session->handleCallback(QUrl(QString::fromLatin1(url)));
        EXPECT_FALSE(session->busy()) << url;
        EXPECT_EQ(session->lastErrorText(), "") << url;
    }

    session->handleCallback(QUrl("nimb-companion://auth?code=abc"));
    EXPECT_TRUE(await([&] { return session->signedIn(); }));
    EXPECT_EQ(web.paths(), QStringList(exchangePath));
    EXPECT_EQ(web.requests()[0].json(), QJsonObject({ { "code", "abc" }, { "deviceName", "This computer" } }));
}

TEST_F(Session, aLinkThatNobodyHereAskedForWaitsForTheUsersWord)
{
    const QUrl link("nimb-companion://auth?code=abc");
    answerWell();
    const LogCapture logs;
    session->handleCallback(link);
    EXPECT_TRUE(session->asksAboutLink());
    EXPECT_EQ(logs.lines(), QStringList("SessionStore: a sign-in link that was not asked for waits for the user"));
    session->ignoreLink();
    EXPECT_FALSE(session->asksAboutLink());
    session->startSignIn();
    clock.advance(seconds(601));
    session->handleCallback(link);
    EXPECT_TRUE(session->asksAboutLink()) << "the browser had ten minutes";
    EXPECT_TRUE(web.requests().isEmpty());
    session->acceptLink();
    EXPECT_FALSE(session->asksAboutLink());
    EXPECT_TRUE(await([&] { return session->signedIn(); }));

    session->startSignIn();
    session->handleCallback(link);
    EXPECT_TRUE(await([&] { return !session->busy(); }));
    session->handleCallback(link);
    EXPECT_TRUE(session->asksAboutLink()) << "one sign-in is good for one link";
    session->signOut();
    EXPECT_FALSE(session->asksAboutLink());
}

TEST_F(Session, aLinkNeverEndsASignInThatRuns)
{
    answerWell();
    web.answer(loginPath, { "", true });
    session->startSignIn();
    session->signIn("slow@b", "c");
    ASSERT_TRUE(await([&] { return web.requests().size() == 1; }));
    session->handleCallback(QUrl("nimb-companion://auth?code=abc"));
    session->acceptLink();
    EXPECT_TRUE(session->busy());
    EXPECT_TRUE(session->asksAboutLink());
    clock.advance(seconds(60));
    EXPECT_EQ(session->lastErrorText(), "The request timed out.");
    session->acceptLink();
    EXPECT_TRUE(await([&] { return session->signedIn(); }));
    EXPECT_EQ(session->lastErrorText(), "");
}

TEST_F(Session, nothingIsSentUnencryptedToAnotherMachine)
{
    for (const QString& base : { "http://nimb.example", "http://192.168.0.7:3000", "http://localhost.example" }) {
        defaults.setText("nimb.apiBaseUrl", base);
        session->signIn("a@b", "c");
        EXPECT_FALSE(session->busy());
        EXPECT_TRUE(session->lastErrorText().startsWith("The web address is not encrypted."));
        session->startSignIn();
        EXPECT_TRUE(session->lastErrorText().startsWith("The web address is not encrypted."));
    }
    EXPECT_TRUE(desktop.opened.isEmpty());
}

TEST_F(Session, aSignOutOrTheEndInTheMiddleOfASignInLeavesNothingBehind)
{
    web.answer(loginPath, { "HTTP/1.1 200 OK\r\n", true });
    for (const int requests : { 1, 2 }) {
        session->signIn("a@b", "c");
        ASSERT_TRUE(await([&] { return web.requests().size() == requests; }));
        if (requests == 1)
            session->signOut();
        EXPECT_EQ(session->busy(), requests == 2);
        EXPECT_FALSE(session->signedIn());
        EXPECT_EQ(session->lastErrorText(), "");
    }
    session.reset();
    EXPECT_EQ(clock.pendingTimers(), 0);
}

TEST_F(Session, aSignOutForgetsEverythingAboutTheWeb)
{
    answerWell();
    signIn();
    session->setWebRejected(true);
    int signedOut = 0;
    QObject::connect(session.get(), &SessionStore::signedOut, session.get(), [&] { ++signedOut; });
    session->signOut();

    EXPECT_FALSE(session->signedIn());
    EXPECT_FALSE(session->webRejected());
    EXPECT_EQ(session->displayLine(), "Not signed in");
    EXPECT_EQ(session->initial(), "?");
    EXPECT_EQ(kept("companion.jwt"), "none");
    EXPECT_EQ(kept("companion.deviceId"), "none");
    EXPECT_FALSE(QFileInfo::exists(tokenFile()));
    EXPECT_EQ(signedOut, 1);
    open();
    EXPECT_FALSE(session->signedIn());
}

TEST_F(Session, claimsAreReadFromAnyPaddingAndKeptWhereATokenHasNone)
{
    session->setAuth("opaque", "d");
    EXPECT_EQ(session->displayLine(), "Signed in");
    // These claims need zero, one and two padding characters.
    for (const QByteArray& name : QList<QByteArray> { "An", "Ana", "Anna", "Ünï>?" }) {
        session->setAuth(tokenOf("{\"name\":\"" + name + "\"}"), "d");
        EXPECT_EQ(session->userName(), QString::fromUtf8(name));
    }
    session->setAuth(
        tokenOf(R"({"email":"b@c","workspaceId":"one","workspace_id":"two","organization_id":"org"})"), "d");
    EXPECT_EQ(session->userName(), std::nullopt) << "a claim that is missing clears the old one";
    EXPECT_EQ(session->workspaceId(), "one");
    EXPECT_EQ(session->organizationId(), "org");

    session->setAuth(tokenOf(R"({"name":"","email":"b@c","workspaceId":""})"), "d");
    EXPECT_EQ(session->displayLine() + session->initial(), "b@cb");

    for (const char* opaque : { "onesegment", "head.!!!.tail", "head.bm90IGpzb24.tail", "head..tail" }) {
        session->setAuth(QString::fromLatin1(opaque), "d");
        EXPECT_EQ(session->token(), opaque);
        EXPECT_EQ(session->email(), "b@c") << opaque;
    }
}

}
