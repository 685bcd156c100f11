#include "Terminal/Core/Modes.h"

#include <algorithm>

namespace corvane::terminal {

namespace {

constexpr ModeEntry entries[] = {
    { 2, false, Mode::KeyboardLocked, false, "kam" },
    { 4, false, Mode::Insert, false, "irm" },
    { 12, false, Mode::SendReceive, true, "srm" },
    { 20, false, Mode::NewLine, false, "lnm" },
    { 1, true, Mode::CursorKeys, false, "decckm" },
    { 2, true, Mode::Ansi, true, "decanm" },
    { 3, true, Mode::Columns132, false, "deccolm" },
    { 4, true, Mode::SmoothScroll, false, "decsclm" },
    { 5, true, Mode::ReverseScreen, false, "decscnm" },
    { 6, true, Mode::Origin, false, "decom" },
    { 7, true, Mode::AutoWrap, true, "decawm" },
    { 8, true, Mode::AutoRepeat, true, "decarm" },
    { 9, true, Mode::MouseX10, false, "mouse_x10" },
    { 12, true, Mode::BlinkCursor, false, "cursor_blink" },
    { 18, true, Mode::PrintFormFeed, false, "" },
    { 19, true, Mode::PrintExtent, true, "" },
    { 25, true, Mode::CursorVisible, true, "dectcem" },
    { 40, true, Mode::Allow132, false, "allow_132" },
    { 41, true, Mode::MoreFix, false, "" },
    { 42, true, Mode::NationalSets, false, "decnrcm" },
    { 45, true, Mode::ReverseWrap, false, "reverse_wrap" },
    { 47, true, Mode::AlternateScreen47, false, "" },
    { 66, true, Mode::ApplicationKeypad, false, "decnkm" },
    { 67, true, Mode::BackspaceKey, false, "decbkm" },
    { 69, true, Mode::LeftRightMargins, false, "declrmm" },
    { 80, true, Mode::SixelDisplay, false, "decsdm" },
    { 95, true, Mode::NoClearOnColumns, false, "decncsm" },
    { 1000, true, Mode::MouseButtons, false, "mouse_buttons" },
    { 1001, true, Mode::MouseHighlight, false, "" },
    { 1002, true, Mode::MouseDrag, false, "mouse_drag" },
    { 1003, true, Mode::MouseAny, false, "mouse_any" },
    { 1004, true, Mode::FocusEvents, false, "focus" },
    { 1005, true, Mode::MouseUtf8, false, "mouse_utf8" },
    { 1006, true, Mode::MouseSgr, false, "mouse_sgr" },
    { 1007, true, Mode::AlternateScroll, false, "alternate_scroll" },
    { 1010, true, Mode::ScrollOnOutput, false, "" },
    { 1011, true, Mode::ScrollOnKey, false, "" },
    { 1015, true, Mode::MouseUrxvt, false, "mouse_urxvt" },
    { 1016, true, Mode::MousePixels, false, "mouse_pixels" },
    { 1034, true, Mode::EightBitMeta, false, "" },
    { 1035, true, Mode::NumLockModifiers, true, "" },
    { 1036, true, Mode::MetaSendsEscape, true, "" },
    { 1037, true, Mode::DeleteSendsDel, false, "" },
    { 1039, true, Mode::AltSendsEscape, true, "" },
    { 1040, true, Mode::KeepSelection, false, "" },
    { 1041, true, Mode::SelectToClipboard, false, "" },
    { 1042, true, Mode::BellUrgent, false, "" },
    { 1043, true, Mode::BellRaise, false, "" },
    { 1044, true, Mode::KeepClipboard, false, "" },
    { 1045, true, Mode::ExtendedReverseWrap, false, "" },
    { 1046, true, Mode::AllowAlternate, true, "" },
    { 1047, true, Mode::AlternateScreen1047, false, "" },
    { 1048, true, Mode::SaveCursor1048, false, "" },
    { 1049, true, Mode::AlternateScreen1049, false, "" },
    { 1050, true, Mode::TerminfoKeys, false, "" },
    { 1051, true, Mode::SunKeys, false, "" },
    { 1052, true, Mode::HpKeys, false, "" },
    { 1053, true, Mode::ScoKeys, false, "" },
    { 1060, true, Mode::LegacyKeys, false, "" },
    { 1061, true, Mode::Vt220Keys, false, "" },
    { 1070, true, Mode::PrivateColorRegisters, true, "" },
    { 2004, true, Mode::BracketedPaste, false, "bracketed_paste" },
    { 2026, true, Mode::SynchronizedOutput, false, "synchronized" },
    { 2027, true, Mode::GraphemeClusters, false, "graphemes" },
    { 2031, true, Mode::ColorSchemeReports, false, "color_scheme" },
    { 2048, true, Mode::InBandResize, false, "in_band_resize" },
    { 8452, true, Mode::SixelCursorRight, false, "" },
};

bool isIn(std::span<const int> numbers, int number)
{
    return std::ranges::find(numbers, number) != numbers.end();
}

constexpr int ansiAlwaysReset[] = { 1, 3, 5, 7, 10, 11, 13, 14, 15, 16, 17, 18, 19 };
constexpr int decAlwaysReset[] = { 60, 61, 68, 73, 81, 96, 97, 98, 99, 100, 101, 102, 103, 104, 106 };
constexpr int decAlwaysSet[] = { 14 };

}

std::span<const ModeEntry> modeTable()
{
    return entries;
}

const ModeEntry* findMode(int number, bool dec)
{
    const auto found = std::ranges::find_if(
        entries, [&](const ModeEntry& entry) { return entry.number == number && entry.dec == dec; });
    return found == std::end(entries) ? nullptr : found;
}

bool isPermanentlyReset(int number, bool dec)
{
    return dec ? isIn(decAlwaysReset, number) : isIn(ansiAlwaysReset, number);
}

bool isPermanentlySet(int number, bool dec)
{
    return dec && isIn(decAlwaysSet, number);
}

void Modes::reset()
{
    for (const ModeEntry& entry : entries)
        set(entry.mode, entry.initial);
}

}
