#include "PlayedBrowser.h"
#include "Support/Rows.h"

#include <QSignalSpy>

namespace corvane {

using Step = BrowserStep;

TEST_F(PlayedBrowser, anotherConnectionOpensThePageThatWasWantedAndTheFormerIsNotHeard)
{
    ChromiumBrowserController& browser = *view->browser();
    view->setAddress(u"shop.example"_s);
    view->open();
    page->say(u"Page.frameStartedLoading"_s, {});
    EXPECT_TRUE(browser.isLoading() && browser.page().isLeaving());
    auto* const next = new PlayedConnection;
    const QPointer<PlayedConnection> former(page);
    browser.adopt(next);
    EXPECT_FALSE(browser.isLoading() || browser.page().isLeaving());
    EXPECT_EQ(browser.status(), "connected");
    page->logError(u"of the former"_s);
    page->fail(u"gone"_s);
    EXPECT_TRUE(browser.isRunning());
    EXPECT_EQ(browser.lastError(), "");
    EXPECT_FALSE(browser.hasEvidence());
    ASSERT_TRUE(await([&] { return !former; })) << "it is closed";
    page = next;
    EXPECT_FALSE(page->methods().contains(u"Page.navigate"_s));
    answer(u"Page.addScriptToEvaluateOnNewDocument"_s, {});
    EXPECT_EQ(lastOf(u"Page.navigate"_s)["url"_L1].toString(), "https://shop.example");

    // What the page is asked for before it is looked at.
    EXPECT_EQ(lastOf(u"Page.startScreencast"_s),
        (QJsonObject { { u"format"_s, u"jpeg"_s }, { u"quality"_s, 72 }, { u"maxWidth"_s, 1280 },
            { u"maxHeight"_s, 800 }, { u"everyNthFrame"_s, 1 } }));
    EXPECT_TRUE(lastOf(u"Emulation.setFocusEmulationEnabled"_s)["enabled"_L1].toBool());
    EXPECT_TRUE(lastOf(u"Page.setInterceptFileChooserDialog"_s)["enabled"_L1].toBool());
    EXPECT_EQ(lastOf(u"Browser.setDownloadBehavior"_s)["behavior"_L1].toString(), "deny");
    EXPECT_TRUE(lastOf(u"Browser.setDownloadBehavior"_s)["eventsEnabled"_L1].toBool());
    EXPECT_TRUE(lastOf(u"Page.addScriptToEvaluateOnNewDocument"_s)["runImmediately"_L1].toBool());
    EXPECT_EQ(lastOf(u"Runtime.addBinding"_s)["executionContextName"_L1],
        lastOf(u"Page.addScriptToEvaluateOnNewDocument"_s)["worldName"_L1]);
    EXPECT_TRUE(page->methods().contains(u"Inspector.enable"_s));
    const auto width = [&](QSize size) {
        browser.page().setMetrics(size, 1, false);
        return lastOf(u"Emulation.setDeviceMetricsOverride"_s)["width"_L1].toInt();
    };
    EXPECT_EQ(width({ 10'000'000, 10'000'000 }), 10'000'000);
    EXPECT_EQ(width({ 10'000'001, 5 }), 1280) << "the browser takes no more";
    EXPECT_EQ(width({ 5, 10'000'001 }), 1280);
    EXPECT_EQ(width({ 0, 5 }), 1280);
}

TEST_F(PlayedBrowser, loadingIsCountedInTheMainFrameAndAnErrorPageKeepsItsAddress)
{
    ChromiumBrowserController& browser = *view->browser();
    const auto navigated = [&](QJsonObject frame) {
        frame[u"id"_s] = u"main"_s;
        page->say(u"Page.frameNavigated"_s, { { u"frame"_s, frame } });
    };
    request(1, u"http://x/early"_s, 200);
    EXPECT_EQ(browser.progress(), 1) << "nothing loads";
    navigated({ { u"url"_s, u"http://x/a"_s }, { u"urlFragment"_s, u"#b"_s } });
    EXPECT_EQ(browser.currentURL(), "http://x/a#b");
    page->say(u"Page.frameStartedLoading"_s, { { u"frameId"_s, u"advertisement"_s } });
    EXPECT_FALSE(browser.isLoading());
    page->say(u"Page.frameStartedLoading"_s, { { u"frameId"_s, u"main"_s } });
    EXPECT_TRUE(browser.isLoading() && browser.page().isLeaving());
    EXPECT_DOUBLE_EQ(browser.progress(), 0.1);
    for (int id = 1; id <= 3; ++id)
        request(id, u"http://x/1"_s, 200);
    EXPECT_DOUBLE_EQ(browser.progress(), 0.1);
    page->say(u"Network.loadingFinished"_s, {});
    EXPECT_DOUBLE_EQ(browser.progress(), 0.1 + 0.9 / 4);
    request(3, u"http://x/1"_s, 0);
    EXPECT_DOUBLE_EQ(browser.progress(), 0.1 + 0.9 * 2 / 5) << "it failed, and was asked for again";
    navigated({ { u"url"_s, u"chrome-error://x/"_s }, { u"unreachableUrl"_s, u"http://gone/"_s } });
    EXPECT_EQ(browser.currentURL(), "http://gone/");
    EXPECT_FALSE(browser.page().isLeaving());
    EXPECT_TRUE(browser.isLoading());
    page->say(u"Page.frameStartedLoading"_s, { { u"frameId"_s, u"main"_s } });
    EXPECT_DOUBLE_EQ(browser.progress(), 0.1) << "counted anew";

    // A page that is opened replaces the blank one first.
    answer(u"Page.addScriptToEvaluateOnNewDocument"_s, {});
    browser.open(u"http://x/2"_s);
    navigated({ { u"url"_s, u"about:blank"_s } });
    page->say(u"Page.loadEventFired"_s, {});
    EXPECT_FALSE(browser.page().hasLoaded());
    navigated({ { u"url"_s, u"http://x/2"_s } });
    EXPECT_FALSE(browser.page().hasLoaded());
    page->say(u"Page.loadEventFired"_s, {});
    EXPECT_TRUE(browser.page().hasLoaded());
    EXPECT_EQ(browser.status(), "loaded");
    browser.open(u"about:blank"_s);
    navigated({ { u"url"_s, u"about:blank"_s } });
    page->say(u"Page.loadEventFired"_s, {});
    EXPECT_TRUE(browser.page().hasLoaded()) << "where it is the wanted one";

    for (const QByteArray result : { R"({"id":1697,"result":{"result":{"value":7}}})",
             R"({"id":1697,"error":{"message":"no"}})", R"({"id":1697,"result":{"result":{"value":"Mine"}}})" }) {
        page->say(u"Page.loadEventFired"_s, {});
        page->receive(result);
    }
    EXPECT_EQ(browser.title(), "Mine");
    page->say(u"Page.loadEventFired"_s, {});
    page->receive(R"({"id":1697,"result":{"result":{"value":null}}})");
    EXPECT_EQ(browser.title(), "Mine") << "what is no text changes nothing";
}

TEST_F(PlayedBrowser, aHistoryThatStaysBehindIsLookedAtTwentyTimes)
{
    ChromiumBrowserController& browser = *view->browser();
    const auto looks = [&] {
        return page->methods().count(u"Page.getNavigationHistory"_s);
    };
    const QJsonObject history { { u"entries"_s,
                                    QJsonArray { QJsonObject { { u"id"_s, 1 }, { u"url"_s, u"http://x/old"_s } },
                                        QJsonObject { { u"id"_s, 2 }, { u"url"_s, u"http://x/new"_s } } } },
        { u"currentIndex"_s, 0 } };
    page->say(u"Page.frameNavigated"_s, { { u"frame"_s, QJsonObject { { u"url"_s, u"http://x/new"_s } } } });
    const auto first = looks();
    for (int n = 0; n < 30; ++n) {
        answer(u"Page.getNavigationHistory"_s, history);
        m_clock.advance(Milliseconds(99));
        EXPECT_EQ(looks(), first + std::min(n, 19));
        m_clock.advance(Milliseconds(1));
    }
    EXPECT_EQ(looks(), first + 19);
    EXPECT_FALSE(browser.canGoBack());
    EXPECT_TRUE(browser.canGoForward());
    QJsonObject now = history;
    now[u"currentIndex"_s] = 1;
    browser.forward();
    answer(u"Page.getNavigationHistory"_s, now);
    EXPECT_FALSE(page->methods().contains(u"Page.navigateToHistoryEntry"_s)) << "there is no page after it";
    browser.back();
    answer(u"Page.getNavigationHistory"_s, now);
    EXPECT_EQ(lastOf(u"Page.navigateToHistoryEntry"_s)["entryId"_L1].toInt(), 1);
    page->fail({});
    EXPECT_TRUE(await([&] { return !browser.canGoBack(); }));
}

TEST_F(PlayedBrowser, whatIsAskedOfABrowserThatEndedIsDroppedAndItsEvidenceKept)
{
    ChromiumBrowserController& browser = *view->browser();
    answer(u"Browser.getVersion"_s, { { u"product"_s, u"Chromium/130"_s } });
    page->logError(u"it broke"_s);
    QString selected = u"none"_s;
    const auto take = [&](const QString& text) {
        selected = text;
    };
    browser.surface()->takeSelection(false, take);
    EXPECT_TRUE(lastOf(u"Runtime.evaluate"_s)["expression"_L1].toString().endsWith("(false)"_L1));
    answerScript(u""_s);
    EXPECT_EQ(selected, "none") << "nothing is selected";
    browser.surface()->takeSelection(true, take);
    EXPECT_TRUE(lastOf(u"Runtime.evaluate"_s)["expression"_L1].toString().endsWith("(true)"_L1));
    answerScript(u"cut"_s);
    EXPECT_EQ(selected, "cut");
    page->fail(u"Broken pipe."_s);
    const auto sent = page->sent.size();
    browser.surface()->takeSelection(false, take);
    browser.surface()->key({ true, Qt::Key_Return });
    browser.surface()->insertText(u"x"_s);
    browser.page().find(u"x"_s, false);
    browser.back();
    browser.stop();
    view->picker()->choose(u"1"_s);
    EXPECT_EQ(page->sent.size(), sent);
    EXPECT_EQ(browser.lastError(), "Broken pipe.");
    m_clock.advance(seconds(20));
    EXPECT_FALSE(browser.isHanging()) << "it is not watched any more";

    std::optional<BrowserEvidencePayload> gathered;
    browser.gatherEvidence(
        u"http://x/?token=abc"_s, u"password: hunter22"_s, [&](const BrowserEvidencePayload& is) { gathered = is; });
    m_clock.runDue();
    ASSERT_TRUE(gathered);
    EXPECT_EQ(gathered->capturedAt, m_clock.nowMs());
    EXPECT_EQ((QStringList { gathered->title, gathered->url, gathered->requestedURL, gathered->note, gathered->status,
                  gathered->lastError, gathered->browser }),
        (QStringList { u"Chromium"_s, u"about:blank"_s, u"http://x/?token=[redacted]"_s, u"password=[redacted]"_s,
            u"disconnected"_s, u"Broken pipe."_s, u"Chromium/130"_s }));
    EXPECT_EQ(gathered->consoleEvents.size(), 1);
    EXPECT_EQ(view->emptyTitle() + '|' + view->emptyDetail().first(22), "No page is open|Type an address above.");
}

TEST_F(PlayedBrowser, evidenceWaitsForThePasswordsOfAPageButNotForOneThatHangs)
{
    ChromiumBrowserController& browser = *view->browser();
    QStringList titles;
    const auto done = [&](const BrowserEvidencePayload& payload) {
        titles.append(payload.title);
    };
    browser.gatherEvidence({}, {}, done);
    m_clock.advance(Milliseconds(2999));
    EXPECT_EQ(titles.size(), 0);
    answerScript(
        QJsonObject { { u"title"_s, u"My hunter9 shop"_s }, { u"passwords"_s, QJsonArray { u"hunter9"_s, u""_s } } });
    EXPECT_EQ(titles, QStringList("My [redacted] shop"));
    m_clock.advance(seconds(5));
    EXPECT_EQ(titles.size(), 1) << "once";
    browser.gatherEvidence({}, {}, done);
    m_clock.advance(Milliseconds(3000));
    EXPECT_EQ(titles.size(), 2);
    answerScript(QJsonObject { { u"title"_s, 7 } });
    EXPECT_EQ(titles.size(), 2);
    EXPECT_EQ(browser.title(), "My [redacted] shop") << "7 is no title";

    // Reloading clears what went wrong before.
    page->say(u"Inspector.targetCrashed"_s, {});
    EXPECT_NE(browser.lastError(), "");
    browser.reload();
    EXPECT_EQ(browser.lastError(), "");
    page->fail({});
    EXPECT_EQ(browser.lastError(), "The connection to the browser ended.");
    browser.options().executable = u"/nowhere/chromium"_s;
    browser.reload();
    EXPECT_EQ(browser.status(), "starting Chromium");
    EXPECT_TRUE(browser.isConnecting());
    EXPECT_EQ(view->emptyTitle() + '|' + view->emptyDetail() + '|' + view->problemAction() + '|' + view->emptyAction(),
        "Starting the browser|||");
    ASSERT_TRUE(await([&] { return browser.status() == u"failed"_s; }));
    EXPECT_FALSE(browser.isConnecting());
    EXPECT_EQ(view->problemAction(), "Try again");
}

TEST_F(PlayedBrowser, theViewSaysWhatCanBeDoneNext)
{
    const auto bare = makeView();
    EXPECT_EQ(bare->emptyTitle() + '|' + bare->emptyAction() + '|' + bare->addressHint(),
        "No page is open||Address of a page");
    EXPECT_EQ(bare->statusText(), "not started");
    const QSignalSpy changed(bare.get(), &BrowserView::changed);
    bare->setAddress(u"x.example"_s);
    bare->setAddress(u"x.example"_s);
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(bare->emptyAction(), "Open the page");
    bare->setAddress({});
    bare->browser()->options().homeURL = u"http://home"_s;
    EXPECT_EQ(bare->emptyAction() + '|' + bare->addressHint(), "Open the page|http://home");
    const auto before = changed.size();
    bare->setProject(bare->project());
    EXPECT_EQ(changed.size(), before);
    bare->actOnNotice();
    bare->scan();
    EXPECT_EQ(shells.size(), 1);

    EXPECT_EQ(view->emptyTitle() + '|' + view->emptyDetail() + '|' + view->emptyAction(), "Waiting for the page||");
    page->say(u"Page.fileChooserOpened"_s, {});
    page->say(u"Page.javascriptDialogOpening"_s, { { u"type"_s, u"alert"_s } });
    for (int n = 0; n < 2; ++n)
        page->say(u"Browser.downloadWillBegin"_s, {});
    EXPECT_EQ(view->notice(),
        "1 dialog of the page dismissed. 2 downloads refused. The page asked for a file; none is given from here.");
    view->dismissNotice();
    page->say(u"Page.windowOpen"_s, { { u"url"_s, u"http://x/"_s } });
    EXPECT_EQ(view->notice(), "The page opened another window, which is not shown: http://x/");
    view->find(u"boots"_s, false);
    answerScript(2);
    EXPECT_EQ(view->notice(), "2 matches on this page");
    view->find(u"x"_s, false);
    answerScript(u"no number"_s);
    EXPECT_EQ(view->notice(), "2 matches on this page");
    view->find(u"x"_s, false);
    answerScript(1);
    EXPECT_EQ(view->notice(), "1 match on this page");

    const QSignalSpy wrote(view.get(), &BrowserView::wrote);
    showPage(u"http://x/1"_s);
    showPage(u"http://x/1"_s);
    EXPECT_EQ(wrote.size(), 1) << "the same page";
    view->setProject({});
    showPage(u"http://x/2"_s);
    EXPECT_EQ(wrote.size(), 1);
    EXPECT_EQ(view->address(), "http://x/2");
    EXPECT_EQ(cell(u"SELECT COUNT(*) FROM dev_browser_session;"_s), "1");
}

TEST_F(PlayedBrowser, theSheetSaysWhatItKeepsAndWhyItCouldNot)
{
    BrowserReportSheet& sheet = *view->sheet();
    const QSignalSpy changed(&sheet, &BrowserReportSheet::changed);
    sheet.close();
    sheet.submit();
    page->logError(u"it broke"_s);
    m_clock.advance(Milliseconds(50));
    EXPECT_EQ(changed.size(), 0) << "it is closed";
    view->browser()->page().steps().opened(u"http://x"_s);
    step({ { u"kind"_s, u"click"_s }, { u"selector"_s, u"#go"_s } });
    view->capture();
    EXPECT_EQ(sheet.detail(), "Saves the URL, the screenshot, console errors, failed requests, and your note.");
    EXPECT_EQ(sheet.stepsText(), "Open http://x\nClick #go");
    EXPECT_FALSE(sheet.ownerHint().isEmpty());
    const auto open = changed.size();
    page->logError(u"again"_s);
    m_clock.advance(Milliseconds(50));
    EXPECT_EQ(changed.size(), open + 1);
    sheet.setNote(u"n"_s);
    sheet.setNote(u"n"_s);
    EXPECT_EQ(changed.size(), open + 2);
    view->reportBug();
    EXPECT_TRUE(sheet.detail().startsWith("Creates a project task"_L1));
    sheet.open(BrowserReportSheet::Purpose::Bug, {}, u"s"_s, {});
    sheet.submit();
    EXPECT_EQ(sheet.refusal(), "No project selected");
    EXPECT_FALSE(sheet.busy());
    view->capture();
    EXPECT_EQ(sheet.refusal(), "");
    view->browser()->page().setTitle(QString(200, u'x'));
    view->reportBug();
    EXPECT_EQ(sheet.title().size(), 160);

    view->capture();
    m_db->exec(u"DROP TABLE dev_browser_session;"_s);
    ASSERT_TRUE(submit());
    EXPECT_TRUE(sheet.refusal().startsWith("The evidence is in "_L1)) << sheet.refusal().toStdString();
    EXPECT_TRUE(sheet.refusal().endsWith(", but the database could not be written."_L1));
    EXPECT_EQ(sheet.note(), "n");
    const QString root = view->browser()->evidenceRoot();
    QDir(root).removeRecursively();
    QFile blocker(root);
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    ASSERT_TRUE(submit());
    EXPECT_EQ(sheet.refusal(), "The evidence could not be saved: " + root + "/shop could not be written.");
    view->history()->openFolder();
    EXPECT_EQ(desktop.openedFiles, QStringList(QFileInfo(root).absolutePath())) << "the blocked folder's";
}

TEST_F(PlayedBrowser, aFieldSaysWhatItTakesAndShowsItInColumns)
{
    BrowserFieldPicker& picker = *view->picker()->field();
    const auto ask = [&](const QString& type, QJsonObject more = {}) {
        more[u"kind"_s] = u"field"_s;
        more[u"type"_s] = type;
        step(more);
    };
    QStringList words;
    for (const QString& type : { u"date"_s, u"datetime-local"_s, u"month"_s, u"week"_s, u"time"_s, u"color"_s }) {
        ask(type, { { u"label"_s, u"When"_s } });
        picker.setText(u"?"_s);
        picker.accept();
        words.append(picker.refusal() + QString::number(picker.columns().size()) + ' '
            + QString::number(picker.options().size()));
        EXPECT_EQ(picker.label(), "When");
        EXPECT_TRUE(picker.isOpen());
    }
    EXPECT_EQ(words,
        (QStringList { u"Type a date, such as 2026-11-22.7 42"_s,
            u"Type a date and a time, such as 2026-11-22 14:30.7 42"_s, u"Type a month, such as 2026-11.3 12"_s,
            u"Type a week, such as 2026-W47.7 42"_s, u"Type a time, such as 14:30.6 48"_s,
            u"Type a colour, such as #3366cc.8 40"_s }));
    const QSignalSpy changed(&picker, &BrowserFieldPicker::changed);
    picker.setText(u"?"_s);
    EXPECT_EQ(changed.size(), 0);
    picker.close();
    picker.close();
    EXPECT_EQ(changed.size(), 1);

    const QJsonObject limits { { u"min"_s, u"2026-11-10"_s }, { u"max"_s, u"2026-11-12"_s } };
    for (const auto& [day, refusal] :
        { std::pair("2026-11-09", "The page takes nothing before 2026-11-10."), std::pair("2026-11-10", ""),
            std::pair("2026-11-12", ""), std::pair("2026-11-13", "The page takes nothing after 2026-11-12.") }) {
        ask(u"date"_s, limits);
        picker.setText(QString::fromLatin1(day));
        picker.accept();
        EXPECT_EQ(picker.refusal(), refusal);
    }
    ask(u"date"_s, limits);
    picker.setText(u"2026-11-11"_s);
    QStringList offered;
    for (const BrowserFieldOption& option : picker.options()) {
        if (option.isOffered && !option.isAside)
            offered.append(option.label + (option.isChosen ? u"!"_s : QString()));
    }
    EXPECT_EQ(offered.join(' '), "") << "the page is that of today";
    ask(u"date"_s, { { u"value"_s, u"2026-11-11"_s }, { u"min"_s, u"2026-11-10"_s }, { u"max"_s, u"2026-11-12"_s } });
    for (const BrowserFieldOption& option : picker.options()) {
        if (option.isOffered && !option.isAside)
            offered.append(option.label + (option.isChosen ? u"!"_s : QString()));
    }
    EXPECT_EQ(offered.join(' '), "10 11! 12");
    EXPECT_EQ(picker.options().first().value, "2026-10-26");
    EXPECT_EQ(picker.options().first().name, QLocale().toString(QDate(2026, 10, 26), QLocale::LongFormat));
    picker.turn(-2);
    EXPECT_EQ(picker.heading(), "September 2026");
    ask(u"month"_s, { { u"value"_s, u"2026-03"_s } });
    EXPECT_EQ(picker.options().first().value + picker.options().first().name, "2026-01January 2026");
    picker.turn(-1);
    EXPECT_EQ(picker.heading(), "2025");
    ask(u"week"_s, { { u"value"_s, u"2026-W01"_s } });
    EXPECT_EQ(picker.options().first().value, "2025-W49") << "the first week has days of December";
    ask(u"time"_s, { { u"value"_s, u"23:30"_s } });
    EXPECT_EQ(picker.options().last().value, "23:30");
    EXPECT_TRUE(picker.options().last().isChosen);
    ask(u"color"_s, { { u"value"_s, u"#000000"_s } });
    QStringList greys;
    for (const BrowserFieldOption& option : picker.options().first(8))
        greys.append(option.value);
    EXPECT_EQ(greys.join(' '), "#ffffff #dbdbdb #b7b7b7 #929292 #6e6e6e #494949 #252525 #000000");
    EXPECT_TRUE(picker.options().at(7).isChosen);
    EXPECT_EQ(QColor(picker.options().at(8).value).hslHue(), 0);
    EXPECT_EQ(QColor(picker.options().at(15).value).hslHue(), 315);
    EXPECT_GT(QColor(picker.options().at(8).value).lightness(), QColor(picker.options().at(16).value).lightness());
    for (const auto& [typed, value] :
        { std::pair("7:05:09", "07:05:09"), std::pair("23:59:59.125", "23:59:59.125"), std::pair("24:00", "") })
        EXPECT_EQ(browserFieldValue(BrowserFieldKind::Time, QString::fromLatin1(typed)).value_or(QString()), value);
    for (const auto& [typed, value] : { std::pair("2026-11-22", ""), std::pair("9:05", ""), std::pair("", ""),
             std::pair("2026-11-22T9:05", "2026-11-22T09:05") })
        EXPECT_EQ(browserFieldValue(BrowserFieldKind::DateTime, QString::fromLatin1(typed)).value_or(QString()), value);
    for (const auto& [typed, value] : { std::pair("2026-W00", ""), std::pair("2020W53", "2020-W53"),
             std::pair("2021-w53", ""), std::pair("2021-W1", "2021-W01") })
        EXPECT_EQ(browserFieldValue(BrowserFieldKind::Week, QString::fromLatin1(typed)).value_or(QString()), value);
}

TEST_F(PlayedBrowser, aPlayedTextIsTypedAndAnOpenedPageIsWaitedFor)
{
    const auto play = [&](const QList<Step>& steps) {
        Q_EMIT view->history()->playRequested(steps);
    };
    answer(u"Page.addScriptToEvaluateOnNewDocument"_s, {});
    play({ { .kind = Step::Kind::Open, .text = u"http://x/2"_s }, { Step::Kind::Type, u"#q"_s, {}, u"boots"_s },
        { Step::Kind::Type, u"#q"_s, {}, {} }, { Step::Kind::Click, u"#go"_s, u"Go"_s } });
    EXPECT_EQ(view->notice(), "Step 1 of 4: Open http://x/2");
    m_clock.advance(seconds(2));
    EXPECT_EQ(view->notice(), "Step 1 of 4: Open http://x/2");
    showPage(u"http://x/2"_s);
    m_clock.advance(Milliseconds(100));
    EXPECT_TRUE(lastOf(u"Runtime.evaluate"_s)["awaitPromise"_L1].toBool()) << "until it is drawn";
    answerScript({});
    EXPECT_EQ(view->notice(), "Step 2 of 4: Type “boots” into #q");
    answerScript(true);
    EXPECT_EQ(lastOf(u"Input.insertText"_s)["text"_L1].toString(), "boots");
    answer(u"Input.insertText"_s, {});
    answerScript({});
    answerScript(true);
    EXPECT_EQ(page->methods().count(u"Input.insertText"_s), 1) << "nothing is to be typed";
    answerScript({});
    answerScript(QJsonArray { 10, 20 });
    const QJsonObject release = lastOf(u"Input.dispatchMouseEvent"_s);
    EXPECT_EQ(release["type"_L1].toString() + release["button"_L1].toString(), "mouseReleasedleft");
    EXPECT_EQ(QPointF(release["x"_L1].toDouble(), release["y"_L1].toDouble()), QPointF(10, 20));
    EXPECT_EQ(page->methods().count(u"Input.dispatchMouseEvent"_s), 2);
    answer(u"Input.dispatchMouseEvent"_s, {});
    answerScript({});
    EXPECT_EQ(view->notice(), "Played 4 steps.");

    play({ { .kind = Step::Kind::Open, .text = u"http://x/3"_s } });
    m_clock.advance(seconds(29));
    EXPECT_EQ(view->noticeAction(), "Stop");
    m_clock.advance(seconds(1));
    EXPECT_EQ(view->notice(), "Stopped at step 1: http://x/3 did not open.");
    play({ { .kind = Step::Kind::Open, .text = u"http://x/4"_s } });
    view->actOnNotice();
    showPage(u"http://x/4"_s);
    m_clock.advance(seconds(1));
    EXPECT_EQ(view->notice() + view->noticeAction(), "");
    play({ { Step::Kind::Click, u"#a"_s, {} } });
    play({ { Step::Kind::Click, u"#b"_s, {} } });
    EXPECT_EQ(view->notice(), "Step 1 of 1: Click #b");
    page->fail({});
    m_clock.advance(seconds(10));
    EXPECT_EQ(view->notice(), "Stopped at step 1: #b is not on the page.");
    EXPECT_EQ(view->noticeAction(), "");
}

TEST_F(PlayedBrowser, anEarlierSessionThatIsNotThereDoesNothing)
{
    BrowserHistory& history = *view->history();
    const QSignalSpy opened(&history, &BrowserHistory::openRequested);
    const QSignalSpy said(&history, &BrowserHistory::said);
    history.open(u"none"_s);
    history.play(u"none"_s);
    EXPECT_EQ(opened.size() + said.size(), 0);
    m_db->run(u"INSERT INTO dev_browser_session(id, project_id, title, url, status, last_error) VALUES"
              "('a','pj:shop','Old','','odd','it broke');"_s,
        {});
    history.reload();
    EXPECT_EQ(column(*history.rows(), "title"), QStringList("Old")) << "without an address";
    EXPECT_TRUE(column(*history.rows(), "facts").first().startsWith("odd, "_L1));
    EXPECT_EQ(column(*history.rows(), "problem"), QStringList("it broke"));
    view->setProject({});
    EXPECT_EQ(history.rows()->rowCount(), 0);
    history.save();
    EXPECT_EQ(cell(u"SELECT COUNT(*) FROM dev_browser_session;"_s), "1");

    QStringList devices;
    for (const Choice& device : view->display()->devices()) {
        view->display()->setDevice(device.id);
        devices.append(
            device.id + QString::number(lastOf(u"Emulation.setDeviceMetricsOverride"_s)["height"_L1].toInt()));
    }
    EXPECT_EQ(devices.join(' '), "desktop800 laptop768 tablet1024 phone844");
}

}
