#pragma once

#include <bitset>
#include <cstdint>
#include <span>
#include <string_view>

namespace corvane::terminal {

enum class Mode : uint8_t {
    // ANSI
    KeyboardLocked,
    Insert,
    SendReceive,
    NewLine,
    // DEC, xterm and later
    CursorKeys,
    Ansi,
    Columns132,
    SmoothScroll,
    ReverseScreen,
    Origin,
    AutoWrap,
    AutoRepeat,
    MouseX10,
    BlinkCursor,
    PrintFormFeed,
    PrintExtent,
    CursorVisible,
    Allow132,
    MoreFix,
    NationalSets,
    ReverseWrap,
    AlternateScreen47,
    ApplicationKeypad,
    BackspaceKey,
    LeftRightMargins,
    SixelDisplay,
    NoClearOnColumns,
    MouseButtons,
    MouseHighlight,
    MouseDrag,
    MouseAny,
    FocusEvents,
    MouseUtf8,
    MouseSgr,
    AlternateScroll,
    MouseUrxvt,
    MousePixels,
    ScrollOnOutput,
    ScrollOnKey,
    EightBitMeta,
    NumLockModifiers,
    MetaSendsEscape,
    DeleteSendsDel,
    AltSendsEscape,
    KeepSelection,
    SelectToClipboard,
    BellUrgent,
    BellRaise,
    KeepClipboard,
    ExtendedReverseWrap,
    AllowAlternate,
    AlternateScreen1047,
    SaveCursor1048,
    AlternateScreen1049,
    TerminfoKeys,
    SunKeys,
    HpKeys,
    ScoKeys,
    LegacyKeys,
    Vt220Keys,
    PrivateColorRegisters,
    BracketedPaste,
    SynchronizedOutput,
    GraphemeClusters,
    ColorSchemeReports,
    InBandResize,
    SixelCursorRight,
    Count
};

struct ModeEntry {
    int number;
    bool dec; ///< DEC private: sequences have the leader ?
    Mode mode;
    bool initial;
    std::string_view name; ///< used in dumps; empty for modes that they omit
};

/// Every mode that can be changed.
std::span<const ModeEntry> modeTable();
const ModeEntry* findMode(int number, bool dec);
/// Modes that DECRQM reports as permanently set or reset.
bool isPermanentlyReset(int number, bool dec);
bool isPermanentlySet(int number, bool dec);

class Modes {
public:
    Modes() { reset(); }
    void reset();
    bool has(Mode mode) const { return m_set[size_t(mode)]; }
    void set(Mode mode, bool on) { m_set[size_t(mode)] = on; }

private:
    std::bitset<size_t(Mode::Count)> m_set;
};

}
