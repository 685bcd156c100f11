// The table of all functions, by the sequences that invoke them. Names follow the DEC manuals, ECMA-48 and xterm's
// list.

#include "Terminal/Core/Functions.h"

#include <array>

namespace corvane::terminal {

namespace {

struct ControlEntry {
    std::string_view name;
    uint8_t code;
    Function* function;
};

struct SequenceEntry {
    std::string_view name;
    char leader;
    char intermediate;
    char final; ///< 0 matches any
    Function* function;
};

struct StringEntry {
    std::string_view name;
    char leader;
    char intermediate;
    char final;
    StringFunction* function;
};

constexpr ControlEntry controls[] = {
    { "BEL", 0x07, bell },
    { "BS", 0x08, backspaceControl },
    { "HT", 0x09, tab },
    { "LF", 0x0a, lineFeedControl },
    { "VT", 0x0b, lineFeedControl },
    { "FF", 0x0c, lineFeedControl },
    { "CR", 0x0d, carriageReturnControl },
    { "SO", 0x0e, shiftOut },
    { "SI", 0x0f, shiftIn },
    { "SUB", 0x1a, substitute },
    { "IND", 0x84, index },
    { "NEL", 0x85, nextLine },
    { "HTS", 0x88, setTab },
    { "RI", 0x8d, reverseIndex },
    { "SS2", 0x8e, singleShift2 },
    { "SS3", 0x8f, singleShift3 },
    { "SPA", 0x96, startGuarded },
    { "EPA", 0x97, endGuarded },
    { "DECID", 0x9a, deviceAttributes1 },
};

constexpr SequenceEntry escapes[] = {
    { "DECBI", 0, 0, '6', backIndex },
    { "DECSC", 0, 0, '7', saveCursorFunction },
    { "DECRC", 0, 0, '8', restoreCursorFunction },
    { "DECFI", 0, 0, '9', forwardIndex },
    { "DECANSI", 0, 0, '<', enterAnsi },
    { "DECKPAM", 0, 0, '=', applicationKeypad },
    { "DECKPNM", 0, 0, '>', numericKeypad },
    { "RIS", 0, 0, 'c', fullResetFunction },
    { "LS2", 0, 0, 'n', lockingShift },
    { "LS3", 0, 0, 'o', lockingShift },
    { "LS3R", 0, 0, '|', lockingShift },
    { "LS2R", 0, 0, '}', lockingShift },
    { "LS1R", 0, 0, '~', lockingShift },
    { "S7C1T", 0, ' ', 'F', sevenBitControls },
    { "S8C1T", 0, ' ', 'G', eightBitControls },
    { "ACS1", 0, ' ', 'L', ansiConformance },
    { "ACS2", 0, ' ', 'M', ansiConformance },
    { "ACS3", 0, ' ', 'N', ansiConformance },
    { "DECDHL", 0, '#', '3', doubleHeightTop },
    { "DECDHL", 0, '#', '4', doubleHeightBottom },
    { "DECSWL", 0, '#', '5', singleWidth },
    { "DECDWL", 0, '#', '6', doubleWidth },
    { "DECALN", 0, '#', '8', alignmentPattern },
    { "DOCS", 0, '%', '@', selectLatin1 },
    { "DOCS", 0, '%', 'G', selectUtf8 },
    { "SCS", 0, '(', 0, designateCharset },
    { "SCS", 0, ')', 0, designateCharset },
    { "SCS", 0, '*', 0, designateCharset },
    { "SCS", 0, '+', 0, designateCharset },
    { "SCS", 0, '-', 0, designateCharset },
    { "SCS", 0, '.', 0, designateCharset },
    { "SCS", 0, '/', 0, designateCharset },
};

constexpr SequenceEntry sequences[] = {
    { "ICH", 0, 0, '@', insertCharacters },
    { "CUU", 0, 0, 'A', cursorUp },
    { "CUD", 0, 0, 'B', cursorDown },
    { "CUF", 0, 0, 'C', cursorForward },
    { "CUB", 0, 0, 'D', cursorBackward },
    { "CNL", 0, 0, 'E', cursorNextLine },
    { "CPL", 0, 0, 'F', cursorPreviousLine },
    { "CHA", 0, 0, 'G', cursorColumn },
    { "CUP", 0, 0, 'H', cursorPosition },
    { "CHT", 0, 0, 'I', forwardTabs },
    { "ED", 0, 0, 'J', eraseDisplay },
    { "EL", 0, 0, 'K', eraseLine },
    { "IL", 0, 0, 'L', insertLines },
    { "DL", 0, 0, 'M', deleteLines },
    { "DCH", 0, 0, 'P', deleteCharacters },
    { "SU", 0, 0, 'S', scrollUpFunction },
    { "SD", 0, 0, 'T', scrollDownFunction },
    { "ECH", 0, 0, 'X', eraseCharacters },
    { "CBT", 0, 0, 'Z', backwardTabs },
    { "SD", 0, 0, '^', scrollDownFunction },
    { "HPA", 0, 0, '`', cursorColumn },
    { "HPR", 0, 0, 'a', columnRelative },
    { "REP", 0, 0, 'b', repeatCharacter },
    { "DA1", 0, 0, 'c', deviceAttributes1 },
    { "VPA", 0, 0, 'd', cursorRowAbsolute },
    { "VPR", 0, 0, 'e', rowRelative },
    { "HVP", 0, 0, 'f', cursorPosition },
    { "TBC", 0, 0, 'g', clearTabs },
    { "SM", 0, 0, 'h', setModes },
    { "RM", 0, 0, 'l', resetModes },
    { "SGR", 0, 0, 'm', selectGraphics },
    { "DSR", 0, 0, 'n', statusReport },
    { "DECSTBM", 0, 0, 'r', topBottomMargins },
    { "DECSLRM, SCOSC", 0, 0, 's', leftRightMargins },
    { "XTWINOPS", 0, 0, 't', windowOperation },
    { "SCORC", 0, 0, 'u', restoreCursorFunction },
    { "DECREQTPARM", 0, 0, 'x', terminalParameters },
    { "DECSED", '?', 0, 'J', selectiveEraseDisplay },
    { "DECSEL", '?', 0, 'K', selectiveEraseLine },
    { "XTSMGRAPHICS", '?', 0, 'S', graphicsAttributes },
    { "DECST8C", '?', 0, 'W', setTabsEvery8 },
    { "DECSET", '?', 0, 'h', setDecModes },
    { "DECRST", '?', 0, 'l', resetDecModes },
    { "XTQMODKEYS", '?', 0, 'm', keyModifierQuery },
    { "DECDSR", '?', 0, 'n', decStatusReport },
    { "XTRESTORE", '?', 0, 'r', restoreDecModes },
    { "XTSAVE", '?', 0, 's', saveDecModes },
    { "Kitty keyboard query", '?', 0, 'u', keyboardQuery },
    { "Kitty keyboard set", '=', 0, 'u', keyboardSet },
    { "Kitty keyboard push", '>', 0, 'u', keyboardPush },
    { "Kitty keyboard pop", '<', 0, 'u', keyboardPop },
    { "DA2", '>', 0, 'c', deviceAttributes2 },
    { "DA3", '=', 0, 'c', deviceAttributes3 },
    { "XTMODKEYS", '>', 0, 'm', keyModifierOptions },
    { "XTDISABLEMODKEYS", '>', 0, 'n', keyModifierDisable },
    { "XTVERSION", '>', 0, 'q', terminalVersion },
    { "XTSMTITLE", '>', 0, 't', titleModes },
    { "XTRMTITLE", '>', 0, 'T', titleModesReset },
    { "SL", 0, ' ', '@', shiftLeftFunction },
    { "SR", 0, ' ', 'A', shiftRightFunction },
    { "DECSCUSR", 0, ' ', 'q', cursorStyle },
    { "DECSTR", 0, '!', 'p', softResetFunction },
    { "DECSCL", 0, '"', 'p', conformanceLevel },
    { "DECSCA", 0, '"', 'q', selectProtection },
    { "DECRQDE", 0, '"', 'v', displayedExtent },
    { "XTPUSHCOLORS", 0, '#', 'P', pushColors },
    { "XTPOPCOLORS", 0, '#', 'Q', popColors },
    { "XTREPORTCOLORS", 0, '#', 'R', reportColors },
    { "XTCHECKSUM", 0, '#', 'y', checksumExtension },
    { "XTPUSHSGR", 0, '#', '{', pushGraphics },
    { "XTREPORTSGR", 0, '#', '|', reportGraphics },
    { "XTPOPSGR", 0, '#', '}', popGraphics },
    { "XTPUSHSGR", 0, '#', 'p', pushGraphics },
    { "XTPOPSGR", 0, '#', 'q', popGraphics },
    { "DECRQM", 0, '$', 'p', requestMode },
    { "DECRQM", '?', '$', 'p', requestDecMode },
    { "DECCARA", 0, '$', 'r', changeAttributes },
    { "DECRARA", 0, '$', 't', reverseAttributes },
    { "DECRQTSR", 0, '$', 'u', terminalStateReport },
    { "DECCRA", 0, '$', 'v', copyRectangle },
    { "DECRQPSR", 0, '$', 'w', presentationReport },
    { "DECFRA", 0, '$', 'x', fillRectangle },
    { "DECERA", 0, '$', 'z', eraseRectangle },
    { "DECSERA", 0, '$', '{', selectiveEraseRectangle },
    { "DECSCPP", 0, '$', '|', columnsPerPage },
    { "DECIC", 0, '\'', '}', insertColumns },
    { "DECDC", 0, '\'', '~', deleteColumns },
    { "DECSACE", 0, '*', 'x', attributeExtent },
    { "DECRQCRA", 0, '*', 'y', checksumRectangle },
    { "DECSNLS", 0, '*', '|', linesPerScreen },
};

constexpr StringEntry strings[] = {
    { "DECRQSS", 0, '$', 'q', requestStatus },
    { "DECRSPS", 0, '$', 't', restorePresentation },
    { "XTGETTCAP", 0, '+', 'q', requestTermcap },
    { "XTSETTCAP", 0, '+', 'p', setTermcap },
    { "DECUDK", 0, 0, '|', userKeys },
};

// The leader and intermediate select a block, the final byte an entry in it.
constexpr size_t finals = 0x3f;
constexpr size_t blockOf(char leader, char intermediate)
{
    const size_t first = leader ? size_t(leader - '<' + 1) : 0;
    const size_t second = intermediate ? size_t(intermediate - 0x20 + 1) : 0;
    return first * 17 + second;
}

constexpr auto sequenceIndex = [] {
    std::array<Function*, 5 * 17 * finals> functions {};
    for (const SequenceEntry& entry : sequences)
        functions[blockOf(entry.leader, entry.intermediate) * finals + size_t(entry.final - 0x40)] = entry.function;
    return functions;
}();

constexpr auto controlIndex = [] {
    std::array<Function*, 256> functions {};
    for (const ControlEntry& entry : controls)
        functions[entry.code] = entry.function;
    return functions;
}();

}

void runControl(Emulator& terminal, uint8_t control)
{
    static const Sequence none {};
    if (Function* const function = controlIndex[control])
        function(terminal, none);
}

void runEscape(Emulator& terminal, const Sequence& sequence)
{
    if (sequence.intermediateCount > 2)
        return;
    for (const SequenceEntry& entry : escapes) {
        const bool fits = entry.final == 0 ? sequence.intermediateCount > 0
                                           : entry.final == sequence.final && sequence.intermediateCount < 2;
        if (fits && entry.intermediate == sequence.intermediates[0])
            return entry.function(terminal, sequence);
    }
}

void runCsi(Emulator& terminal, const Sequence& sequence)
{
    if (sequence.intermediateCount > 1)
        return;
    const size_t block = blockOf(sequence.leader, sequence.intermediates[0]);
    if (Function* const function = sequenceIndex[block * finals + size_t(sequence.final - 0x40)])
        function(terminal, sequence);
}

StringFunction* findString(const Sequence& head)
{
    for (const StringEntry& entry : strings) {
        if (entry.leader == head.leader && entry.intermediate == head.intermediates[0] && entry.final == head.final
            && head.intermediateCount <= 1)
            return entry.function;
    }
    return nullptr;
}

}
