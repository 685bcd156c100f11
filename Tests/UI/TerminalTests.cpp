#include "Foundation/Literals.h"
#include "Shell/AppShell.h"
#include "Support/Await.h"
#include "Terminals/TerminalsView.h"
#include "UI/Terminals/TerminalItem.h"
#include "UI/Terminals/TerminalKeys.h"
#include "UI/WindowTest.h"
#include "Web/SessionStore.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QStyleHints>
#include <QTest>

namespace corvane {

using namespace terminal;

namespace {

class TerminalWindow : public WindowTest {
protected:
    TerminalWindow()
    {
        showEmptyInbox();
        press(Qt::Key_6, Qt::ControlModifier);
    }

    TerminalItem& open(const std::string& script)
    {
        screens.terminals->createLocalSession(u"test"_s, { "/bin/sh", { "-c", script }, {}, {}, {} });
        rest();
        return *qobject_cast<TerminalItem*>(item(u"terminal"_s));
    }
    bool awaitShown(TerminalItem& terminal, const QString& text)
    {
        return await([&] {
            rest();
            return terminal.shownText().contains(text);
        });
    }
    QString question() { return screens.terminals->question()->text(); }
};

ShownRow rowOf(std::u32string_view text, const Style& style = {})
{
    ShownRow row;
    row.styles = { style };
    for (const char32_t character : text)
        row.cells.push_back(Cell::character(character, 0));
    return row;
}

/// The number of pixels in a row that are not the background colour.
int inked(const QImage& image, int y)
{
    int count = 0;
    for (int x = 0; x < image.width(); ++x)
        count += image.pixelColor(x, y) != Qt::black;
    return count;
}

}

TEST_F(TerminalWindow, aShellOpensAtAKeyPressAndTakesEveryKeyButTheWindowsOwn)
{
    EXPECT_EQ(screens.terminals->count(), 0);
    press(Qt::Key_Return);
    EXPECT_EQ(screens.terminals->count(), 1);
    screens.terminals->closeCurrent();

    TerminalItem& terminal = open("stty raw -echo; printf 'ready\\r\\n'; cat -v");
    ASSERT_TRUE(terminal.hasActiveFocus());
    ASSERT_TRUE(awaitShown(terminal, u"ready"_s));
    type(u"Jk?"_s); // shortcuts of the list in other views
    press(Qt::Key_K, Qt::ControlModifier);
    press(Qt::Key_Tab);
    press(Qt::Key_Escape);
    press(Qt::Key_F6);
    press(Qt::Key_Up, Qt::ShiftModifier);
    QInputMethodEvent composed;
    composed.setCommitString(u"ö"_s);
    QCoreApplication::sendEvent(&terminal, &composed);
    EXPECT_TRUE(awaitShown(terminal, u"^[[1;2AM-CM-6"_s));
    EXPECT_TRUE(terminal.shownText().contains(u"Jk?^K"_s)) << terminal.shownText().toStdString();
    EXPECT_EQ(shell.selectedNav(), u"dev"_s);
    press(Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(screens.terminals->count(), 2);
    press(Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(screens.terminals->current()->label(), u"local-test-1"_s);
    press(Qt::Key_5, Qt::ControlModifier);
    EXPECT_EQ(shell.selectedNav(), u"inbox"_s);
}

TEST_F(TerminalWindow, whatIsShownIsFoundSelectedCopiedAndReadAloud)
{
    TerminalItem& terminal = open("stty -echo; seq 1 200; printf 'see https://example.org/a'; cat");
    ASSERT_TRUE(awaitShown(terminal, u"see"_s));
    press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    type(u"150"_s);
    EXPECT_EQ(item(u"terminalSearch.status"_s)->property("text").toString(), u"1 of 1"_s);
    EXPECT_TRUE(terminal.shownText().contains(u"\n150\n"_s));
    press(Qt::Key_Escape);
    EXPECT_EQ(findItem(u"terminalSearch.field"_s), nullptr);
    ASSERT_TRUE(terminal.hasActiveFocus());
    terminal.scrollToEnd(false);
    rest();

    const auto at = [&terminal](int row, int column) {
        return terminal.mapToScene(terminal.cellRect(row, column).center()).toPoint();
    };
    const int last = int(terminal.shownText().count(u'\n')) - 1;
    QTest::mouseDClick(front(), Qt::LeftButton, Qt::NoModifier, at(last, 8));
    press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"https://example.org/a"_s);
    QString opened;
    screens.terminals->setBrowser([&opened](const QString& address) {
        opened = address;
        return true;
    });
    QTest::mouseMove(front(), at(last, 8));
    QTest::mouseClick(front(), Qt::LeftButton, Qt::ControlModifier, at(last, 8));
    EXPECT_EQ(opened, u"https://example.org/a"_s);

    QAccessibleInterface* const aloud = QAccessible::queryAccessibleInterface(&terminal);
    ASSERT_NE(aloud, nullptr);
    EXPECT_EQ(aloud->role(), QAccessible::Terminal);
    ASSERT_NE(aloud->textInterface(), nullptr);
    const int cursor = aloud->textInterface()->cursorPosition();
    EXPECT_EQ(aloud->textInterface()->text(cursor - 25, cursor), u"see https://example.org/a"_s);
}

TEST_F(TerminalWindow, aQuestionStandsOverTheTerminalAndIsAnsweredByKey)
{
    TerminalItem& terminal = open("printf '\\033]52;c;c2VjcmV0\\007'; printf ready; cat");
    ASSERT_TRUE(awaitShown(terminal, u"ready"_s));
    EXPECT_TRUE(question().endsWith(u"“secret”"_s));
    EXPECT_TRUE(terminal.hasActiveFocus()); // the question is unrequested: a Return while typing must not grant it
    screens.terminals->question()->answer(true);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"secret"_s);

    QGuiApplication::clipboard()->setText(u"one\ntwo\n"_s);
    press(Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(question().startsWith(u"Paste 2 lines?"_s));
    press(Qt::Key_Escape);
    EXPECT_EQ(question(), QString());
    EXPECT_TRUE(terminal.hasActiveFocus());
    press(Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
    press(Qt::Key_Return);
    EXPECT_TRUE(awaitShown(terminal, u"two"_s));
}

TEST_F(TerminalWindow, blinkingTextGoesAndComesBack)
{
    TerminalItem& terminal = open("printf '\\033[5mblink\\033[0m\\r\\nready'; cat");
    ASSERT_TRUE(awaitShown(terminal, u"ready"_s));
    QStyleHints& hints = *QGuiApplication::styleHints();
    const int usual = hints.cursorFlashTime();
    hints.setCursorFlashTime(0); // no blinking except by `setTextOn`
    EXPECT_TRUE(terminal.textBlinks());
    const auto shown = [&](bool on) {
        terminal.setTextOn(on);
        const QRectF text = terminal.cellRect(0, 0) | terminal.cellRect(0, 4);
        return picture().copy(terminal.mapRectToScene(text).toRect());
    };
    const QImage before = shown(true);
    EXPECT_NE(shown(false), before);
    EXPECT_EQ(shown(true), before);
    hints.setCursorFlashTime(usual);
}

TEST_F(TerminalWindow, tenTerminalsRunAndAFloodOutOfSightEndsWhole)
{
    for (int i = 0; i < 9; ++i)
        open("cat");
    TerminalItem& terminal = open("seq 1 100000; printf done; cat");
    press(Qt::Key_5, Qt::ControlModifier);
    LumoTerminalSession& session = *screens.terminals->current();
    EXPECT_TRUE(await([&] { return session.transcript().snapshot(500).endsWith(u"done"_s); }));
    static_cast<void>(terminal);
    press(Qt::Key_6, Qt::ControlModifier);
    TerminalItem& again = *qobject_cast<TerminalItem*>(item(u"terminal"_s));
    EXPECT_TRUE(awaitShown(again, u"100000\ndone"_s));
    EXPECT_EQ(screens.terminals->count(), 10);
}

TEST(TerminalPicture, linesMeetEmojiKeepTheirColoursAndEveryColourReads)
{
    TerminalPainter painter(terminalFontFamily(), 14);
    TerminalLook look;
    look.palette.dynamic[size_t(DynamicColor::Foreground)] = 0xffffff;
    const QImage lines = painter.row(rowOf(U"─╌━═┼█"), 6, look);
    const int width = painter.cell().width();
    const int middle = (painter.cell().height() - std::max(1, (width + 4) / 9)) / 2;
    EXPECT_EQ(inked(painter.row(rowOf(U"────"), 4, look), middle), 4 * width);
    EXPECT_LT(inked(lines, middle), 6 * width); // dashed lines have gaps

    ShownRow emoji;
    emoji.styles = { {} };
    emoji.cells = { Cell::character(U'🎉', 0, Cell::Part::WideHead), Cell::character(U'🎉', 0, Cell::Part::WideTail) };
    const QImage party = painter.row(emoji, 2, look);
    bool isColored = false;
    for (int x = 0; x < party.width(); ++x)
        isColored |= party.pixelColor(x, middle).hsvSaturation() > 100;
    EXPECT_TRUE(isColored);
    emoji.clusters = { U"👩‍🚀" };
    emoji.cells[0] = Cell::cluster(0, 0, Cell::Part::WideHead);
    EXPECT_GT(inked(painter.row(emoji, 2, look), middle), 0);

    for (const Rgb ground : { 0xffffffu, 0x1b1d20u, 0x808080u }) {
        for (const Rgb ink : { 0x000000u, 0xffff00u, 0x0000eeu, 0xd5d6d2u, 0x24272bu })
            EXPECT_GE(contrastOf(readableOn(ground, ink), ground), 4.5);
    }
}

TEST(TerminalKey, theProgramIsToldWhichKeyItWas)
{
    const auto told = [](int key, Qt::KeyboardModifiers modifiers, const QString& text, quint32 scanCode = 0) {
        return terminalKey(QKeyEvent(QEvent::KeyPress, key, modifiers, scanCode, 0, 0, text), KeyAction::Press);
    };
    EXPECT_EQ(told(Qt::Key_C, Qt::ControlModifier, u"\x03"_s)->key, U'c');
    EXPECT_EQ(told(Qt::Key_C, Qt::ControlModifier, u"\x03"_s)->text, "");
    EXPECT_EQ(told(Qt::Key_Exclam, Qt::ShiftModifier, u"!"_s, 10)->key, U'1');
    EXPECT_EQ(told(Qt::Key_Exclam, Qt::ShiftModifier, u"!"_s, 10)->shifted, U'!');
    EXPECT_EQ(told(Qt::Key_Z, {}, u"z"_s, 29)->base, U'y'); // on a German keyboard
    EXPECT_EQ(told(Qt::Key_Backtab, Qt::ShiftModifier, {})->key, keys::tab);
    EXPECT_EQ(told(Qt::Key_5, Qt::KeypadModifier, u"5"_s)->key, keys::keypad0 + 5);
    EXPECT_EQ(told(Qt::Key_Odiaeresis, {}, u"ö"_s)->text, "ö");
}

}
