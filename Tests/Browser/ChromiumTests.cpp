#include "ChromiumTest.h"

#include "Foundation/ShellQuoting.h"
#include "Support/FakePortHolders.h"

#include <csignal>
#include <unistd.h>

namespace corvane {

namespace {

const QByteArray failingPage = R"(<!doctype html><title>Shop</title>
<form onsubmit="event.preventDefault(); document.title = 'Sent ' + this.q.value">
<input name=q aria-label=Search autofocus><input name=pw type=password value=prefilled-hunter9><button>Go</button></form>
<input type=file id=file><a id=zip href=/file.zip download>zip</a>
<script>
console.error('signed in with ' + document.querySelector('[name=pw]').value + ' and password=hunter22');
fetch('/missing?api_key=abc123secret');
setTimeout(() => { throw new Error('it broke'); });
</script>)";

const QByteArray inputPage = R"(<!doctype html><title>-</title><body style="margin:0;height:3000px">
<textarea style="position:absolute;left:0;top:0;width:400px;height:200px"></textarea>
<select style="position:absolute;left:500px;top:0"><option>red<option disabled>blue<option value=g>green</select>
<input type=date aria-label=Day value=2026-11-22 style="position:absolute;left:500px;top:100px">
<a href=# style="position:absolute;left:690px;top:0">link</a>
<p style="position:absolute;left:0;top:300px;margin:0;font:40px monospace">SELECTED</p>
<script>
const seen = new Set(), note = word => { seen.add(word); document.title = [...seen].join(' '); };
const area = document.querySelector('textarea');
area.oninput = () => note('[' + area.value.replace(/\n/g, '|') + ']');
oncontextmenu = () => note('menu');
ondblclick = () => note('double');
onscroll = () => note('scrolled');
document.querySelector('select').onchange = e => note('picked:' + e.target.value);
document.querySelector('input').onchange = e => note('day:' + e.target.value);
onmouseup = () => { if (String(getSelection())) note('chose:' + getSelection()); };
onkeydown = e => { if (e.ctrlKey && e.key === 'a') note('all'); };
</script>)";

class Chromium : public ChromiumTest {
protected:
    Chromium()
    {
        web.answer(u"/"_s, LoopbackWeb::status(200, failingPage, { "Content-Type: text/html; charset=utf-8" }));
        web.answer(u"/input"_s, LoopbackWeb::status(200, inputPage, { "Content-Type: text/html; charset=utf-8" }));
        web.answer(u"/missing"_s, LoopbackWeb::status(404));
        web.answer(u"/loop"_s, LoopbackWeb::redirect(u"/loop"_s));
        web.answer(u"/file.zip"_s, LoopbackWeb::status(200, "PK", { "Content-Type: application/zip" }));
    }
};

}

TEST_F(Chromium, aPageThatFailsInThreeWaysIsFiledWithItsProofAndPlayedAgain)
{
    const auto view = makeView();
    ChromiumBrowserController& browser = *view->browser();
    ASSERT_TRUE(show(*view, u"/"_s)) << qPrintable(browser.lastError());
    ASSERT_TRUE(awaitLive([&] { return view->issues()->count() >= 3; })) << qPrintable(view->sheet()->preview());
    EXPECT_EQ(browser.status(), u"loaded"_s);
    EXPECT_EQ(QFileInfo(m_home.paths().applicationSupport + u"/BrowserQA/InteractiveProfile"_s).permissions()
            & (QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther),
        QFile::Permissions());
    EXPECT_TRUE(awaitLive([&] { return cell(u"SELECT status FROM dev_browser_session;"_s) == u"live"_s; }));

    // The browser sets the focus with the first frame, after the load event.
    ASSERT_TRUE(awaitPage(*view, u"document.activeElement.name"_s, u"q"_s));
    type(*view, u"boots"_s);
    press(*view, Qt::Key_Tab);
    type(*view, u"hunter7"_s);
    press(*view, Qt::Key_Return);
    ASSERT_TRUE(awaitTitle(*view, u"Sent boots"_s));
    view->reportBug();
    EXPECT_TRUE(view->sheet()->preview().contains(u"/:6)"_s)) << qPrintable(view->sheet()->preview());
    view->sheet()->picture()->blackOut({ 0, 0, 0.5, 0.5 });
    view->sheet()->submit();
    ASSERT_TRUE(awaitLive([&] { return !view->sheet()->busy(); }));
    EXPECT_EQ(view->sheet()->purpose(), BrowserReportSheet::Purpose::Closed) << qPrintable(view->sheet()->refusal());

    const QString path = cell(u"SELECT uri FROM work_evidence WHERE kind='browser-capture' AND item_id=(SELECT id FROM "
                              "work_item WHERE kind='bug' AND summary LIKE '%No note supplied.');"_s);
    const auto evidence = readEvidence(path);
    ASSERT_TRUE(evidence) << qPrintable(path);
    QStringList lines;
    for (const BrowserStep& step : evidence->steps)
        lines.append(stepLine(step));
    EXPECT_EQ(lines,
        (QStringList { u"Open "_s + web.base() + u'/', u"Type “boots” into “Search”"_s,
            u"Type into “pw” (the text is not kept)"_s, u"Press Enter in “pw”"_s }));
    const QImage picture(evidence->screenshotPath);
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(picture.pixelColor(10, 10), QColor(Qt::black));
    EXPECT_NE(picture.pixelColor(picture.width() - 10, picture.height() - 10), QColor(Qt::black));
    const QByteArray written = everythingWritten();
    for (const QByteArray secret : { "hunter", "abc123secret" })
        EXPECT_FALSE(written.contains(secret)) << written.mid(written.indexOf(secret) - 100, 200).toStdString();
    EXPECT_TRUE(written.contains("it broke"));
    QFile report(QFileInfo(path).absolutePath() + u"/report.html"_s);
    ASSERT_TRUE(report.open(QIODevice::ReadOnly));
    const QByteArray html = report.readAll();
    EXPECT_FALSE(html.contains("<script") || html.contains("href=") || html.contains("src=\"http"));

    ASSERT_TRUE(show(*view, u"/input"_s));
    view->history()->play(cell(u"SELECT id FROM dev_browser_session WHERE status='reported';"_s));
    ASSERT_TRUE(awaitTitle(*view, u"Sent boots"_s)) << qPrintable(view->notice());
    EXPECT_TRUE(awaitLive([&] { return view->notice().contains(u"1 step was left out"_s); }))
        << qPrintable(view->notice());
}

TEST_F(Chromium, aPersonTypesScrollsDragsAndFindsTheWayBack)
{
    const auto view = makeView();
    ChromiumBrowserController& browser = *view->browser();
    ASSERT_TRUE(show(*view, u"/input"_s)) << qPrintable(browser.lastError());
    BrowserSurface& surface = *browser.surface();
    const QSizeF size = surface.viewportSize();
    using Kind = BrowserPointer::Kind;
    surface.clickBrowser({ 50, 50 }, size);
    // Key events reach the page faster than pointer events, so wait for the click.
    ASSERT_TRUE(awaitPage(*view, u"document.activeElement.tagName"_s, u"TEXTAREA"_s));
    type(*view, u"ab"_s);
    press(*view, Qt::Key_Return);
    surface.compose(u"に"_s, 1);
    surface.insertText(u"日本"_s);
    press(*view, Qt::Key_Left);
    press(*view, Qt::Key_Backspace);
    ASSERT_TRUE(awaitTitle(*view, u"[ab|本]"_s));
    press(*view, Qt::Key_A, Qt::ControlModifier);
    ASSERT_TRUE(awaitTitle(*view, u"all"_s));
    QString copied;
    surface.takeSelection(true, [&](const QString& text) { copied = text; });
    ASSERT_TRUE(awaitLive([&] { return copied == u"ab\n本"_s; })) << qPrintable(copied);

    surface.clickBrowser({ 510, 10 }, size);
    ASSERT_TRUE(awaitLive([&] { return view->picker()->choices().size() == 2; }));
    view->picker()->choose(view->picker()->choices().last().id);
    ASSERT_TRUE(awaitTitle(*view, u"picked:g"_s));
    EXPECT_EQ(stepLine(maskedSteps(browser.page()).last()), u"Choose “g” in “select”"_s);
    surface.clickBrowser({ 510, 110 }, size);
    BrowserFieldPicker& picker = *view->picker()->field();
    ASSERT_TRUE(awaitLive([&] { return picker.isOpen(); }));
    picker.choose(u"2026-11-23"_s);
    ASSERT_TRUE(awaitTitle(*view, u"day:2026-11-23"_s));
    EXPECT_EQ(stepLine(maskedSteps(browser.page()).last()), u"Choose “2026-11-23” in “Day”"_s);

    QString cursor;
    QObject::connect(&browser.page(), &BrowserPage::cursorChanged, [&](const QString& css) { cursor = css; });
    for (const auto& [at, css] : { std::pair(QPointF(700, 10), u"pointer"_s), std::pair(QPointF(10, 320), u"text"_s),
             std::pair(QPointF(600, 600), u"default"_s) }) {
        surface.pointer({ .kind = Kind::Move, .at = at }, size);
        EXPECT_TRUE(awaitLive([&] { return cursor == css; })) << qPrintable(css);
    }

    for (const Kind kind : { Kind::Press, Kind::Release })
        surface.pointer({ .kind = kind, .at = { 600, 600 }, .button = Qt::RightButton, .clicks = 1 }, size);
    for (const int clicks : { 1, 2 }) {
        for (const Kind kind : { Kind::Press, Kind::Release })
            surface.pointer({ .kind = kind, .at = { 600, 600 }, .button = Qt::LeftButton, .clicks = clicks }, size);
    }
    surface.pointer({ .kind = Kind::Press, .at = { 2, 325 }, .button = Qt::LeftButton, .clicks = 1 }, size);
    surface.pointer({ .kind = Kind::Move, .at = { 190, 325 }, .buttons = Qt::LeftButton }, size);
    surface.pointer({ .kind = Kind::Release, .at = { 190, 325 }, .button = Qt::LeftButton, .clicks = 1 }, size);
    surface.pointer({ .kind = Kind::Wheel, .at = { 600, 600 }, .wheel = { 0, 300 } }, size);
    for (const QString& word : { u"menu"_s, u"double"_s, u"chose:SELECTED"_s, u"scrolled"_s })
        EXPECT_TRUE(awaitTitle(*view, word)) << qPrintable(word);

    browser.page().find(u"selected"_s, false);
    EXPECT_TRUE(awaitLive([&] { return view->notice() == u"1 match on this page"_s; })) << qPrintable(view->notice());
    view->display()->setDevice(u"phone"_s);
    EXPECT_TRUE(awaitLive([&] { return surface.viewportSize() == QSizeF(390, 844); }));
    view->display()->setDevice(u"desktop"_s);
    ASSERT_TRUE(show(*view, u"/"_s));
    ASSERT_TRUE(awaitLive([&] { return browser.canGoBack(); }));
    browser.back();
    EXPECT_TRUE(awaitLive([&] { return browser.currentURL().endsWith("/input"_L1) && browser.canGoForward(); }));

    view->setAddress(web.base() + u"/loop"_s);
    view->open();
    EXPECT_TRUE(awaitLive([&] { return view->notice().contains("ERR_TOO_MANY_REDIRECTS"_L1); }))
        << qPrintable(view->notice());
    EXPECT_TRUE(awaitLive([&] { return browser.currentURL().endsWith("/loop"_L1); }));
}

TEST_F(Chromium, whatNobodyWouldSeeIsRefusedWithAWord)
{
    const auto view = makeView();
    ChromiumBrowserController& browser = *view->browser();
    ASSERT_TRUE(show(*view, u"/"_s)) << qPrintable(browser.lastError());
    const auto run = [&](const QString& script) {
        browser.connection()->call(u"Runtime.evaluate"_s, { { u"expression"_s, script }, { u"userGesture"_s, true } });
    };
    run(u"for (let i = 0; i < 20; ++i) alert(i); document.title = 'no dialog is left'"_s);
    ASSERT_TRUE(awaitTitle(*view, u"no dialog"_s));
    run(u"zip.click()"_s);
    run(u"file.click()"_s);
    EXPECT_TRUE(awaitLive([&] {
        return view->notice()
            == u"20 dialogs of the page dismissed. 1 download refused. The page asked for a file; none is given from "
               "here."_s;
    })) << qPrintable(view->notice());
    EXPECT_TRUE(QDir(m_home.paths().home).entryList({ u"*.zip"_s }, QDir::Files).isEmpty());
}

TEST_F(Chromium, aBrowserThatDiesOrHangsIsToldOfAndStartedAgain)
{
    const auto view = makeView();
    ChromiumBrowserController& browser = *view->browser();
    ASSERT_TRUE(show(*view, u"/"_s)) << qPrintable(browser.lastError());
    ASSERT_GT(browser.browserPid(), 0);
    ::kill(pid_t(browser.browserPid()), SIGKILL);
    ASSERT_TRUE(awaitLive([&] { return browser.status() == u"disconnected"_s; }));
    EXPECT_FALSE(browser.isRunning());
    EXPECT_EQ(view->problemAction(), u"Try again"_s);
    ASSERT_TRUE(show(*view, u"/"_s)) << qPrintable(browser.lastError());

    const qint64 hung = browser.browserPid();
    ASSERT_GT(hung, 0);
    ::kill(pid_t(hung), SIGSTOP);
    m_clock.advance(seconds(10));
    EXPECT_EQ(view->problem(), u"The browser does not answer."_s);
    view->solveProblem();
    ASSERT_TRUE(awaitLive([&] { return browser.isRunning() && browser.page().hasLoaded(); }))
        << qPrintable(browser.lastError());
    EXPECT_NE(browser.browserPid(), hung);
    EXPECT_EQ(view->problem(), QString());
}

TEST_F(Chromium, aBrowserOfThisUserIsAdoptedAndOutlivesTheViewAndOtherListenersAreNot)
{
    const auto owner = makeView();
    ASSERT_TRUE(show(*owner, u"/"_s)) << qPrintable(owner->problem());
    {
        const auto guest = makeView();
        ASSERT_TRUE(show(*guest, u"/input"_s)) << qPrintable(guest->problem());
        EXPECT_EQ(guest->browser()->browserPid(), 0);
    }
    EXPECT_TRUE(show(*owner, u"/input"_s));
    EXPECT_TRUE(owner->browser()->isRunning());

    const auto refusal = [&](BrowserView& view) {
        view.setAddress(u"example.org"_s);
        view.open();
        EXPECT_TRUE(awaitLive([&] { return view.browser()->status() == u"failed"_s; }));
        return view.problem();
    };
    auto strangers = std::make_unique<FakePortHolders>();
    strangers->setHolders({ { 1, 501 } });
    const auto real = std::exchange(holders, std::move(strangers));
    EXPECT_EQ(refusal(*makeView()), browserWords::portOfAnother(options.port));
    holders = makePortHolders();
    options.port = quint16(QUrl(web.base()).port());
    web.answer(u"/json/version"_s, LoopbackWeb::json({ { u"a"_s, 1 } }));
    EXPECT_EQ(refusal(*makeView()), browserWords::portOfNoBrowser(options.port));
    options.port = 1;
    options.executable = u"/nowhere/chromium"_s;
    EXPECT_TRUE(refusal(*makeView()).contains("/nowhere/chromium"_L1));
    options.executable = u"/bin/false"_s;
    EXPECT_EQ(refusal(*makeView()), browserWords::ended(1));
    if (::geteuid() == 0) {
        options.hasSandbox = true;
        const auto view = makeView();
        EXPECT_EQ(refusal(*view), browserWords::isRoot);
        EXPECT_EQ(view->problemAction(), QString());
    }
}

TEST_F(Chromium, aPrivatePipeServesAsWell)
{
    options.line = BrowserOptions::Line::Pipe;
    const auto view = makeView();
    ASSERT_TRUE(show(*view, u"/"_s)) << qPrintable(view->problem());
    EXPECT_TRUE(awaitLive([&] { return view->issues()->count() >= 3; }));
    EXPECT_TRUE(holders->listeningOn(options.port).isEmpty());
    view->browser()->end();
    EXPECT_TRUE(awaitLive([&] { return view->browser()->browserPid() == 0; }));
    EXPECT_TRUE(show(*view, u"/input"_s));
}

TEST(ChromiumLaunch, argumentsAndAddressesAreAsTheBrowserWantsThem)
{
    BrowserOptions options;
    EXPECT_EQ(chromiumArguments(options, u"/p"_s),
        (QStringList { u"--remote-debugging-port=9335"_s, u"--user-data-dir=/p"_s, u"--no-first-run"_s,
            u"--no-default-browser-check"_s, u"--window-size=1280,800"_s, u"--window-position=-32000,-32000"_s,
            u"--password-store=basic"_s, u"--headless=new"_s, u"--allow-pre-commit-input"_s, u"about:blank"_s }));
    options.hasWindow = true;
    EXPECT_FALSE(chromiumArguments(options, u"/p"_s).contains(u"--headless=new"_s));
    EXPECT_EQ(normalizedURL(u" shop.example/a \n"_s, u"https://home"_s), u"https://shop.example/a"_s);
    EXPECT_EQ(normalizedURL(u" "_s, u"https://home"_s), u"https://home"_s);
    EXPECT_EQ(normalizedURL(u"http://x"_s, {}), u"http://x"_s);
    for (const QString& local : { u"localhost/a"_s, u"localhost:3000"_s, u"shop.localhost"_s, u"127.0.0.1:80"_s,
             u"[::1]:3000/a"_s, u"192.168.1.4"_s, u"172.31.0.1:5173"_s, u"nas:5000"_s })
        EXPECT_EQ(normalizedURL(local, {}), u"http://"_s + local);
    for (const QString& other :
        { u"8.8.8.8"_s, u"172.32.0.1"_s, u"nas"_s, u"localhost.example"_s, u"shop.example:80"_s })
        EXPECT_EQ(normalizedURL(other, {}), u"https://"_s + other);
    EXPECT_EQ(browserScanCommand(u"it's"_s, u"http://x/?a=\"b\""_s),
        u"printf %s "_s + posixQuoted(uR"({"project":"it's","url":"http://x/?a=\"b\""})"_s)
            + u" | corvane tool dev_browser_scan"_s);
}

}
