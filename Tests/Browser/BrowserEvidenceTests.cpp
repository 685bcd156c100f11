#include "Browser/BrowserEvidence.h"
#include "Browser/BrowserInput.h"
#include "PlayedBrowser.h"

#include <QCryptographicHash>

namespace corvane {

using Step = BrowserStep;

TEST(BrowserEvidence, whatIsWrittenIsReadAgainAndItsReportIsPlainText)
{
    const TemporaryHome home;
    const QString root = home.path(u"evidence"_s);
    BrowserEvidencePayload payload;
    payload.capturedAt = 1'760'000'000'123;
    payload.title = u"A <b>shop</b>"_s;
    payload.url = u"http://x/<1>"_s;
    payload.requestedURL = u"http://x"_s;
    payload.note = u"a & b"_s;
    payload.status = u"loaded"_s;
    payload.lastError = u"none"_s;
    payload.browser = u"Chromium/130"_s;
    payload.consoleEvents = { { u"c"_s, payload.capturedAt - 5, u"error"_s, u"<script>"_s, u"http://x/a.js"_s, 4 } };
    payload.networkEvents = { { u"n"_s, payload.capturedAt - 4, u"http"_s, u"http://x/2"_s, u"HTTP 404"_s, 404 },
        { u"f"_s, payload.capturedAt - 3, u"failed"_s, u"http://x/3"_s, u"refused"_s, std::nullopt } };
    payload.steps = { { .kind = Step::Kind::Open, .text = u"http://x"_s },
        { Step::Kind::Type, u"#pw"_s, u"Password"_s, {}, true }, { Step::Kind::Press, u"#q"_s, {}, u"Enter"_s } };
    QImage picture(20, 10, QImage::Format_RGB32);
    picture.fill(Qt::white);
    const auto saved = writeEvidence(root, u"shop"_s, payload, picture);
    ASSERT_TRUE(saved);
    const auto second = writeEvidence(root, u"shop"_s, payload, {});
    ASSERT_TRUE(second);
    EXPECT_EQ(second->folder, saved->folder + u"-2"_s) << "of the same second";
    EXPECT_EQ(second->capturePath(), second->folder);
    EXPECT_EQ(saved->capturePath(), saved->folder + u"/chromium-screenshot.png"_s);
    EXPECT_EQ(QImage(saved->capturePath()).size(), picture.size());
    for (const QString& path : { saved->file(), saved->report(), saved->capturePath() })
        EXPECT_FALSE(QFileInfo(path).permissions() & (QFile::ReadGroup | QFile::ReadOther)) << qPrintable(path);

    for (const QString& path : { saved->folder, saved->file(), saved->capturePath() }) {
        const auto read = readEvidence(path);
        ASSERT_TRUE(read) << qPrintable(path);
        const auto fields = [](const BrowserEvidencePayload& of) {
            QStringList texts { QString::number(of.capturedAt), of.title, of.url, of.requestedURL, of.note, of.status,
                of.lastError, of.browser };
            for (const BrowserConsoleEvent& event : of.consoleEvents)
                texts += { event.id, QString::number(event.capturedAt), event.level, event.text, placeOfEvent(event) };
            for (const BrowserNetworkEvent& event : of.networkEvents)
                texts += { event.id, QString::number(event.capturedAt), event.kind, event.url, event.detail,
                    QString::number(event.statusCode.value_or(-1)) };
            return texts;
        };
        EXPECT_EQ(fields(*read), fields(payload));
        EXPECT_EQ(read->steps, payload.steps);
        EXPECT_EQ(read->screenshotPath, saved->capturePath());
    }
    const auto gone = readEvidence(root + u"/nothing"_s);
    ASSERT_FALSE(gone);
    EXPECT_EQ(gone.error().message, u"The evidence is not there any more: "_s + root + u"/evidence.json"_s);

    const auto content = [](const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    };
    const QByteArray report = content(saved->report());
    for (const char* part : { "<title>A &lt;b&gt;shop&lt;/b&gt;</title>", "<td>http://x/&lt;1&gt;</td>",
             "<td>a &amp; b</td>", "<td>Chromium/130</td>", "<td>2025-10-09 08:53:20.123 UTC</td>",
             "<td>&lt;script&gt;</td><td>http://x/a.js:5</td>", "<td>refused</td><td>http://x/3</td>",
             "<td>2</td><td>Type into “Password” (the text is not kept)</td>", "<td>3</td><td>Press Enter in #q</td>",
             "src=\"data:image/png;base64,iVBOR" })
        EXPECT_TRUE(report.contains(part)) << part;
    for (const QString& path : { saved->file(), saved->capturePath() })
        EXPECT_TRUE(report.contains(QCryptographicHash::hash(content(path), QCryptographicHash::Sha256).toHex()))
            << qPrintable(path);
    const QByteArray bare = content(writeEvidence(root, u"bare"_s, {}, {})->report());
    for (const char* part : { "No warning and no error.", "None.", "None were recorded." })
        EXPECT_TRUE(bare.contains(part)) << part;
    EXPECT_FALSE(bare.contains("<img"));
}

TEST(BrowserSteps, typingInAFieldIsOneStepAndTheAddressStays)
{
    BrowserSteps steps;
    steps.opened(u"http://x"_s);
    const auto report = [&](const QString& kind, const QString& selector, const QString& text) {
        steps.reported({ { u"kind"_s, kind }, { u"selector"_s, selector }, { u"text"_s, text } });
    };
    for (const QString& text : { u"b"_s, u"bo"_s, u"boots"_s })
        report(u"type"_s, u"#q"_s, text);
    report(u"type"_s, u"#r"_s, u"red"_s);
    report(u"choose"_s, u"#r"_s, u"1"_s);
    report(u"choose"_s, u"#r"_s, u"2"_s);
    report(u"click"_s, u"#go"_s, {});
    report(u"click"_s, u"#go"_s, {});
    report(u"open"_s, {}, u"http://planted"_s);
    report(u"hover"_s, u"#go"_s, {});
    QStringList lines;
    for (const Step& step : steps.steps())
        lines.append(stepLine(step));
    EXPECT_EQ(lines,
        (QStringList { u"Open http://x"_s, u"Type “boots” into #q"_s, u"Type “red” into #r"_s, u"Choose “2” in #r"_s,
            u"Click #go"_s, u"Click #go"_s }));
    for (int n = 0; n < 250; ++n)
        report(u"click"_s, u"#b%1"_s.arg(n), {});
    EXPECT_EQ(steps.steps().size(), BrowserSteps::kept);
    EXPECT_EQ(stepLine(steps.steps().first()) + stepLine(steps.steps().last()), u"Open http://xClick #b249"_s);

    const auto secret = [&](int field, const QString& text) {
        steps.reported({ { u"kind"_s, u"secret"_s }, { u"field"_s, field }, { u"text"_s, text } });
    };
    for (const QString& text : { u"hun"_s, u"hunter"_s, QString() })
        secret(1, text);
    secret(2, u"hunter7"_s);
    secret(2, u"other"_s);
    EXPECT_EQ(steps.secrets(), (QStringList { u"hunter"_s, u"hunter7"_s, u"other"_s })) << "half of one is none";
    for (int n = 0; n < 200; ++n)
        steps.addSecret(u"secret %1"_s.arg(n));
    EXPECT_EQ(steps.secrets().size(), 200);
    EXPECT_EQ(steps.secrets().first(), u"secret 0"_s);
}

TEST(BrowserInput, keysAndPointersReachThePageAsItsEvents)
{
    const auto key = [](const BrowserKey& pressed) {
        const QJsonObject sent = keyParameters(pressed).value_or(QJsonObject());
        return u"%1 %2 %3 %4 %5 %6"_s.arg(sent["type"_L1].toString(), sent["key"_L1].toString(),
            sent["code"_L1].toString(), QString::number(sent["windowsVirtualKeyCode"_L1].toInt()),
            QString::number(sent["modifiers"_L1].toInt()), sent["text"_L1].toString());
    };
    EXPECT_EQ(key({ true, Qt::Key_A, u"a"_s }), u"keyDown a KeyA 65 0 a"_s);
    EXPECT_EQ(key({ false, Qt::Key_A, u"a"_s }), u"keyUp a KeyA 65 0 "_s);
    EXPECT_EQ(key({ true, Qt::Key_A, u"\x01"_s, Qt::ControlModifier }), u"rawKeyDown a KeyA 65 2 "_s);
    EXPECT_EQ(key({ true, Qt::Key_7, u"/"_s, Qt::ShiftModifier }), u"keyDown / Digit7 55 8 /"_s);
    EXPECT_EQ(key({ true, Qt::Key_F5, {}, Qt::AltModifier | Qt::MetaModifier }), u"rawKeyDown F5 F5 116 5 "_s);
    EXPECT_EQ(key({ true, Qt::Key_Return, u"\r"_s }), u"keyDown Enter Enter 13 0 \r"_s);
    EXPECT_EQ(key({ true, 0, u"ä"_s }), u"keyDown ä  0 0 ä"_s);
    EXPECT_FALSE(keyParameters({ true, Qt::Key_VolumeUp }));
    EXPECT_TRUE((*keyParameters({ .key = Qt::Key_A, .text = u"a"_s, .isRepeated = true }))["autoRepeat"_L1].toBool());

    using Kind = BrowserPointer::Kind;
    const QJsonObject drag = pointerParameters(
        { .kind = Kind::Move, .buttons = Qt::RightButton | Qt::MiddleButton, .modifiers = Qt::ShiftModifier },
        { 3, 4 });
    EXPECT_EQ(drag,
        (QJsonObject { { u"type"_s, u"mouseMoved"_s }, { u"x"_s, 3 }, { u"y"_s, 4 }, { u"button"_s, u"right"_s },
            { u"modifiers"_s, 8 }, { u"buttons"_s, 6 } }));
    const QJsonObject wheel = pointerParameters({ .kind = Kind::Wheel, .wheel = { 5, -6 } }, {});
    EXPECT_EQ(wheel["deltaX"_L1].toInt(), 5);
    EXPECT_EQ(wheel["deltaY"_L1].toInt(), -6);
    EXPECT_EQ(wheel["button"_L1].toString(), u"none"_s);
    const QJsonObject release = pointerParameters({ .kind = Kind::Release, .button = Qt::BackButton, .clicks = 2 }, {});
    EXPECT_EQ(release["button"_L1].toString() + release["type"_L1].toString(), u"backmouseReleased"_s);
    EXPECT_EQ(release["clickCount"_L1].toInt(), 2);
    EXPECT_FALSE(pagePoint({ 1, 1 }, { 1, 100 }, { 100, 100 })) << "a view that is not laid out";
    EXPECT_FALSE(pagePoint({ 1, 1 }, { 100, 100 }, {}));
}

}
