#include "Browser/BrowserEvents.h"
#include "Browser/BrowserInput.h"
#include "Browser/PipeConnection.h"
#include "Browser/WebSocketConnection.h"
#include "PlayedBrowser.h"
#include "Support/FakePortHolders.h"

#include <QCoreApplication>
#include <QSet>
#include <QSignalSpy>
#include <QWebSocket>
#include <QWebSocketServer>
#include <csignal>

namespace corvane {

namespace {

/// A web server on the port of the browser, which this user's program listens on.
class AnsweringPort : public BrowserTest {
protected:
    AnsweringPort()
    {
        auto own = std::make_unique<FakePortHolders>();
        own->setHolders({ { 1, own->ownUserId() } });
        holders = std::move(own);
        options.port = quint16(QUrl(web.base()).port());
        web.answer(u"/json/version"_s, LoopbackWeb::json({ { u"webSocketDebuggerUrl"_s, u"ws://x"_s } }));
        web.answer(u"/json/new"_s, LoopbackWeb::json({}));
    }
    static LoopbackWeb::Answer list(const QStringList& addresses)
    {
        QJsonArray targets;
        for (const QString& address : addresses)
            targets.append(QJsonObject { { u"webSocketDebuggerUrl"_s, address } });
        return LoopbackWeb::status(200, QJsonDocument(targets).toJson(), { "Content-Type: application/json" });
    }
    QString problem(BrowserView& view)
    {
        view.setAddress(u"http://x.example"_s);
        view.open();
        EXPECT_TRUE(await([&] { return view.browser()->status() == u"failed"_s; }));
        return view.problem();
    }

    LoopbackWeb web;
};

}

TEST_F(AnsweringPort, onlyAPageOfThisBrowserIsConnectedTo)
{
    const QString port = QString::number(options.port);
    web.answer(u"/json/list"_s, list({}));
    EXPECT_EQ(problem(*makeView()), browserWords::noPage);
    web.answer(u"/json/list"_s,
        list({ u"ws://127.0.0.1:1/page"_s, u"ws://10.0.0.1:"_s + port + u"/page"_s,
            u"http://127.0.0.1:"_s + port + u"/page"_s }));
    EXPECT_EQ(problem(*makeView()), browserWords::noPage);
    EXPECT_FALSE(web.paths().contains(u"/page"_s));
    for (const QString& host : { u"127.0.0.1"_s, u"localhost"_s }) {
        const QString path = u"/devtools/"_s + host;
        web.answer(path, LoopbackWeb::status(404));
        web.answer(u"/json/list"_s, list({ u"ws://"_s + host + u':' + port + path }));
        const QString refused = problem(*makeView());
        EXPECT_TRUE(web.paths().contains(path)) << "the first that there is";
        EXPECT_FALSE(refused.isEmpty() || refused == browserWords::noPage) << refused.toStdString();
    }
    EXPECT_EQ(web.requests().at(1).method, "PUT");
}

TEST_F(AnsweringPort, aViewThatGoesWhileItsBrowserIsSoughtLeavesNothingBehind)
{
    web.answer(u"/json/list"_s, list({}));
    for (int rounds = 0; rounds < 60; rounds += 3) {
        auto view = makeView();
        const QPointer<ChromiumBrowserController> browser(view->browser());
        view->setAddress(u"http://x.example"_s);
        view->open();
        EXPECT_TRUE(browser->isConnecting());
        for (int round = 0; round < rounds; ++round)
            QCoreApplication::processEvents();
        view.reset();
        EXPECT_FALSE(browser);
    }
    EXPECT_EQ(problem(*makeView()), browserWords::noPage) << "the next one is not disturbed";
}

TEST_F(BrowserTest, aBrowserThatDoesNotAnswerInTimeIsEnded)
{
    const QString path = m_home.path(u"slow"_s);
    m_home.write(u"slow"_s, "#!/bin/sh\nexec sleep 1000\n");
    QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    options.executable = path;
    options.startLimit = seconds(5);
    const auto view = makeView();
    view->setAddress(u"http://x.example"_s);
    view->open();
    ChromiumBrowserController& browser = *view->browser();
    ASSERT_TRUE(await([&] { return browser.browserPid() > 0; }));
    const auto child = pid_t(browser.browserPid());
    const auto failed = [&] {
        m_clock.advance(Milliseconds(250));
        return browser.status() == u"failed"_s;
    };
    ASSERT_TRUE(await(failed));
    EXPECT_EQ(view->problem(), browserWords::notStarted(options.port));
    EXPECT_TRUE(await([&] {
        m_clock.advance(Milliseconds(250));
        return ::kill(child, 0) != 0;
    }));
    EXPECT_EQ(view->problem(), browserWords::notStarted(options.port)) << "its end is no news";

    options.line = BrowserOptions::Line::Pipe;
    options.executable = u"/nowhere/chromium"_s;
    const auto piped = makeView();
    piped->setAddress(u"http://x.example"_s);
    piped->open();
    ASSERT_TRUE(await([&] { return piped->browser()->status() == u"failed"_s; }));
    EXPECT_TRUE(piped->problem().contains("/nowhere/chromium"_L1)) << piped->problem().toStdString();
    piped->browser()->options().executable = u"/bin/false"_s;
    piped->solveProblem();
    ASSERT_TRUE(await([&] { return piped->problem() == browserWords::ended(1); })) << piped->problem().toStdString();
    EXPECT_EQ(browserWords::ended(-9), "The browser was ended by signal 9.");
}

TEST(DevToolsConnection, aCallIsNumberedAnsweredOnceAndRefusedAfterTheEnd)
{
    PlayedConnection connection;
    QStringList answers;
    const auto take = [&](const Result<QJsonObject>& result) {
        answers.append(result ? QString::number(result->value("a"_L1).toInt()) : result.error().message);
    };
    connection.call(u"A.plain"_s);
    EXPECT_EQ(connection.sent.last(), (QJsonObject { { u"id"_s, 1 }, { u"method"_s, u"A.plain"_s } }));
    connection.setSession(u"s"_s);
    connection.call(u"A.b"_s, { { u"x"_s, 1 } }, take);
    EXPECT_EQ(connection.sent.last(),
        (QJsonObject { { u"id"_s, 2 }, { u"method"_s, u"A.b"_s }, { u"sessionId"_s, u"s"_s },
            { u"params"_s, QJsonObject { { u"x"_s, 1 } } } }));
    for (const QByteArray message : { R"({"id":9,"result":{"a":1}})", R"({"id":2,"result":{"a":2}})",
             R"({"id":2,"result":{"a":3}})", R"({"id":1,"result":{"a":4}})", "no object" })
        connection.receive(message);
    connection.call(u"A.b"_s, {}, take);
    connection.receive(R"({"id":3,"error":{"message":"no such"}})");
    EXPECT_EQ(answers.join('|'), "2|no such");

    QSet<int> numbers;
    for (int n = 0; n < 2000; ++n) {
        connection.call(u"A.b"_s);
        numbers.insert(connection.sent.last()["id"_L1].toInt());
    }
    EXPECT_EQ(numbers.size(), 2000);
    EXPECT_FALSE(numbers.contains(DevToolsConnection::titleNumber));
    EXPECT_TRUE(numbers.contains(DevToolsConnection::titleNumber + 1));

    QSignalSpy told(&connection, &DevToolsConnection::told);
    QSignalSpy closed(&connection, &DevToolsConnection::closed);
    connection.receive(R"({"method":"A.happened","params":{"y":1}})");
    ASSERT_EQ(told.size(), 1);
    EXPECT_EQ(told.at(0).at(0).toString(), "A.happened");
    QJsonValue value = 7;
    connection.evaluate(u"1"_s, [&](const QJsonValue& is) { value = is; });
    connection.call(u"A.b"_s, {}, take);
    connection.fail(u"gone"_s);
    connection.fail(u"twice"_s);
    EXPECT_EQ(closed.size(), 1);
    EXPECT_EQ(closed.at(0).at(0).toString(), "gone");
    EXPECT_TRUE(value.isUndefined());
    const auto sent = connection.sent.size();
    connection.call(u"A.b"_s, {}, take);
    connection.call(u"A.b"_s);
    EXPECT_EQ(connection.sent.size(), sent);
    connection.receive(R"({"method":"A.happened"})");
    EXPECT_EQ(told.size(), 1);
    EXPECT_EQ(answers.join('|'), "2|no such|gone|The browser is gone.");
}

TEST(PipeConnection, aChunkHoldsWholeMessagesAndAnAnswerMayEndThem)
{
    auto pipe = std::make_unique<PipeConnection>();
    QSignalSpy told(pipe.get(), &DevToolsConnection::told);
    const QByteArray message = R"({"method":"A.b"})";
    pipe->take({ message + '\0' + message + '\0', {} });
    EXPECT_EQ(told.size(), 2);
    QObject::connect(pipe.get(), &DevToolsConnection::told, [&] { pipe.reset(); });
    pipe->take({ message + '\0' + message + '\0', {} });
    EXPECT_EQ(told.size(), 3) << "it is gone after the first";
    PipeConnection ended;
    const QSignalSpy closed(&ended, &DevToolsConnection::closed);
    ended.childEnded();
    EXPECT_EQ(closed.size(), 1);
}

TEST(WebSocketConnection, itsOpeningIsToldOnceHoweverItEnds)
{
    const auto connect = [](const QString& url, QStringList& told) {
        return std::make_unique<WebSocketConnection>(
            QUrl(url), [&told](const QString& reason) { told.append(reason); }, nullptr);
    };
    QTcpServer free;
    ASSERT_TRUE(free.listen(QHostAddress::LocalHost));
    const QString nobody = u"ws://127.0.0.1:%1"_s.arg(free.serverPort());
    free.close();
    QStringList refused;
    const auto first = connect(nobody, refused);
    ASSERT_TRUE(await([&] { return !refused.isEmpty(); }));
    EXPECT_FALSE(refused.first().isEmpty());
    QStringList givenUp;
    connect(nobody, givenUp).reset();
    EXPECT_EQ(givenUp, QStringList("The connection was given up."));

    QWebSocketServer server(u"x"_s, QWebSocketServer::NonSecureMode);
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    QStringList opened;
    const auto connection = connect(u"ws://127.0.0.1:%1"_s.arg(server.serverPort()), opened);
    QSignalSpy told(connection.get(), &DevToolsConnection::told);
    QSignalSpy closed(connection.get(), &DevToolsConnection::closed);
    ASSERT_TRUE(await([&] { return server.hasPendingConnections() && !opened.isEmpty(); }));
    const std::unique_ptr<QWebSocket> other(server.nextPendingConnection());
    QSignalSpy received(other.get(), &QWebSocket::textMessageReceived);
    connection->call(u"A.b"_s);
    other->sendTextMessage(u"{\"method\":\"A.text\"}"_s);
    other->sendBinaryMessage("{\"method\":\"A.binary\"}");
    ASSERT_TRUE(await([&] { return told.size() == 2 && received.size() == 1; }));
    EXPECT_EQ(told.at(1).at(0).toString(), "A.binary");
    EXPECT_EQ(received.at(0).at(0).toString(), "{\"id\":1,\"method\":\"A.b\"}");
    other->close();
    ASSERT_TRUE(await([&] { return closed.size() == 1; }));
    EXPECT_EQ(closed.at(0).at(0).toString(), "") << "a normal end";
    EXPECT_EQ(opened, QStringList(QString()));
    EXPECT_EQ(refused.size(), 1);
}

TEST(BrowserEvents, theAddressesOfManyRequestsAreForgottenDownToTheNewer)
{
    BrowserEvents events;
    const auto request = [&](int id) {
        return events.take(u"Network.requestWillBeSent"_s,
            { { u"requestId"_s, QString::number(id) },
                { u"request"_s, QJsonObject { { u"url"_s, u"http://x/%1"_s.arg(id) } } } },
            0);
    };
    const auto known = [&](int requests) {
        int count = 0;
        for (int id = 0; id < requests; ++id) {
            EXPECT_TRUE(events.take(u"Network.loadingFailed"_s, { { u"requestId"_s, QString::number(id) } }, 0));
            count += events.network().last().url.isEmpty() ? 0 : 1;
        }
        return count;
    };
    for (int id = 0; id < 300; ++id)
        EXPECT_FALSE(request(id));
    EXPECT_EQ(known(300), 300);
    request(300);
    EXPECT_EQ(known(301), 160);
    EXPECT_EQ(events.network().size(), BrowserEvents::kept);
    EXPECT_FALSE(
        events.take(u"Network.responseReceived"_s, { { u"response"_s, QJsonObject { { u"status"_s, 399 } } } }, 0));
    EXPECT_FALSE(events.take(u"Log.entryAdded"_s, { { u"entry"_s, QJsonObject {} } }, 0));
    EXPECT_FALSE(events.take(u"Runtime.consoleAPICalled"_s, {}, 0));
    const auto place = [](const QString& url, int line) {
        return placeOfEvent({ {}, 0, {}, {}, url, line });
    };
    EXPECT_EQ(place(u"http://x"_s, 1) + place(u"http://x"_s, 0) + place({}, 1), "http://x:2http://x");
    EXPECT_TRUE(events.take(u"Runtime.consoleAPICalled"_s,
        { { u"type"_s, u"ERROR"_s },
            { u"args"_s,
                QJsonArray { QJsonObject { { u"value"_s, 7 } }, QJsonObject { { u"description"_s, u"f()"_s } },
                    QJsonObject { { u"value"_s, QJsonArray {} }, { u"description"_s, u"Array(0)"_s } } } } },
        5));
    EXPECT_EQ(events.console().last().text + ' ' + events.console().last().level, "7 f() Array(0) error");
    EXPECT_EQ(events.console().last().capturedAt, 5);
}

TEST(BrowserInput, everyButtonAndKeyHasItsName)
{
    using Kind = BrowserPointer::Kind;
    const auto button = [](Qt::MouseButton pressed) {
        return pointerParameters({ .kind = Kind::Press, .button = pressed }, {})["button"_L1].toString();
    };
    EXPECT_EQ(button(Qt::LeftButton) + ' ' + button(Qt::MiddleButton) + ' ' + button(Qt::ForwardButton) + ' '
            + button(Qt::TaskButton),
        "left middle forward none");
    const auto held = [](Qt::MouseButtons buttons) {
        const QJsonObject sent = pointerParameters({ .kind = Kind::Move, .buttons = buttons }, {});
        return sent["button"_L1].toString() + QString::number(sent["buttons"_L1].toInt());
    };
    EXPECT_EQ(held(Qt::LeftButton | Qt::RightButton) + held(Qt::MiddleButton) + held({}), "left3middle4none0");
    EXPECT_EQ(pointerParameters({ .kind = Kind::Press, .clicks = 0 }, {})["clickCount"_L1].toInt(), 1);
    EXPECT_FALSE(pointerParameters({ .kind = Kind::Move }, {}).contains("clickCount"_L1));
    EXPECT_FALSE(pointerParameters({ .kind = Kind::Move }, {}).contains("deltaX"_L1));
    const auto key = [](const BrowserKey& pressed) {
        return keyParameters(pressed).value_or(QJsonObject());
    };
    EXPECT_EQ(key({ true, Qt::Key_F12 })["windowsVirtualKeyCode"_L1].toInt(), 123);
    EXPECT_EQ(key({ true, Qt::Key_Space, u" "_s })["type"_L1].toString(), "keyDown");
    EXPECT_EQ(key({ true, Qt::Key_A, u"a"_s, Qt::MetaModifier })["type"_L1].toString(), "rawKeyDown");
    EXPECT_EQ(key({ true, Qt::Key_A, u"a"_s, Qt::AltModifier })["text"_L1].toString(), "a");
    EXPECT_EQ(key({ true, Qt::Key_AsciiTilde, {}, Qt::ControlModifier })["key"_L1].toString(), "~");
    EXPECT_EQ(key({ true, Qt::Key_AsciiTilde })["code"_L1].toString(), "");
    EXPECT_FALSE(keyParameters({ true, 0x7f }));
    EXPECT_FALSE(keyParameters({ true, 0x7f, u"\x7f"_s }));
    EXPECT_FALSE(key({ true, Qt::Key_A, u"a"_s }).contains("autoRepeat"_L1));
    EXPECT_EQ(shownFrame({ 100, 50 }, { 300, 300 }), QRectF(0, 75, 300, 150));
    EXPECT_TRUE(shownFrame({}, { 300, 300 }).isEmpty());
    EXPECT_EQ(pagePoint({ 150, 100 }, { 300, 300 }, { 100, 50 }), QPointF(50, 25.0 / 3));
    EXPECT_EQ(pagePoint({ 1, 1 }, { 2, 2 }, { 100, 100 }), QPointF(50, 50));
    EXPECT_FALSE(pagePoint({ 1, 1 }, { 100, 1 }, { 100, 100 }));
    EXPECT_EQ(cursorShape(u"unknown"_s), Qt::ArrowCursor);
}

TEST(ChromiumLaunch, thePortIsThatOfTheEnvironmentAndElseAPipeWhereOthersMayLogIn)
{
    const QByteArray before = qgetenv("CORVANE_BROWSER_PORT");
    qputenv("CORVANE_BROWSER_PORT", "9400");
    EXPECT_EQ(browserOptions().port, 9400);
    EXPECT_EQ(browserOptions().line, BrowserOptions::Line::Port);
    const BrowserOptions usual;
    for (const char* wrong : { "0", "x", "70000" }) {
        qputenv("CORVANE_BROWSER_PORT", wrong);
        EXPECT_EQ(browserOptions().port, usual.port) << wrong;
    }
    before.isNull() ? qunsetenv("CORVANE_BROWSER_PORT") : qputenv("CORVANE_BROWSER_PORT", before);
    for (const QString& local : { u"0.0.0.0"_s, u"10.1.2.3"_s, u"169.254.1.1"_s, u"[fd00::1]"_s, u"[fe80::1]"_s })
        EXPECT_EQ(normalizedURL(local, {}), u"http://"_s + local);
    for (const QString& kept : { u"about:blank"_s, u"file:///tmp/a"_s })
        EXPECT_EQ(normalizedURL(kept, {}), kept);
    for (const QString& other : { u"11.1.2.3"_s, u"172.15.0.1"_s, u"192.169.0.1"_s, u"[2001:db8::1]"_s })
        EXPECT_EQ(normalizedURL(other, {}), u"https://"_s + other);
    BrowserOptions piped;
    piped.line = BrowserOptions::Line::Pipe;
    piped.hasSandbox = false;
    const QStringList arguments = chromiumArguments(piped, u"/p"_s);
    EXPECT_EQ(arguments.first(), "--remote-debugging-pipe");
    EXPECT_TRUE(arguments.contains(u"--no-sandbox"_s));
}

}
