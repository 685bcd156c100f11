#pragma once

#include "Terminal/Core/Emulator.h"

namespace corvane::terminal {

/// Look the function up in the table and run it; unknown ones are ignored.
void runControl(Emulator& terminal, uint8_t control);
void runEscape(Emulator& terminal, const Sequence& sequence);
void runCsi(Emulator& terminal, const Sequence& sequence);

using Function = void(Emulator& terminal, const Sequence& sequence);
using StringFunction = void(Emulator& terminal, const Sequence& head, std::string_view data);

/// The function for a device control string; null if there is none.
StringFunction* findString(const Sequence& head);

// C0 and C1
Function bell, backspaceControl, tab, lineFeedControl, carriageReturnControl, shiftOut, shiftIn, substitute, index,
    nextLine, setTab, reverseIndex, singleShift2, singleShift3, startGuarded, endGuarded, deviceAttributes1;
// Escapes
Function backIndex, forwardIndex, saveCursorFunction, restoreCursorFunction, applicationKeypad, numericKeypad,
    fullResetFunction, designateCharset, lockingShift, doubleHeightTop, doubleHeightBottom, singleWidth, doubleWidth,
    alignmentPattern, sevenBitControls, eightBitControls, selectLatin1, selectUtf8, ansiConformance, enterAnsi;
// The cursor
Function cursorUp, cursorDown, cursorForward, cursorBackward, cursorNextLine, cursorPreviousLine, cursorColumn,
    cursorPosition, cursorRowAbsolute, columnRelative, rowRelative, forwardTabs, backwardTabs, clearTabs, setTabsEvery8,
    topBottomMargins, leftRightMargins, cursorStyle, repeatCharacter;
// Erasing, inserting and deleting
Function eraseDisplay, eraseLine, selectiveEraseDisplay, selectiveEraseLine, eraseCharacters, insertCharacters,
    deleteCharacters, insertLines, deleteLines, scrollUpFunction, scrollDownFunction, shiftLeftFunction,
    shiftRightFunction, insertColumns, deleteColumns;
// Rectangles
Function fillRectangle, eraseRectangle, selectiveEraseRectangle, copyRectangle, changeAttributes, reverseAttributes,
    attributeExtent, checksumRectangle, checksumExtension;
// Attributes
Function selectGraphics, pushGraphics, popGraphics, reportGraphics, selectProtection;
// Modes
Function setModes, resetModes, setDecModes, resetDecModes, saveDecModes, restoreDecModes, requestMode, requestDecMode,
    conformanceLevel, softResetFunction, keyModifierOptions, keyModifierDisable, keyModifierQuery, keyboardSet,
    keyboardPush, keyboardPop, keyboardQuery, titleModes, titleModesReset;
// Reports
Function deviceAttributes2, deviceAttributes3, statusReport, decStatusReport, terminalParameters, terminalVersion,
    presentationReport, displayedExtent, terminalStateReport, windowOperation, columnsPerPage, linesPerScreen,
    graphicsAttributes, pushColors, popColors, reportColors;
StringFunction requestStatus, requestTermcap, setTermcap, restorePresentation, userKeys;

}
