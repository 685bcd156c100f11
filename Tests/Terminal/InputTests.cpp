#include "Probe.h"

namespace corvane::terminal {

namespace {

std::string press(Probe& terminal, const KeyEvent& event)
{
    terminal.consumeReplies(terminal.replies().size());
    terminal.key(event);
    return std::string(terminal.replies());
}

std::string click(Probe& terminal, const MouseEvent& event)
{
    terminal.consumeReplies(terminal.replies().size());
    terminal.mouse(event);
    return std::string(terminal.replies());
}

}

TEST(Input, legacyKeysSendWhatTheyAlwaysDid)
{
    Probe terminal;
    EXPECT_EQ(press(terminal, { .key = 'c', .modifiers = Control }), "\x03");
    EXPECT_EQ(press(terminal, { .key = 'x', .modifiers = Alt, .text = "x" }), "\x1bx");
    EXPECT_EQ(press(terminal, { .key = ' ', .modifiers = Control }), std::string(1, '\0'));
    EXPECT_EQ(press(terminal, { .key = keys::up }), "\x1b[A");
    EXPECT_EQ(press(terminal, { .key = keys::up, .modifiers = Shift | Control }), "\x1b[1;6A");
    EXPECT_EQ(press(terminal, { .key = keys::f1 + 4, .modifiers = Alt }), "\x1b[15;3~");
    EXPECT_EQ(press(terminal, { .key = keys::f1 + 2 }), "\x1bOR");
    EXPECT_EQ(press(terminal, { .key = keys::tab, .modifiers = Shift }), "\x1b[Z");
    EXPECT_EQ(press(terminal, { .key = keys::backspace }), "\x7f");
    terminal << "\x1b[?1h\x1b=\x1b[20h";
    EXPECT_EQ(press(terminal, { .key = keys::up }), "\x1bOA");
    EXPECT_EQ(press(terminal, { .key = keys::keypad0 + 5 }), "\x1bOu");
    EXPECT_EQ(press(terminal, { .key = keys::enter }), "\r\n");
    terminal << "\x1b[>4;2m";
    EXPECT_EQ(press(terminal, { .key = 'i', .modifiers = Control, .text = "i" }), "\x1b[27;5;105~");
    terminal << "\x1b[?2l";
    EXPECT_EQ(press(terminal, { .key = keys::left }),
        "\x1b"
        "D");
}

TEST(Input, kittyKeysTellEverythingThatWasAskedFor)
{
    Probe terminal;
    terminal << "\x1b[>1u";
    EXPECT_EQ(press(terminal, { .key = 'a', .text = "a" }), "a");
    EXPECT_EQ(press(terminal, { .key = 'a', .modifiers = Control }), "\x1b[97;5u");
    EXPECT_EQ(press(terminal, { .key = keys::escape }), "\x1b[27u");
    EXPECT_EQ(press(terminal, { .key = keys::enter }), "\r");
    EXPECT_EQ(press(terminal, { .key = keys::enter, .modifiers = Shift }), "\x1b[13;2u");
    EXPECT_EQ(press(terminal, { .key = keys::f1 + 2 }), "\x1b[13~");
    EXPECT_EQ(press(terminal, { .key = keys::leftShift, .modifiers = Shift }), "");
    terminal << "\x1b[>31u";
    EXPECT_EQ(press(terminal, { .key = 'a', .modifiers = Shift, .shifted = 'A', .base = 'q', .text = "A" }),
        "\x1b[97:65:113;2;65u");
    EXPECT_EQ(press(terminal, { .key = 'a', .action = KeyAction::Release }), "\x1b[97;1:3u");
    EXPECT_EQ(press(terminal, { .key = keys::up, .action = KeyAction::Repeat }), "\x1b[1;1:2A");
    EXPECT_EQ(press(terminal, { .key = keys::up }), "\x1b[A");
    EXPECT_EQ(terminal.ask("\x1b[?u\x1b[<u\x1b[?u\x1b[<9u\x1b[?u"), "\x1b[?31u\x1b[?1u\x1b[?0u");
    EXPECT_EQ(terminal.ask("\x1b[=5u\x1b[?1049h\x1b[?u\x1b[?1049l\x1b[?u"), "\x1b[?0u\x1b[?5u");
}

TEST(Input, theMouseSpeaksEveryProtocol)
{
    Probe terminal;
    const MouseEvent event { .button = 1, .column = 4, .row = 2, .modifiers = Control, .pixelX = 47, .pixelY = 55 };
    EXPECT_EQ(click(terminal, event), "");
    terminal << "\x1b[?1000h";
    EXPECT_EQ(click(terminal, event), "\x1b[M0%#");
    terminal << "\x1b[?1006h";
    EXPECT_EQ(click(terminal, event), "\x1b[<16;5;3M");
    MouseEvent wheel = event;
    wheel.button = 5;
    EXPECT_EQ(click(terminal, wheel), "\x1b[<81;5;3M");
    MouseEvent release = event;
    release.action = MouseAction::Release;
    EXPECT_EQ(click(terminal, release), "\x1b[<16;5;3m");
    terminal << "\x1b[?1016h\x1b[?1003h";
    EXPECT_EQ(click(terminal, { .action = MouseAction::Move, .pixelX = 9, .pixelY = 8 }), "\x1b[<35;10;9M");
    terminal << "\x1b[?1003l\x1b[?1007h\x1b[?1049h";
    EXPECT_EQ(click(terminal, wheel), "\x1b[B");
}

TEST(Input, aPasteCannotEndItsOwnBracket)
{
    Probe terminal;
    terminal << "\x1b[?2004h";
    terminal.paste("rm\x1b[201~ x\xc2\x9b\r\ny\tz");
    EXPECT_EQ(terminal.replies(), "\x1b[200~rm[201~ x\ry\tz\x1b[201~");
    terminal << "\x1b[?1004h";
    terminal.consumeReplies(terminal.replies().size());
    terminal.focus(true);
    EXPECT_EQ(terminal.replies(), "\x1b[I");
}

}
