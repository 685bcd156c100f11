#include "Browser/BrowserReport.h"
#include "PlayedBrowser.h"
#include "Support/Rows.h"

#include <QDateTime>
#include <QSignalSpy>

namespace corvane {

TEST_F(PlayedBrowser, aPictureOfAnySizeButTheLargestIsShownAndTakesTheInput)
{
    BrowserSurface& surface = *view->browser()->surface();
    const QSignalSpy first(&surface, &BrowserSurface::shown);
    const QSignalSpy frames(&surface, &BrowserSurface::frameChanged);
    surface.clickBrowser({ 1, 1 }, { 100, 100 });
    EXPECT_FALSE(page->methods().contains(u"Input.dispatchMouseEvent"_s)) << "there is nothing to click on";
    const auto shows = [&](QSize size) {
        page->showFrame(PlayedConnection::jpeg(size), 1);
        page->showFrame(PlayedConnection::jpeg({ 16, 16 }), 2); // decoded after it
        return await([&] { return surface.frameImage().size() == size || surface.frameImage().width() == 16; })
            && surface.frameImage().size() == size;
    };
    EXPECT_FALSE(shows({ 8193, 8 }));
    EXPECT_FALSE(shows({ 8, 8193 }));
    EXPECT_EQ(surface.frameImage().format(), QImage::Format_RGB32);
    page->showFrame(PlayedConnection::jpeg({ 8192, 8 }), 3, { { u"deviceWidth"_s, 0 }, { u"deviceHeight"_s, 9 } });
    ASSERT_TRUE(await([&] { return surface.frameImage().width() == 8192; }));
    EXPECT_EQ(surface.viewportSize(), QSizeF(8192, 8)) << "metadata without an extent";
    EXPECT_EQ(first.size(), 1);
    EXPECT_GE(frames.size(), 2);
    surface.clickBrowser({ 1, 1 }, { 100, 100 });
    EXPECT_EQ(page->methods().count(u"Input.dispatchMouseEvent"_s), 2);
    const QJsonObject release = lastOf(u"Input.dispatchMouseEvent"_s);
    EXPECT_EQ(release["type"_L1].toString() + QString::number(release["clickCount"_L1].toInt()), "mouseReleased1");
    surface.insertText({});
    EXPECT_FALSE(page->methods().contains(u"Input.insertText"_s));
    surface.compose(u"に"_s, 1);
    EXPECT_EQ(lastOf(u"Input.imeSetComposition"_s),
        (QJsonObject { { u"text"_s, u"に"_s }, { u"selectionStart"_s, 1 }, { u"selectionEnd"_s, 1 } }));

    view->capture();
    BrowserBlackout& picture = *view->sheet()->picture();
    const QSignalSpy changed(&picture, &BrowserBlackout::changed);
    picture.undo();
    picture.blackOut({ 0, 0, 0, 1 });
    picture.blackOut({ 1.5, 0, 1, 1 });
    EXPECT_EQ(changed.size(), 0);
    picture.blackOut({ 0, 0, 0.5, 1 });
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(picture.picture().pixelColor(4095, 4), QColor(Qt::black));
    EXPECT_EQ(picture.picture().pixelColor(4112, 4), QColor(Qt::white));
    picture.undo();
    EXPECT_EQ(changed.size(), 2);
    EXPECT_EQ(picture.picture().pixelColor(100, 4), QColor(Qt::white));
    view->sheet()->close();
    EXPECT_TRUE(picture.picture().isNull());
}

TEST_F(PlayedBrowser, anIssueHasItsTimeAndIsCountedOnce)
{
    const QSignalSpy counted(view->issues(), &BrowserIssues::changed);
    page->logError(u"first"_s);
    m_clock.advance(Milliseconds(50));
    EXPECT_EQ(counted.size(), 1);
    const QString at = QDateTime::fromMSecsSinceEpoch(m_clock.nowMs() - 50).toString(u"HH:mm:ss"_s);
    EXPECT_EQ(column(*view->issues()->rows(), "time"), QStringList(at));
    EXPECT_EQ(view->issues()->text() + '|' + view->issues()->emptyText(), "1 issue|");
    view->browser()->open(u"http://x"_s);
    m_clock.advance(Milliseconds(50));
    EXPECT_EQ(view->issues()->count(), 0) << "another page";
    EXPECT_EQ(counted.size(), 2);

    // A browser that refuses to say its version does not answer, either.
    m_clock.advance(seconds(5));
    page->receive(QJsonDocument(QJsonObject { { u"id"_s, page->sent.last()["id"_L1] },
                                    { u"error"_s, QJsonObject { { u"message"_s, u"no"_s } } } })
            .toJson());
    m_clock.advance(seconds(5));
    EXPECT_TRUE(view->browser()->isHanging());
    EXPECT_EQ(view->problemAction(), "Start it again");
    page->fail({});
    view->browser()->options().executable = u"/nowhere/chromium"_s;
    view->browser()->restart();
    EXPECT_EQ(view->browser()->page().steps().steps().first().text, "http://x") << "what was wanted of a blank page";
}

TEST(BrowserReport, whatIsEmptyIsLeftOutAndTheAddressStandsForATitle)
{
    BrowserEvidencePayload payload;
    payload.url = u"http://x/<1>"_s;
    payload.steps = { { BrowserStep::Kind::Click, u"#a"_s }, { BrowserStep::Kind::Click, u"#b"_s } };
    const QByteArray report = evidenceReport(payload, { { u"evidence.json"_s, "{}" } });
    for (const char* part :
        { "<title>http://x/&lt;1&gt;</title>", "<h1>http://x/&lt;1&gt;</h1>",
            "<td>Address</td><td>http://x/&lt;1&gt;</td>", "<td>1</td><td>Click #a</td>", "<td>2</td><td>Click #b</td>",
            "<th>File</th><th>SHA-256</th>", "<h2>Console</h2>\n<p>No warning and no error.</p>", "</body>\n</html>" })
        EXPECT_TRUE(report.contains(part)) << part;
    for (const char* part : { "<td>Problem</td>", "<td>Note</td>", "<h2>Picture</h2>" })
        EXPECT_FALSE(report.contains(part)) << part;
    EXPECT_EQ(stepsFromJson({ QJsonObject { { u"kind"_s, u"hover"_s } },
                                QJsonObject { { u"kind"_s, u"click"_s }, { u"selector"_s, u"#a"_s } } })
                  .size(),
        1);
}

}
