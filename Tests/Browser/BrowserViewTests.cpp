#include "PlayedBrowser.h"
#include "Support/Rows.h"

namespace corvane {

using Step = BrowserStep;
using Purpose = BrowserReportSheet::Purpose;

TEST_F(PlayedBrowser, everyProblemIsListedWithItsKindAndItsPlace)
{
    BrowserIssues& issues = *view->issues();
    EXPECT_TRUE(issues.emptyText().startsWith("No browser warnings"_L1));
    const auto say = [&](const QString& method, const QJsonObject& parameters) {
        m_clock.advance(Milliseconds(1)); // the newest is first
        page->say(method, parameters);
    };
    const QJsonArray words { QJsonObject { { u"value"_s, u"slow"_s } },
        QJsonObject { { u"value"_s, QJsonObject { { u"a"_s, 1 } } }, { u"description"_s, u"Object"_s } } };
    const QJsonArray frames { QJsonObject { { u"url"_s, u"http://x/a.js"_s }, { u"lineNumber"_s, 4 } } };
    for (const QString& type : { u"warning"_s, u"assert"_s, u"log"_s })
        say(u"Runtime.consoleAPICalled"_s,
            { { u"type"_s, type }, { u"args"_s, words },
                { u"stackTrace"_s, QJsonObject { { u"callFrames"_s, frames } } } });
    QJsonObject thrown { { u"text"_s, u"Uncaught"_s }, { u"url"_s, u"http://x/b.js"_s } };
    say(u"Runtime.exceptionThrown"_s, { { u"exceptionDetails"_s, thrown } });
    thrown[u"exception"_s] = QJsonObject { { u"description"_s, u"Error: it broke"_s } };
    say(u"Runtime.exceptionThrown"_s, { { u"exceptionDetails"_s, thrown } });
    for (const QString& level : { u"warning"_s, u"error"_s, u"info"_s })
        say(u"Log.entryAdded"_s,
            { { u"entry"_s, QJsonObject { { u"level"_s, level }, { u"text"_s, u"mixed content"_s } } } });
    m_clock.advance(Milliseconds(1));
    request(1, u"http://x/gone"_s, 410);
    m_clock.advance(Milliseconds(1));
    request(2, u"http://x/dead"_s, 0);
    m_clock.advance(Milliseconds(50));

    QStringList lines;
    for (const QString& role : { u"kind"_s, u"isError"_s, u"text"_s, u"place"_s })
        lines.append(column(*issues.rows(), role.toLatin1()).join(u'|'));
    EXPECT_EQ(lines,
        (QStringList { u"Failed request|HTTP 410|Console error|Console warning|Console error|Console error|Failed "
                       "assertion|Console warning"_s,
            u"true|true|true|false|true|true|true|false"_s,
            u"request failed|HTTP 410 Gone|mixed content|mixed content|Error: it broke|Uncaught|slow Object|slow "
            "Object"_s,
            u"http://x/dead|http://x/gone|||http://x/b.js|http://x/b.js|http://x/a.js:5|http://x/a.js:5"_s }));
    EXPECT_EQ(issues.text() + issues.emptyText(), u"8 issues"_s);
    view->reportBug();
    const QStringList preview = view->sheet()->preview().split(u'\n');
    EXPECT_EQ(preview.size(), 7) << "the counts and the six newest";
    EXPECT_EQ(preview.first(3),
        (QStringList { u"6 console problems, 2 failed requests"_s, u"Failed request: request failed (http://x/dead)"_s,
            u"HTTP 410: HTTP 410 Gone (http://x/gone)"_s }));

    page->logError(QString(8001, u'x'));
    EXPECT_EQ(view->browser()->page().events().console().last().text, QString(8000, u'x') + u"…"_s);
    EXPECT_EQ(maskedConsole(view->browser()->page()).last().text, QString(4000, u'x') + u"…"_s);
    page->logError(QString(4000, u'x'));
    EXPECT_EQ(maskedConsole(view->browser()->page()).last().text, QString(4000, u'x'));
}

TEST_F(PlayedBrowser, anAddressIsOpenedOnceThePageReportsAndWhatFailsIsSaid)
{
    ChromiumBrowserController& browser = *view->browser();
    view->open();
    EXPECT_EQ(view->notice(), u"Type the address of a page first."_s);
    view->setAddress(u"shop.example"_s);
    view->open();
    EXPECT_EQ(view->notice(), QString());
    EXPECT_FALSE(page->methods().contains(u"Page.navigate"_s)) << "nothing would be heard of that page";
    answer(u"Page.addScriptToEvaluateOnNewDocument"_s, {});
    EXPECT_EQ(lastOf(u"Page.navigate"_s)["url"_L1].toString(), u"https://shop.example"_s);
    answer(u"Page.navigate"_s, { { u"loaderId"_s, u"1"_s }, { u"errorText"_s, u"net::ERR_ABORTED"_s } });
    EXPECT_EQ(view->notice(), QString());
    EXPECT_EQ(view->emptyTitle(), u"Waiting for the page"_s);
    page->say(u"Page.loadEventFired"_s, {});
    EXPECT_FALSE(browser.page().hasLoaded()) << "that is the previous page";

    page->say(u"Page.frameStartedLoading"_s, {});
    m_clock.advance(Milliseconds(50));
    EXPECT_EQ(view->statusText(), u"loading"_s);
    EXPECT_DOUBLE_EQ(browser.progress(), 0.1);
    request(1, u"http://x/1"_s, 200);
    page->say(u"Network.loadingFinished"_s, {});
    EXPECT_DOUBLE_EQ(browser.progress(), 0.55);
    showPage(u"https://shop.example/"_s);
    page->say(u"Page.frameStoppedLoading"_s, { { u"frameId"_s, u"an advertisement"_s } });
    EXPECT_TRUE(browser.isLoading());
    page->say(u"Page.frameStoppedLoading"_s, { { u"frameId"_s, u"main"_s } });
    EXPECT_FALSE(browser.isLoading());
    EXPECT_EQ(browser.progress(), 1);
    EXPECT_EQ(view->statusText(), u"loaded"_s);
    EXPECT_EQ(view->address(), u"https://shop.example/"_s);
    EXPECT_EQ(
        table(u"SELECT url, status FROM dev_browser_session;"_s), QStringList { u"https://shop.example/|live"_s });

    view->setAddress(u"https://shop.example/#cart"_s);
    view->open();
    answer(u"Page.navigate"_s, {});
    EXPECT_TRUE(browser.page().hasLoaded()) << "another place in the same document";
    view->setAddress(u"https://nowhere.example"_s);
    view->open();
    answer(u"Page.navigate"_s, { { u"loaderId"_s, u"2"_s }, { u"errorText"_s, u"net::ERR_NAME_NOT_RESOLVED"_s } });
    EXPECT_EQ(view->notice(), u"The page could not be opened: net::ERR_NAME_NOT_RESOLVED."_s);
    browser.stop();
    EXPECT_EQ(page->sent.last()["method"_L1].toString(), u"Page.stopLoading"_s);
}

TEST_F(PlayedBrowser, theHistoryOfThePageIsWalkedFromWhereThePageIs)
{
    ChromiumBrowserController& browser = *view->browser();
    const auto entry = [](int id, const QString& url) {
        return QJsonObject { { u"id"_s, id }, { u"url"_s, url } };
    };
    const QJsonArray entries { entry(11, u"http://x/1"_s), entry(12, u"http://x/2"_s), entry(13, u"http://x/3"_s) };
    showPage(u"http://x/2"_s);
    const auto looks = [&] {
        return page->methods().count(u"Page.getNavigationHistory"_s);
    };
    answer(u"Page.getNavigationHistory"_s, { { u"entries"_s, entries }, { u"currentIndex"_s, 0 } });
    const auto before = looks();
    m_clock.advance(Milliseconds(100));
    EXPECT_EQ(looks(), before + 1) << "the list lags behind the page";
    answer(u"Page.getNavigationHistory"_s, { { u"entries"_s, entries }, { u"currentIndex"_s, 1 } });
    EXPECT_TRUE(browser.canGoBack() && browser.canGoForward());
    browser.back();
    answer(u"Page.getNavigationHistory"_s, { { u"entries"_s, entries }, { u"currentIndex"_s, 1 } });
    EXPECT_EQ(lastOf(u"Page.navigateToHistoryEntry"_s)["entryId"_L1].toInt(), 11);
    showPage(u"http://x/1"_s);
    answer(u"Page.getNavigationHistory"_s, { { u"entries"_s, entries }, { u"currentIndex"_s, 0 } });
    EXPECT_TRUE(!browser.canGoBack() && browser.canGoForward());
    EXPECT_EQ(page->methods().count(u"Page.navigateToHistoryEntry"_s), 1);

    page->say(u"Page.navigatedWithinDocument"_s, { { u"frameId"_s, u"other"_s }, { u"url"_s, u"http://y/"_s } });
    EXPECT_EQ(browser.currentURL(), u"http://x/1"_s);
    page->say(u"Page.navigatedWithinDocument"_s, { { u"frameId"_s, u"main"_s }, { u"url"_s, u"http://x/1#a"_s } });
    EXPECT_EQ(browser.currentURL(), u"http://x/1#a"_s);
}

TEST_F(PlayedBrowser, whatThePageMayNotDoIsCountedUntilTheNoticeIsDismissed)
{
    page->say(u"Page.javascriptDialogOpening"_s, { { u"type"_s, u"alert"_s } });
    EXPECT_FALSE(lastOf(u"Page.handleJavaScriptDialog"_s)["accept"_L1].toBool());
    page->say(u"Page.javascriptDialogOpening"_s, { { u"type"_s, u"beforeunload"_s } });
    EXPECT_TRUE(lastOf(u"Page.handleJavaScriptDialog"_s)["accept"_L1].toBool()) << "it would block the page";
    page->say(u"Browser.downloadWillBegin"_s, {});
    page->say(u"Page.windowOpen"_s, { { u"url"_s, u"http://x/?token=abc"_s } });
    EXPECT_EQ(view->notice(),
        u"2 dialogs of the page dismissed. 1 download refused. The page opened another window, which is not shown: "
        "http://x/?token=[redacted]"_s);
    view->dismissNotice();
    EXPECT_EQ(view->notice(), QString());
    view->find({}, false);
    EXPECT_FALSE(lastOf(u"Runtime.evaluate"_s)["expression"_L1].toString().contains("window.find"_L1));
    view->find(u"boots"_s, true);
    EXPECT_TRUE(lastOf(u"Runtime.evaluate"_s)["expression"_L1].toString().endsWith("(...[\"boots\",true])"_L1));
    answerScript(0);
    EXPECT_EQ(view->notice(), u"“boots” is not on this page."_s);
}

TEST_F(PlayedBrowser, aSheetSaysWhyItRefusesAndFilesWhatItShows)
{
    BrowserReportSheet& sheet = *view->sheet();
    view->reportBug();
    EXPECT_EQ(view->notice(), u"There is nothing to keep yet: open a page first."_s);
    EXPECT_EQ(sheet.purpose(), Purpose::Closed);
    showPage(u"http://x/"_s);
    view->browser()->page().setTitle(u"A\nshop"_s);
    page->logError(u"it broke"_s);
    page->showFrame(PlayedConnection::jpeg({ 40, 20 }), 1);
    ASSERT_TRUE(await([&] { return view->browser()->surface()->hasFrame(); }));
    view->capture();
    EXPECT_EQ(sheet.heading() + u", "_s + sheet.submitLabel(), u"Save evidence, Save"_s);
    sheet.close();
    view->reportBug();
    EXPECT_EQ(sheet.heading() + u", "_s + sheet.submitLabel(), u"Report a bug, File the bug"_s);
    EXPECT_EQ(sheet.title(), u"Browser issue: A shop"_s);
    EXPECT_EQ(sheet.severity(), u"High"_s);
    sheet.setTitle(u" "_s);
    sheet.submit();
    EXPECT_EQ(sheet.refusal(), u"Title is required."_s);
    sheet.setTitle(u"It broke"_s);
    EXPECT_EQ(sheet.refusal(), QString());
    sheet.setSeverity(u"Low"_s);
    sheet.setSeverity(u"Whatever"_s);
    sheet.setOwner(u"Codex"_s);
    sheet.setNote(u"seen twice"_s);

    BrowserBlackout& picture = *sheet.picture();
    picture.blackOut({ 0.75, 1.5, -0.75, -1 }); // drawn from its lower right corner, which is outside
    picture.blackOut({ 0.9, 0, 0.1, 1 });
    picture.undo();
    EXPECT_EQ(picture.picture().pixelColor(1, 11), QColor(Qt::black));
    EXPECT_EQ(picture.picture().pixelColor(1, 8), QColor(Qt::white));
    EXPECT_EQ(picture.picture().pixelColor(38, 11), QColor(Qt::white));

    sheet.submit();
    EXPECT_TRUE(sheet.busy());
    EXPECT_EQ(sheet.submitLabel(), u"Saving…"_s);
    picture.blackOut({ 0, 0, 1, 1 });
    picture.undo();
    sheet.close();
    view->capture();
    EXPECT_TRUE(sheet.isBug()) << "what is being written stays as it is";
    answerScript(QJsonObject { { u"title"_s, u"A shop"_s }, { u"passwords"_s, QJsonArray { u"broke"_s } } });
    int wrote = 0;
    QString shown;
    QObject::connect(view.get(), &BrowserView::wrote, [&] { ++wrote; });
    QObject::connect(view.get(), &BrowserView::itemRequested, [&](const QString& id) { shown = id; });
    ASSERT_TRUE(await([&] { return !sheet.busy(); }));
    EXPECT_EQ(sheet.purpose(), Purpose::Closed);
    EXPECT_EQ(wrote, 1);
    EXPECT_EQ(table(u"SELECT title, priority, owner FROM work_item;"_s), QStringList { u"It [redacted]|low|Codex"_s });
    EXPECT_EQ(sheet.note(), QString());
    EXPECT_EQ(view->notice(), u"The bug “It [redacted]” was filed."_s);
    EXPECT_EQ(view->noticeAction(), u"Show the bug"_s);
    view->actOnNotice();
    EXPECT_EQ(shown, cell(u"SELECT id FROM work_item;"_s));
    const QImage kept(cell(u"SELECT last_capture_path FROM dev_browser_session;"_s));
    ASSERT_EQ(kept.size(), QSize(40, 20));
    EXPECT_EQ(kept.pixelColor(1, 11), QColor(Qt::black));
    EXPECT_EQ(kept.pixelColor(38, 11), QColor(Qt::white));

    view->reportBug();
    picture.blackOut({ 0.9, 0, 0.1, 1 });
    picture.undo();
    EXPECT_EQ(picture.picture().pixelColor(1, 11), QColor(Qt::white)) << "what was covered before is another picture";
    sheet.setNote(u"not lost"_s);
    m_db->exec(u"DROP TABLE work_item;"_s);
    ASSERT_TRUE(submit());
    EXPECT_TRUE(sheet.refusal().startsWith("The bug was not filed"_L1)) << qPrintable(sheet.refusal());
    EXPECT_EQ(sheet.note(), u"not lost"_s);
    view->setProject({ u"pj:other"_s, u"other"_s, u"Other"_s });
    EXPECT_EQ(sheet.purpose(), Purpose::Closed) << "it was for another project";
    view->setProject({});
    for (const auto act : { &BrowserView::reportBug, &BrowserView::scan }) {
        view->dismissNotice();
        (view.get()->*act)();
        EXPECT_EQ(view->notice(), u"No project selected"_s);
    }
}

TEST_F(PlayedBrowser, anEarlierSessionOpensItsPageItsFolderAndPlaysItsSteps)
{
    BrowserHistory& history = *view->history();
    const QString root = view->browser()->evidenceRoot();
    history.openFolder();
    EXPECT_EQ(desktop.openedFiles, QStringList { root });
    page->logError(u"x"_s);
    showPage(u"http://x/1"_s);
    view->capture();
    ASSERT_TRUE(submit());
    EXPECT_EQ(view->notice(), u"The evidence was saved."_s);
    const QString first = cell(u"SELECT id FROM dev_browser_session;"_s);
    const QString folder = cell(u"SELECT last_capture_path FROM dev_browser_session;"_s);
    m_clock.advance(seconds(60));
    showPage(u"http://x/2"_s);
    EXPECT_EQ(column(*history.rows(), "title"), (QStringList { u"http://x/2"_s, u"http://x/1"_s }))
        << "saved evidence ends its session";
    EXPECT_EQ(column(*history.rows(), "hasEvidence"), (QStringList { u"false"_s, u"true"_s }));
    EXPECT_TRUE(column(*history.rows(), "facts").first().startsWith("looked at, "_L1));
    EXPECT_TRUE(column(*history.rows(), "facts").last().startsWith("evidence saved, "_L1));

    history.openFolder(); // the latest has none
    history.openFolder(first);
    EXPECT_EQ(desktop.openedFiles.sliced(1), (QStringList { folder, folder }));
    EXPECT_TRUE(history.openReport(folder + u"/evidence.json"_s));
    EXPECT_EQ(desktop.openedFiles.last(), folder + u"/report.html"_s);
    desktop.opens = false;
    EXPECT_FALSE(history.openReport(folder));
    history.openFolder();
    EXPECT_EQ(view->notice(), u"The folder could not be opened: "_s + folder);
    history.open(first);
    EXPECT_EQ(view->address(), u"http://x/1"_s);
    EXPECT_EQ(view->browser()->page().steps().steps().last().text, u"http://x/1"_s);

    history.play(first);
    EXPECT_EQ(view->notice(), u"No steps were recorded with it."_s);
    const QString outside = m_home.path(u"elsewhere"_s);
    BrowserEvidencePayload planted;
    planted.steps = { { .kind = Step::Kind::Open, .text = u"http://x/planted"_s } };
    const auto written = writeEvidence(outside, u"shop"_s, planted, {});
    ASSERT_TRUE(written);
    for (const QString& path : { QString(), written->folder, written->file(), root, root + u"/../elsewhere"_s }) {
        EXPECT_FALSE(history.openReport(path)) << qPrintable(path);
        EXPECT_FALSE(history.playSteps(path)) << qPrintable(path);
    }
    QFile::remove(folder + u"/evidence.json"_s);
    history.play(first);
    EXPECT_EQ(view->notice(), u"The evidence is not there any more: "_s + folder + u"/evidence.json"_s);
    EXPECT_FALSE(lastOf(u"Page.navigate"_s)["url"_L1].toString().contains("planted"_L1));
    view->scan();
    EXPECT_EQ(
        shells, QStringList { u"Browser scan: "_s + browserScanCommand(u"shop"_s, view->browser()->currentURL()) });
}

TEST_F(PlayedBrowser, playingStopsAtTheStepThatFailsAndSaysWhich)
{
    const auto play = [&](const QList<Step>& steps) {
        Q_EMIT view->history()->playRequested(steps);
    };
    const Step secret { .kind = Step::Kind::Type, .selector = u"#pw"_s, .label = u"Password"_s, .isWithheld = true };
    play({ secret, { Step::Kind::Choose, u"#size"_s, u"Size"_s, u"42"_s },
        { Step::Kind::Press, u"#q"_s, u"Search"_s, u"Enter"_s } });
    EXPECT_EQ(view->notice(), u"Step 2 of 3: Choose “42” in “Size”"_s);
    EXPECT_TRUE(lastOf(u"Runtime.evaluate"_s)["expression"_L1].toString().endsWith("(...[\"#size\",\"42\"])"_L1));
    answerScript(true);
    answerScript({}); // drawn
    answerScript(true);
    EXPECT_EQ(page->methods().count(u"Input.dispatchKeyEvent"_s), 2);
    EXPECT_EQ(lastOf(u"Input.dispatchKeyEvent"_s)["type"_L1].toString(), u"keyUp"_s);
    answer(u"Input.dispatchKeyEvent"_s, {});
    answerScript({});
    EXPECT_EQ(view->notice(), u"Played 2 steps. 1 step was left out: what was typed is not kept."_s);
    EXPECT_EQ(view->noticeAction(), QString());

    play({ { Step::Kind::Click, u"#gone"_s, {} }, { Step::Kind::Click, u"#never"_s, {} } });
    for (int looks = 1; looks <= 50; ++looks) {
        EXPECT_EQ(view->noticeAction(), u"Stop"_s) << looks;
        answerScript(QJsonValue::Null);
        m_clock.advance(Milliseconds(100));
    }
    EXPECT_EQ(view->notice(), u"Stopped at step 1: #gone is not on the page."_s);
    EXPECT_FALSE(page->methods().contains(u"Input.dispatchMouseEvent"_s));

    play({ { .kind = Step::Kind::Open, .text = u"http://x/2"_s } });
    answer(u"Page.addScriptToEvaluateOnNewDocument"_s, {});
    EXPECT_EQ(lastOf(u"Page.navigate"_s)["url"_L1].toString(), u"http://x/2"_s);
    m_clock.advance(Milliseconds(100));
    page->fail({});
    m_clock.advance(Milliseconds(100));
    EXPECT_EQ(view->notice(), u"Stopped at step 1: http://x/2 did not open."_s);
}

TEST_F(PlayedBrowser, aPageThatCrashesOrABrowserThatHangsIsSaidAndItsEndToo)
{
    showPage(u"http://x/"_s);
    page->say(u"Inspector.targetCrashed"_s, {});
    EXPECT_EQ(view->problem(), u"The page crashed. Reload it to go on."_s);
    EXPECT_EQ(view->problemAction(), u"Reload"_s);
    view->solveProblem();
    EXPECT_EQ(page->sent.last()["method"_L1].toString(), u"Page.reload"_s);
    EXPECT_EQ(view->problem() + view->problemAction(), QString());

    m_clock.advance(seconds(5));
    answer(u"Browser.getVersion"_s, { { u"product"_s, u"Chromium/130"_s } });
    m_clock.advance(seconds(5));
    EXPECT_EQ(view->problem(), QString());
    m_clock.advance(seconds(5));
    EXPECT_EQ(view->problem(), u"The browser does not answer."_s);
    EXPECT_EQ(view->problemAction(), u"Start it again"_s);
    answer(u"Browser.getVersion"_s, {});
    EXPECT_EQ(view->problem(), QString()) << "it answers again";
    EXPECT_FALSE(view->browser()->isHanging());

    page->fail(u"Broken pipe."_s);
    EXPECT_EQ(view->problem(), u"Broken pipe."_s);
    EXPECT_EQ(view->problemAction(), u"Try again"_s);
    EXPECT_EQ(view->emptyTitle(), u"No page is open"_s);
    EXPECT_EQ(view->emptyAction(), QString()) << "the problem has the action";
    view->browser()->options().executable = u"/nowhere/chromium"_s;
    view->browser()->page().open(u"http://x/another"_s);
    view->browser()->restart();
    EXPECT_EQ(view->browser()->page().steps().steps().first().text, u"http://x/"_s) << "the page that was shown";
}

TEST_F(PlayedBrowser, theSizeOfThePageFollowsTheDeviceAndTheZoom)
{
    BrowserDisplay& display = *view->display();
    const auto metrics = [&](const char* name) {
        return lastOf(u"Emulation.setDeviceMetricsOverride"_s).value(QLatin1StringView(name));
    };
    display.setDevice(u"phone"_s);
    EXPECT_EQ(metrics("width").toInt(), 390);
    EXPECT_TRUE(metrics("mobile").toBool());
    display.setDevice(u"laptop"_s);
    EXPECT_FALSE(metrics("mobile").toBool());
    display.zoom(1);
    EXPECT_EQ(display.zoomText(), u"120 %"_s);
    EXPECT_DOUBLE_EQ(metrics("deviceScaleFactor").toDouble(), 1.2);
    EXPECT_EQ(metrics("width").toInt(), 853);
    EXPECT_EQ(metrics("height").toInt(), 640);
    for (const auto& [steps, text] :
        { std::pair(100, u"249 %"_s), std::pair(-100, u"40 %"_s), std::pair(0, u"100 %"_s) }) {
        display.zoom(steps);
        EXPECT_EQ(display.zoomText(), text);
    }
    display.setWindowShown(true);
    EXPECT_EQ(view->notice(), u"This counts when the browser starts the next time."_s);
    const auto next = makeView();
    EXPECT_TRUE(next->display()->windowShown()) << "it is kept";
    next->display()->setWindowShown(false);
    EXPECT_EQ(next->notice(), QString()) << "no browser runs";
}

TEST_F(PlayedBrowser, aListOffersWhatIsEnabledAndAFieldItsPicker)
{
    BrowserPicker& picker = *view->picker();
    const auto ask = [&](QJsonObject report) {
        page->say(u"Runtime.bindingCalled"_s,
            { { u"name"_s, u"corvaneStep"_s }, { u"executionContextId"_s, 7 },
                { u"payload"_s, QString::fromUtf8(QJsonDocument(report).toJson()) } });
    };
    ask({ { u"kind"_s, u"list"_s }, { u"choices"_s, QJsonArray { u"red"_s, QJsonValue::Null, u"green"_s } },
        { u"chosen"_s, 2 }, { u"x"_s, 0.25 }, { u"y"_s, 0.5 } });
    ASSERT_EQ(picker.choices().size(), 2);
    EXPECT_EQ(picker.choices().last().label + picker.chosen(), u"green2"_s);
    EXPECT_EQ(picker.place(), QPointF(0.25, 0.5));
    picker.choose(picker.choices().last().id);
    EXPECT_EQ(lastOf(u"Runtime.evaluate"_s)["expression"_L1].toString(), u"corvaneChoose(...[2])"_s);
    EXPECT_EQ(lastOf(u"Runtime.evaluate"_s)["contextId"_L1].toInt(), 7);

    BrowserFieldPicker& field = *picker.field();
    ask({ { u"kind"_s, u"field"_s }, { u"type"_s, u"file"_s } });
    EXPECT_FALSE(field.isOpen());
    ask({ { u"kind"_s, u"field"_s }, { u"type"_s, u"datetime-local"_s }, { u"value"_s, u"2026-11-22T09:30"_s } });
    EXPECT_TRUE(field.isOpen() && field.canClear());
    EXPECT_EQ(field.options().first().value, u"2026-10-26T09:30"_s) << "the time stays";
    EXPECT_TRUE(field.options().first().isAside);
    field.choose(u"2026-11-23T09:30"_s);
    EXPECT_TRUE(field.isOpen()) << "its time may be typed yet";
    EXPECT_EQ(field.text(), u"2026-11-23T09:30"_s);
    field.accept();
    EXPECT_EQ(lastOf(u"Runtime.evaluate"_s)["expression"_L1].toString(), u"corvaneChoose(...[\"2026-11-23T09:30\"])"_s);
    ask({ { u"kind"_s, u"field"_s }, { u"type"_s, u"month"_s }, { u"value"_s, u"2026-11"_s },
        { u"max"_s, u"2026-11"_s } });
    EXPECT_EQ(field.heading(), u"2026"_s);
    EXPECT_TRUE(field.options().at(10).isChosen && field.options().at(10).isOffered);
    EXPECT_FALSE(field.options().at(11).isOffered);
    field.setText(u"2026-12"_s);
    field.accept();
    EXPECT_EQ(field.refusal(), u"The page takes nothing after 2026-11."_s);
    field.turn(1);
    EXPECT_EQ(field.heading() + field.refusal(), u"2027"_s);
    field.clear();
    EXPECT_FALSE(field.isOpen());
    EXPECT_EQ(lastOf(u"Runtime.evaluate"_s)["expression"_L1].toString(), u"corvaneChoose(...[\"\"])"_s);
    ask({ { u"kind"_s, u"field"_s }, { u"type"_s, u"time"_s }, { u"min"_s, u"9:00"_s } });
    EXPECT_EQ(field.options().size(), 48);
    EXPECT_EQ(field.heading(), QString());
    EXPECT_FALSE(field.options().at(17).isOffered);
    EXPECT_EQ(field.options().at(18).value, u"09:00"_s);
    EXPECT_TRUE(field.options().at(18).isOffered);
    ask({ { u"kind"_s, u"field"_s }, { u"type"_s, u"week"_s }, { u"value"_s, u"2026-W48"_s } });
    EXPECT_EQ(std::ranges::count(field.options(), true, &BrowserFieldOption::isChosen), 7);
    ask({ { u"kind"_s, u"field"_s }, { u"type"_s, u"color"_s } });
    EXPECT_EQ(field.options().first().color, u"#ffffff"_s);
    EXPECT_FALSE(field.canClear()) << "a colour is always one";
}

}
