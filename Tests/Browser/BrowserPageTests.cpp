#include "Browser/WebSocketConnection.h"
#include "PlayedBrowser.h"

#include <QRandomGenerator>
#include <QWebSocket>
#include <QWebSocketServer>

namespace corvane {

TEST_F(PlayedBrowser, aPageIsListenedToBeforeItOpensAndNewestProblemsAreKept)
{
    ChromiumBrowserController& browser = *view->browser();
    const QStringList first { u"Page.enable"_s, u"Runtime.enable"_s, u"Log.enable"_s, u"Network.enable"_s,
        u"Emulation.setDeviceMetricsOverride"_s, u"Page.startScreencast"_s };
    EXPECT_EQ(page->methods().first(6), first);
    EXPECT_EQ(page->sent.at(4)["params"_L1]["width"_L1].toInt(), 1280);
    EXPECT_EQ(browser.status(), u"connected"_s);

    for (int i = 0; i < 61; ++i)
        page->logError(u"problem %1"_s.arg(i));
    page->say(u"Runtime.consoleAPICalled"_s, { { u"type"_s, u"info"_s } });
    request(1, u"http://x/399"_s, 399);
    request(2, u"http://x/400"_s, 400);
    request(3, u"http://x/gone"_s, 0);
    page->receive("no JSON");
    page->receive("[1,2]");
    EXPECT_EQ(maskedConsole(browser.page()).size(), 60);
    EXPECT_EQ(maskedConsole(browser.page()).first().text, u"problem 1"_s);
    EXPECT_EQ(maskedRequests(browser.page()).size(), 2);
    EXPECT_EQ(maskedRequests(browser.page()).first().detail, u"HTTP 400 Gone"_s);
    EXPECT_EQ(maskedRequests(browser.page()).last().url, u"http://x/gone"_s);
    EXPECT_EQ(maskedRequests(browser.page()).last().detail, u"request failed"_s);

    page->say(u"Page.frameNavigated"_s,
        { { u"frame"_s, QJsonObject { { u"id"_s, u"1"_s }, { u"url"_s, u"http://x/?token=abc&page=2"_s } } } });
    page->say(u"Page.frameNavigated"_s,
        { { u"frame"_s,
            QJsonObject { { u"id"_s, u"2"_s }, { u"parentId"_s, u"1"_s }, { u"url"_s, u"http://y/"_s } } } });
    EXPECT_EQ(browser.currentURL(), u"http://x/?token=[redacted]&page=2"_s);
    page->receive(R"({"id":1697,"result":{"result":{"value":"A title"}}})");
    EXPECT_EQ(browser.title(), u"A title"_s);

    for (int i = 0; i < 1000; ++i)
        page->say(u"Page.javascriptDialogOpening"_s, { { u"type"_s, u"alert"_s } });
    EXPECT_EQ(page->methods().count(u"Page.handleJavaScriptDialog"_s), 1000);
    EXPECT_EQ(view->notice(), u"1,000 dialogs of the page dismissed."_s);

    page->fail({});
    EXPECT_EQ(browser.status(), u"disconnected"_s);
    EXPECT_FALSE(browser.isRunning());
}

TEST_F(PlayedBrowser, everyFrameIsAcknowledgedAndTheNewestPictureIsShown)
{
    BrowserSurface& surface = *view->browser()->surface();
    page->showFrame("no picture", 7);
    for (int width = 100; width <= 400; width += 100)
        page->showFrame(PlayedConnection::jpeg({ width, 100 }), width,
            { { u"deviceWidth"_s, width * 2 }, { u"deviceHeight"_s, 200 } });
    EXPECT_EQ(page->methods().count(u"Page.screencastFrameAck"_s), 5);
    ASSERT_TRUE(await([&] { return surface.frameImage().width() == 400; }));
    EXPECT_EQ(surface.viewportSize(), QSizeF(800, 200));
    page->showFrame(PlayedConnection::jpeg({ 300, 100 }), 8);
    ASSERT_TRUE(await([&] { return surface.frameImage().width() == 300; }));
    EXPECT_EQ(surface.viewportSize(), QSizeF(300, 100)) << "without metadata the picture tells";

    // The view is twice as high as the frame needs, so the frame is letterboxed above and below.
    surface.clickBrowser({ 300, 250 }, { 600, 400 });
    const QJsonObject press = page->sent.at(page->sent.size() - 2);
    EXPECT_EQ(press["params"_L1]["type"_L1].toString(), u"mousePressed"_s);
    EXPECT_EQ(press["params"_L1]["x"_L1].toDouble(), 150);
    EXPECT_EQ(press["params"_L1]["y"_L1].toDouble(), 75);
    EXPECT_EQ(cursorShape(u"url(\"a,b.png\") 4 4, grab"_s), Qt::OpenHandCursor);
    surface.clickBrowser({ -10, 0 }, { 600, 400 });
    EXPECT_EQ(page->sent.last()["params"_L1]["x"_L1].toDouble(), 0);
    EXPECT_EQ(page->sent.last()["params"_L1]["y"_L1].toDouble(), 0);
}

TEST_F(PlayedBrowser, playedStepsWaitForThePageThatAClickLeadsToAndStopAtOnce)
{
    using Step = BrowserStep;
    Q_EMIT view->history()->playRequested(
        { { Step::Kind::Click, u"#next"_s, u"Next"_s }, { Step::Kind::Type, u"#q"_s, u"Search"_s, u"boots"_s } });
    answerScript(QJsonArray { 10, 20 });
    page->say(u"Page.frameStartedLoading"_s, {});
    answer(u"Input.dispatchMouseEvent"_s, {});
    answerScript({});
    m_clock.advance(seconds(2));
    EXPECT_TRUE(view->notice().startsWith("Step 1 of 2"_L1)) << qPrintable(view->notice());
    page->say(u"Page.frameNavigated"_s, { { u"frame"_s, QJsonObject { { u"url"_s, u"http://x/next"_s } } } });
    m_clock.advance(seconds(1));
    EXPECT_TRUE(page->sent.last()["params"_L1]["expression"_L1].toString().endsWith("(...[\"#q\"])"_L1));
    EXPECT_EQ(view->noticeAction(), u"Stop"_s);
    view->actOnNotice();
    answerScript(true);
    EXPECT_FALSE(page->methods().contains(u"Input.insertText"_s));
    EXPECT_EQ(view->notice() + view->noticeAction(), QString());
}

TEST_F(PlayedBrowser, aDateIsPickedWithinTheLimitsOfItsField)
{
    BrowserFieldPicker& picker = *view->picker()->field();
    step({ { u"kind"_s, u"field"_s }, { u"type"_s, u"date"_s }, { u"value"_s, u"2026-11-22"_s },
        { u"min"_s, u"2026-11-10"_s }, { u"required"_s, true } });
    EXPECT_TRUE(picker.isOpen() && !picker.canClear());
    EXPECT_EQ(picker.heading(), u"November 2026"_s);
    EXPECT_EQ(picker.columns().first(), u"Mon"_s);
    EXPECT_EQ(picker.options().first().value, u"2026-10-26"_s);
    QStringList chosen;
    QStringList refused;
    for (const BrowserFieldOption& day : picker.options()) {
        if (day.isChosen)
            chosen.append(day.value);
        if (!day.isOffered)
            refused.append(day.value);
    }
    EXPECT_EQ(chosen, QStringList { u"2026-11-22"_s });
    EXPECT_EQ(refused.last(), u"2026-11-09"_s);
    for (const QString& wrong : { u"2026-11-09"_s, u"2026-02-30"_s, u"someday"_s }) {
        picker.setText(wrong);
        picker.accept();
        EXPECT_TRUE(picker.isOpen() && !picker.refusal().isEmpty()) << qPrintable(wrong);
    }
    picker.turn(1);
    EXPECT_EQ(picker.heading(), u"December 2026"_s);
    picker.choose(u"2026-12-24"_s);
    EXPECT_FALSE(picker.isOpen());
    EXPECT_EQ(page->sent.last()["params"_L1]["expression"_L1].toString(), u"corvaneChoose(...[\"2026-12-24\"])"_s);

    const QList<QStringList> values { { u"datetime-local"_s, u"2026-11-22 9:05"_s, u"2026-11-22T09:05"_s },
        { u"month"_s, u"2026-11"_s, u"2026-11"_s }, { u"month"_s, u"2026-13"_s, {} },
        { u"week"_s, u"2026-w3"_s, u"2026-W03"_s }, { u"week"_s, u"2026-W53"_s, u"2026-W53"_s },
        { u"week"_s, u"2027-W53"_s, {} }, { u"time"_s, u"7:30"_s, u"07:30"_s }, { u"time"_s, u"25:00"_s, {} },
        { u"color"_s, u"#36C"_s, u"#3366cc"_s }, { u"color"_s, u"blueish"_s, {} } };
    for (const QStringList& value : values)
        EXPECT_EQ(browserFieldValue(*browserFieldKind(value.at(0)), value.at(1)).value_or(QString()), value.at(2));
}

TEST_F(PlayedBrowser, noneOfTenThousandSecretsIsInAnyFileOrRow)
{
    constexpr int rounds = 20;
    const QString marker = u"Zq9"_s;
    QRandomGenerator random(20261122);
    int planted = 0;
    const auto secret = [&](const QString& signs) {
        ++planted;
        QString text = marker;
        for (int i = 0; i < 12; ++i)
            text += signs.at(random.bounded(signs.size()));
        return text + marker;
    };
    const QString plain = u"abcdefghijklmnopqrstuvwxyzABCDEFGH0123456789"_s;
    const QString any = plain + u" '\"\\&=%#?/+<>äß€"_s;
    const auto forms = [&] {
        return QStringList { u"Authorization: Bearer "_s + secret(plain),
            u"Authorization: Basic "_s + secret(plain + u"+/="_s),
            u"Cookie: a="_s + secret(plain) + u"; session="_s + secret(plain), u"Set-Cookie: id="_s + secret(plain),
            u"https://ana:"_s + secret(plain + u"@!$"_s) + u"@x.example/"_s,
            u"http://x.example/?api_key="_s + secret(plain) + u"&p=1#access_token="_s + secret(plain),
            u"got eyJ"_s + secret(plain) + u'.' + secret(plain) + u'.' + secret(plain), u"password: "_s + secret(plain),
            u"MY_TOKEN='"_s + secret(plain + u" &"_s) + u'\'', u"sk-"_s + secret(plain) + secret(plain),
            QString::fromUtf8(QJsonDocument(QJsonObject { { u"user"_s, u"ana"_s }, { u"password"_s, secret(any) } })
                    .toJson(QJsonDocument::Compact)) };
    };
    int field = 0;
    for (int round = 0; round < rounds; ++round) {
        const QString typed = secret(any);
        step({ { u"kind"_s, u"secret"_s }, { u"field"_s, ++field }, { u"text"_s, typed.first(5) } });
        step({ { u"kind"_s, u"secret"_s }, { u"field"_s, field }, { u"text"_s, typed } });
        step({ { u"kind"_s, u"type"_s }, { u"selector"_s, u"#pw"_s }, { u"label"_s, u"Password"_s },
            { u"withheld"_s, true } });
        for (int i = 0; i < 15; ++i)
            page->logError(u"sent "_s + typed + u" to "_s + forms().join(u'\n'));
        for (int i = 0; i < 15; ++i) {
            const QString url = u"http://x.example/a?x="_s + QString::fromLatin1(QUrl::toPercentEncoding(typed))
                + u"&auth="_s + secret(plain);
            request(i, url, i % 2 ? 500 : 0);
            step({ { u"kind"_s, u"type"_s }, { u"selector"_s, u"#f%1"_s.arg(i) }, { u"text"_s, forms().at(i % 11) } });
        }
        page->say(u"Page.frameNavigated"_s,
            { { u"frame"_s, QJsonObject { { u"url"_s, u"http://x.example/?token="_s + secret(plain) } } } });
        page->receive(QJsonDocument(
            QJsonObject { { u"id"_s, 1697 },
                { u"result"_s,
                    QJsonObject { { u"result"_s, QJsonObject { { u"value"_s, u"Mail of "_s + typed } } } } } })
                .toJson());
        view->setAddress(u"https://ana:"_s + secret(plain) + u"@x.example"_s);
        round % 2 ? view->capture() : view->reportBug();
        view->sheet()->setNote(u"I typed "_s + typed + u" and "_s + forms().join(u' '));
        view->sheet()->setTitle(u"It fails with "_s + forms().at(round % 11));
        view->sheet()->setOwner(u"token="_s + secret(plain));
        ASSERT_TRUE(submit()) << qPrintable(view->sheet()->refusal());
    }
    EXPECT_GE(planted, 10'000);
    m_db->exec(u"PRAGMA wal_checkpoint(TRUNCATE);"_s);
    const QByteArray written = everythingWritten();
    EXPECT_GT(written.count("x.example"), rounds);
    const qsizetype leak = written.indexOf(marker.toUtf8());
    EXPECT_LT(leak, 0) << written.mid(std::max<qsizetype>(0, leak - 100), 200).toStdString();
    EXPECT_EQ(cell(u"SELECT COUNT(*) FROM work_item WHERE kind='bug';"_s), u"10"_s);
}

TEST_F(PlayedBrowser, aBugIsFiledWithoutItsEvidenceWhereTheDiskTakesNone)
{
    page->logError(u"it broke"_s);
    view->reportBug();
    view->sheet()->setTitle(u"Broken"_s);
    view->sheet()->setNote(u"why"_s);
    QDir().mkpath(view->browser()->evidenceRoot());
    QFile blocker(evidenceFolder(view->browser()->evidenceRoot(), u"shop"_s));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly)); // blocks the folder's path
    EXPECT_TRUE(submit());
    EXPECT_EQ(table(u"SELECT kind, status, priority, owner, source, summary FROM work_item;"_s),
        QStringList { u"bug|open|high|unassigned|browser-manual|Manual Browser bug report.\nURL: about:blank\n"
                      "Console warnings/errors: 1\nNetwork failures/errors: 0\n\nwhy"_s });
    EXPECT_EQ(cell(u"SELECT uri FROM work_evidence;"_s), QString());
    EXPECT_TRUE(cell(u"SELECT summary FROM work_evidence;"_s).contains("could not be saved"_L1));
    EXPECT_TRUE(view->notice().contains("without its evidence"_L1)) << qPrintable(view->notice());
}

TEST_F(PlayedBrowser, aSessionKeepsItsLastPictureAndFoldersKeepApart)
{
    const QString root = view->browser()->evidenceRoot();
    page->logError(u"x"_s);
    view->capture();
    ASSERT_TRUE(submit());
    const QString folder = cell(u"SELECT last_capture_path FROM dev_browser_session;"_s);
    EXPECT_TRUE(folder.startsWith(root + u"/shop/manual-"_s)) << qPrintable(folder);
    EXPECT_TRUE(m_home.read(QDir(m_home.path({})).relativeFilePath(folder + u"/evidence.json"_s))
            .contains("\"screenshotPath\": \"\""));
    saveBrowserSession(
        *m_db, cell(u"SELECT id FROM dev_browser_session;"_s), view->project(), u"http://x"_s, u"live"_s, {}, {});
    EXPECT_EQ(table(u"SELECT title, engine, status, last_capture_path FROM dev_browser_session;"_s),
        QStringList { u"Browser http://x|playwright-chrome|live|"_s + folder });
    view->capture();
    ASSERT_TRUE(submit());
    EXPECT_EQ(QDir(root + u"/shop"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 2);

    for (const QString& slug : { u"../../etc"_s, u".."_s, u""_s, u"a/b"_s, QString(500, u'ä') }) {
        const QString path = evidenceFolder(root, slug);
        EXPECT_EQ(QDir::cleanPath(path).sliced(root.size() + 1).count(u'/'), 0) << qPrintable(slug);
        EXPECT_TRUE(QDir::cleanPath(path).startsWith(root + u'/'));
        EXPECT_TRUE(QDir().mkpath(path)) << qPrintable(slug);
    }
}

TEST(Browser, aMessageThatIsTooLargeEndsTheConversationAndNothingElse)
{
    QWebSocketServer server(u"x"_s, QWebSocketServer::NonSecureMode);
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    QString problem = u"not asked"_s;
    QStringList ends;
    WebSocketConnection connection(
        QUrl(u"ws://127.0.0.1:%1"_s.arg(server.serverPort())), [&](const QString& reason) { problem = reason; },
        nullptr);
    QObject::connect(&connection, &DevToolsConnection::closed, [&](const QString& reason) { ends.append(reason); });
    ASSERT_TRUE(await([&] { return server.hasPendingConnections() && problem.isEmpty(); }));
    const std::unique_ptr<QWebSocket> other(server.nextPendingConnection());
    EXPECT_TRUE(other->request().rawHeader("Origin").isEmpty()) << "a browser answers 403 to one";
    bool answered = false;
    connection.call(u"Browser.getVersion"_s, {}, [&](const Result<QJsonObject>& result) { answered = !result; });
    other->sendTextMessage(QString(int(DevToolsConnection::longestMessage) + 1, u'x'));
    ASSERT_TRUE(await([&] { return ends.size() == 1; }));
    EXPECT_TRUE(answered);
}

}
