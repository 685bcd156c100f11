#include "Browser/PageScript.h"
#include "ChromiumTest.h"

namespace corvane {

namespace {

const QByteArray fieldsPage = R"(<!doctype html><title>-</title>
<style>body { margin: 0 } body > * { position: absolute; left: 0; width: 200px; height: 24px; margin: 0 }</style>
<a href=# id=link title=Titled style="top:0">Go there</a>
<a href=# id=twice style="top:30px">One</a>
<a href=# id=twice style="top:60px">Two</a>
<button name=save value=v style="top:90px"><span>Inner</span></button>
<input type=checkbox id=check aria-label=Agree style="top:120px">
<label style="top:150px"><input type=checkbox id=terms> Terms and more</label>
<label for=named style="top:180px">Full name</label>
<input id=named placeholder=P style="top:210px">
<input type=number id=n placeholder=Count style="top:240px">
<input type=range id=r aria-label=Volume style="top:270px">
<input id=x name=card_number aria-label=Number style="top:300px">
<textarea id=t title=Notes style="top:330px"></textarea>
<div contenteditable id=rich aria-label=Letter style="top:360px"></div>
<input type=submit value=Send style="top:390px">
<div id=handler role=button style="top:420px"><b>Bold</b></div>
<iframe style="top:450px;border:0" srcdoc="<body style='margin:0'><button style='width:200px;height:24px'>Framed</button>
  <input type=password value=framed-secret>"></iframe>
<input type=password id=pw aria-label=Word style="top:480px">
<select id=s style="top:510px"><option>one<option disabled>two<option value=3 selected>three</select>
<select id=off disabled style="top:540px"><option>one</select>
<input type=date id=fixed readonly style="top:570px">
<input type=date id=day aria-label=Day min=2026-11-01 max=2026-11-30 value=2026-11-22 required style="top:600px">
<input type=date name=token_day aria-label=Expiry style="top:630px">
<p id=plain style="top:660px;user-select:none">unselectable</p>
<textarea id=big style="top:690px;height:60px"></textarea>
<button id=far style="top:3000px" onclick="document.title = 'far'">Far</button>
<button id=hidden style="display:none">Hidden</button>
<script>s.oninput = () => s.oninputs = 'in'; s.onchange = () => document.title = s.oninputs + s.value;</script>)";

class PageScript : public ChromiumTest {
protected:
    PageScript()
    {
        web.answer(u"/fields"_s, LoopbackWeb::status(200, fieldsPage, { "Content-Type: text/html; charset=utf-8" }));
    }
    void click(qreal row) { surface().clickBrowser({ 40, row * 30 + 10 }, surface().viewportSize()); }
    /// Clicks into the field of a row and types.
    void fill(qreal row, const QString& id, const QString& text)
    {
        click(row);
        ASSERT_TRUE(awaitPage(*view, u"document.activeElement.id"_s, id)) << qPrintable(id);
        type(*view, text);
    }
    void run(const QString& script)
    {
        view->browser()->connection()->call(u"Runtime.evaluate"_s, { { u"expression"_s, script } });
    }
    /// What was recorded since the last look, once its last line is there.
    QString recorded(const QString& last)
    {
        QStringList lines;
        EXPECT_TRUE(awaitLive([&] {
            lines.clear();
            for (const BrowserStep& step : maskedSteps(view->browser()->page()).sliced(m_looked))
                lines.append(stepLine(step));
            return !lines.isEmpty() && lines.last() == last;
        })) << qPrintable(lines.join(u'\n'));
        m_looked += lines.size();
        return lines.join(u'\n');
    }
    BrowserSurface& surface() { return *view->browser()->surface(); }
    const QStringList& secrets() { return view->browser()->page().steps().secrets(); }

    std::unique_ptr<BrowserView> view = makeView();

private:
    qsizetype m_looked = 1; // the address
};

}

TEST_F(PageScript, whatIsClickedIsNamedByItsLabelAndFoundAgain)
{
    ASSERT_TRUE(show(*view, u"/fields"_s)) << qPrintable(view->problem());
    for (const int row : { 0, 1, 3, 4 })
        click(row);
    EXPECT_EQ(recorded(u"Click “Agree”"_s), "Click “Go there”\nClick “One”\nClick “Inner”\nClick “Agree”");
    QStringList selectors;
    for (const BrowserStep& step : maskedSteps(view->browser()->page()).sliced(1))
        selectors.append(step.selector);
    EXPECT_EQ(selectors,
        (QStringList { u"#link"_s, u"html:nth-of-type(1) > body:nth-of-type(1) > a:nth-of-type(2)"_s,
            u"button[name=\"save\"]"_s, u"#check"_s }));
    click(5); // its field is clicked, too
    click(6); // only its field is focused
    click(30); // the page itself
    click(15); // in a frame, which is not played again
    click(13);
    click(14);
    EXPECT_EQ(recorded(u"Click “Bold”"_s), "Click “Terms and more”\nClick “Send”\nClick “Bold”");
    EXPECT_EQ(maskedSteps(view->browser()->page()).last().selector, "#handler");
    EXPECT_TRUE(awaitLive([&] { return secrets().contains(u"framed-secret"_s); }));
}

TEST_F(PageScript, whatIsTypedIsKeptUnlessItMayBeSecret)
{
    ASSERT_TRUE(show(*view, u"/fields"_s)) << qPrintable(view->problem());
    fill(7, u"named"_s, u"ab"_s);
    fill(8, u"n"_s, u"7"_s);
    run(u"r.focus()"_s);
    ASSERT_TRUE(awaitPage(*view, u"document.activeElement.id"_s, u"r"_s));
    press(*view, Qt::Key_Home);
    EXPECT_EQ(recorded(u"Choose “0” in “Volume”"_s),
        "Type “ab” into “Full name”\nType “7” into “Count”\nChoose “0” in “Volume”");
    fill(10, u"x"_s, u"4111"_s);
    fill(11, u"t"_s, u"dear"_s);
    fill(12, u"rich"_s, u"zz"_s);
    EXPECT_EQ(recorded(u"Type into “Letter” (the text is not kept)"_s),
        "Type into “Number” (the text is not kept)\nType “dear” into “Notes”\n"
        "Type into “Letter” (the text is not kept)");
    EXPECT_TRUE(awaitLive([&] { return secrets().contains(u"4111"_s) && secrets().contains(u"zz"_s); }));
    EXPECT_FALSE(secrets().contains(u"dear"_s));
    fill(16, u"pw"_s, u"one"_s);
    ASSERT_TRUE(awaitLive([&] { return secrets().contains(u"one"_s); }));
    run(u"pw.type = 'text'"_s);
    ASSERT_TRUE(awaitPage(*view, u"pw.type"_s, u"text"_s));
    type(*view, u"two"_s);
    EXPECT_TRUE(awaitLive([&] { return secrets().contains(u"onetwo"_s); })) << "it was secret once";
    EXPECT_EQ(recorded(u"Type into “Word” (the text is not kept)"_s), "Type into “Word” (the text is not kept)");
    press(*view, Qt::Key_Return);
    EXPECT_EQ(recorded(u"Press Enter in “Word”"_s), "Press Enter in “Word”");

    // A page that is there already when the script comes.
    run(u"pw.type = 'password'; pw.value = 'filled-in'"_s);
    DevToolsConnection& connection = *view->browser()->connection();
    connection.call(u"Runtime.addBinding"_s,
        { { u"name"_s, QString::fromLatin1(pageScriptBinding) }, { u"executionContextName"_s, u"late"_s } });
    connection.call(u"Page.addScriptToEvaluateOnNewDocument"_s,
        { { u"source"_s, pageScript() }, { u"worldName"_s, u"late"_s }, { u"runImmediately"_s, true } });
    EXPECT_TRUE(awaitLive([&] { return secrets().contains(u"filled-in"_s); }));
}

TEST_F(PageScript, aListAndADateAreAskedForByKeysTooUnlessTheyAreLocked)
{
    ASSERT_TRUE(show(*view, u"/fields"_s)) << qPrintable(view->problem());
    BrowserPicker& lists = *view->picker();
    BrowserFieldPicker& field = *lists.field();
    click(18);
    click(19);
    ASSERT_TRUE(awaitPage(*view, u"document.activeElement.id"_s, u"fixed"_s));
    run(u"s.focus()"_s);
    ASSERT_TRUE(awaitPage(*view, u"document.activeElement.id"_s, u"s"_s));
    surface().key({ true, Qt::Key_Space, u" "_s });
    surface().key({ false, Qt::Key_Space, u" "_s });
    ASSERT_TRUE(awaitLive([&] { return lists.choices().size() == 2; }));
    EXPECT_FALSE(field.isOpen()) << "a field that is read only";
    EXPECT_EQ(lists.choices().first().label + lists.choices().last().label + lists.chosen(), "onethree2");
    EXPECT_NEAR(lists.place().y(), (510 + 24) / 800.0, 0.001);
    lists.choose(lists.choices().first().id);
    EXPECT_TRUE(awaitTitle(*view, u"inone"_s)) << "both of its events";
    EXPECT_EQ(recorded(u"Choose “one” in “select”"_s), "Choose “one” in “select”");
    run(u"day.focus()"_s);
    ASSERT_TRUE(awaitPage(*view, u"document.activeElement.id"_s, u"day"_s));
    press(*view, Qt::Key_Down, Qt::AltModifier);
    ASSERT_TRUE(awaitLive([&] { return field.isOpen(); }));
    EXPECT_EQ(field.label() + '|' + field.text() + '|' + field.heading(), "Day|2026-11-22|November 2026");
    EXPECT_FALSE(field.canClear());
    field.setText(u"2026-12-01"_s);
    field.accept();
    EXPECT_EQ(field.refusal(), "The page takes nothing after 2026-11-30.");
    field.choose(u"2026-11-24"_s);
    EXPECT_EQ(recorded(u"Choose “2026-11-24” in “Day”"_s), "Choose “2026-11-24” in “Day”");
    click(21);
    ASSERT_TRUE(awaitLive([&] { return field.isOpen(); }));
    EXPECT_TRUE(field.canClear());
    field.choose(u"2026-11-25"_s);
    EXPECT_EQ(recorded(u"Type into “Expiry” (the text is not kept)"_s), "Type into “Expiry” (the text is not kept)");
    EXPECT_TRUE(secrets().contains(u"2026-11-25"_s));

    QString cursor;
    QObject::connect(&surface(), &BrowserSurface::cursorChanged, [&](const QString& css) { cursor = css; });
    const auto shows = [&](QPointF at, const QString& css) {
        surface().pointer({ .kind = BrowserPointer::Kind::Move, .at = at }, surface().viewportSize());
        return awaitLive([&] { return cursor == css; });
    };
    EXPECT_TRUE(shows({ 10, 370 }, u"text"_s)) << "of the editable part";
    EXPECT_TRUE(shows({ 10, 670 }, u"default"_s)) << "of text that cannot be selected";
    EXPECT_TRUE(shows({ 197, 753 }, u"nwse-resize"_s));
    EXPECT_TRUE(shows({ 10, 10 }, u"pointer"_s));
}

TEST_F(PageScript, aPlayedStepChoosesReplacesAndScrollsToItsElement)
{
    ASSERT_TRUE(show(*view, u"/fields"_s)) << qPrintable(view->problem());
    run(u"named.value = 'before'"_s);
    using Kind = BrowserStep::Kind;
    const auto play = [&](const QList<BrowserStep>& steps) {
        Q_EMIT view->history()->playRequested(steps);
    };
    play({ { Kind::Choose, u"#s"_s, {}, u"one"_s }, { Kind::Type, u"#named"_s, {}, u"after"_s } });
    ASSERT_TRUE(awaitLive([&] { return view->notice() == u"Played 2 steps."_s; })) << qPrintable(view->notice());
    EXPECT_TRUE(awaitTitle(*view, u"inone"_s));
    EXPECT_TRUE(awaitPage(*view, u"'=' + named.value + '='"_s, u"=after="_s));
    play({ { Kind::Click, u"#far"_s, {} } });
    EXPECT_TRUE(awaitTitle(*view, u"far"_s)) << qPrintable(view->notice());
    ASSERT_TRUE(awaitLive([&] { return view->notice() == u"Played 1 step."_s; })) << qPrintable(view->notice());
    for (const auto kind : { Kind::Click, Kind::Choose, Kind::Type }) {
        const QString selector = kind == Kind::Click ? u"#hidden"_s : u"#nowhere"_s;
        play({ { kind, selector, {}, u"x"_s } });
        EXPECT_TRUE(await([&] {
            m_clock.advance(Milliseconds(100));
            return view->notice() == u"Stopped at step 1: "_s + selector + u" is not on the page."_s;
        })) << qPrintable(view->notice());
    }
}

}
