#include "Terminal/Core/Functions.h"

namespace corvane::terminal {

namespace {

constexpr Mode mouseModes[]
    = { Mode::MouseX10, Mode::MouseButtons, Mode::MouseHighlight, Mode::MouseDrag, Mode::MouseAny };
constexpr Mode mouseCodings[] = { Mode::MouseUtf8, Mode::MouseSgr, Mode::MouseUrxvt, Mode::MousePixels };
constexpr Mode keyKinds[]
    = { Mode::TerminfoKeys, Mode::SunKeys, Mode::HpKeys, Mode::ScoKeys, Mode::LegacyKeys, Mode::Vt220Keys };

/// At most one mode of the group is set.
template <size_t Count> bool choose(Modes& modes, const Mode (&group)[Count], Mode chosen, bool on)
{
    if (std::find(std::begin(group), std::end(group), chosen) == std::end(group))
        return false;
    for (const Mode mode : group) {
        if (on || mode == chosen)
            modes.set(mode, on && mode == chosen);
    }
    return true;
}

void setEach(Emulator& t, const Sequence& s, bool dec, bool on)
{
    for (int i = 0; i < s.params.count(); ++i) {
        if (const ModeEntry* entry = findMode(s.params.at(i), dec))
            t.setMode(*entry, on);
    }
}

/// The lowest conformance level that has the mode.
int leastLevel(Mode mode)
{
    return mode == Mode::NoClearOnColumns ? 500 : mode == Mode::LeftRightMargins ? 400 : 0;
}

constexpr int leastLevelOfRequests = 300;

int modeState(const Emulator& t, int number, bool dec)
{
    if (const ModeEntry* entry = findMode(number, dec))
        return t.modes.has(entry->mode) ? 1 : 2;
    return isPermanentlySet(number, dec) ? 3 : isPermanentlyReset(number, dec) ? 4 : 0;
}

}

void Emulator::setMode(const ModeEntry& entry, bool on)
{
    const Mode mode = entry.mode;
    if (on && level < leastLevel(mode))
        return;
    if (choose(modes, mouseModes, mode, on) || choose(modes, mouseCodings, mode, on)
        || choose(modes, keyKinds, mode, on))
        return;
    const bool before = modes.has(mode);
    modes.set(mode, on);
    switch (mode) {
    case Mode::Insert:
        return updatePlain();
    case Mode::Ansi:
        if (!on) {
            parser.setVt52(true);
            cursor.charsets = {};
            updatePlain();
        }
        return;
    case Mode::Columns132:
        if (modes.has(Mode::Allow132))
            setColumns(on ? 132 : 80);
        else
            modes.set(mode, before);
        return;
    case Mode::ReverseScreen:
        return touchAll();
    case Mode::Origin:
        return moveToAddress(0, 0);
    case Mode::AutoWrap:
        cursor.pendingWrap = cursor.pendingWrap && on;
        return;
    case Mode::LeftRightMargins:
        margins.left = 0;
        margins.right = size.columns;
        if (on)
            makeRowsSingle();
        return;
    case Mode::AlternateScreen47:
        return useAlternate(on);
    case Mode::AlternateScreen1047:
        if (!on && screen == &alternate) {
            for (int index = 0; index < rows(); ++index)
                eraseRow(index);
        }
        return useAlternate(on);
    case Mode::SaveCursor1048:
        return on ? saveCursor() : restoreCursor();
    case Mode::AlternateScreen1049:
        if (on && screen == &primary) {
            saveCursor();
            useAlternate(true);
            for (int index = 0; index < rows(); ++index)
                eraseRow(index);
        } else if (!on && screen == &alternate) {
            useAlternate(false);
            restoreCursor();
        }
        return;
    case Mode::GraphemeClusters:
        return graphemes.afterPlainText();
    case Mode::InBandResize:
        if (on)
            reportSize();
        return;
    case Mode::SynchronizedOutput:
        synchronizedSince = -1;
        return;
    default:
        return;
    }
}

void Emulator::useAlternate(bool on)
{
    if (on == (screen == &alternate) || (on && !modes.has(Mode::AllowAlternate)))
        return;
    if (on && (alternate.grid.rows() != size.rows || alternate.grid.columns() != size.columns)) {
        Grid fresh(size.columns, size.rows);
        fresh.adoptIds(alternate.grid);
        alternate.grid = std::move(fresh);
        alternate.anchors.screenGone();
    }
    screen = on ? &alternate : &primary;
    modes.set(Mode::AlternateScreen47, on);
    modes.set(Mode::AlternateScreen1047, on);
    modes.set(Mode::AlternateScreen1049, on);
    if (modes.has(Mode::LeftRightMargins))
        makeRowsSingle();
    keepInRow();
    touchAll();
}

void setModes(Emulator& t, const Sequence& s)
{
    setEach(t, s, false, true);
}

void resetModes(Emulator& t, const Sequence& s)
{
    setEach(t, s, false, false);
}

void setDecModes(Emulator& t, const Sequence& s)
{
    setEach(t, s, true, true);
}

void resetDecModes(Emulator& t, const Sequence& s)
{
    setEach(t, s, true, false);
}

void saveDecModes(Emulator& t, const Sequence& s)
{
    for (int i = 0; i < s.params.count(); ++i) {
        if (const ModeEntry* entry = findMode(s.params.at(i), true))
            t.savedModes.set(entry->mode, t.modes.has(entry->mode));
    }
}

void restoreDecModes(Emulator& t, const Sequence& s)
{
    for (int i = 0; i < s.params.count(); ++i) {
        if (const ModeEntry* entry = findMode(s.params.at(i), true))
            t.setMode(*entry, t.savedModes.has(entry->mode));
    }
}

void requestMode(Emulator& t, const Sequence& s)
{
    if (t.level >= leastLevelOfRequests)
        t.replyCsi(s.params.at(0), ';', modeState(t, s.params.at(0), false), "$y");
}

void requestDecMode(Emulator& t, const Sequence& s)
{
    if (t.level >= leastLevelOfRequests)
        t.replyCsi('?', s.params.at(0), ';', modeState(t, s.params.at(0), true), "$y");
}

void applicationKeypad(Emulator& t, const Sequence&)
{
    t.modes.set(Mode::ApplicationKeypad, true);
}

void numericKeypad(Emulator& t, const Sequence&)
{
    t.modes.set(Mode::ApplicationKeypad, false);
}

void sevenBitControls(Emulator& t, const Sequence&)
{
    t.eightBitReplies = false;
    t.parser.setRawC1(false);
}

void eightBitControls(Emulator& t, const Sequence&)
{
    if (t.level < 200)
        return;
    t.eightBitReplies = true;
    t.parser.setRawC1(true);
}

void selectLatin1(Emulator& t, const Sequence&)
{
    t.parser.setCoding(Coding::EightBit);
}

void selectUtf8(Emulator& t, const Sequence&)
{
    t.parser.setCoding(Coding::Utf8);
}

void ansiConformance(Emulator& t, const Sequence& s)
{
    Charsets& sets = t.cursor.charsets;
    sets.designated[0] = Charset::Ascii;
    sets.left = 0;
    if (s.final != 'N') {
        sets.designated[1] = Charset::Latin1;
        sets.right = 1;
    }
    t.updatePlain();
}

void conformanceLevel(Emulator& t, const Sequence& s)
{
    const int wanted = s.params.at(0);
    if (wanted < 61 || wanted > 65 || (wanted - 60) * 100 > t.config.vtLevel + 99)
        return;
    t.softReset();
    t.level = (wanted - 60) * 100 + (wanted == 65 ? 25 : 20);
    const bool eightBit = wanted > 61 && s.params.at(1) != 1;
    t.eightBitReplies = eightBit;
    t.parser.setRawC1(eightBit);
}

void softResetFunction(Emulator& t, const Sequence&)
{
    t.softReset();
}

void fullResetFunction(Emulator& t, const Sequence&)
{
    t.fullReset();
}

void doubleHeightTop(Emulator& t, const Sequence&)
{
    t.setLineSize(LineSize::Top);
}

void doubleHeightBottom(Emulator& t, const Sequence&)
{
    t.setLineSize(LineSize::Bottom);
}

void singleWidth(Emulator& t, const Sequence&)
{
    t.setLineSize(LineSize::Single);
}

void doubleWidth(Emulator& t, const Sequence&)
{
    t.setLineSize(LineSize::Wide);
}

void enterAnsi(Emulator& t, const Sequence&)
{
    t.parser.setVt52(false);
}

}
