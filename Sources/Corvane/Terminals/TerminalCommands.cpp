#include "Terminals/TerminalCommands.h"

namespace corvane {

using namespace Qt::StringLiterals;

QList<Command> terminalCommands()
{
    const CommandPlace place { u"In a terminal"_s, 1 };
    return {
        { u"newTerminal"_s, u"New terminal"_s, u"Ctrl+Shift+T"_s, { u"Ctrl+Shift+T"_s }, place },
        { u"closeTerminal"_s, u"Close it"_s, u"Ctrl+Shift+W"_s, { u"Ctrl+Shift+W"_s }, place },
        { u"nextTerminal"_s, u"Next terminal"_s, u"Ctrl+PgDown"_s, { u"Ctrl+PgDown"_s, u"Ctrl+Tab"_s }, place },
        { u"previousTerminal"_s, u"Previous terminal"_s, u"Ctrl+PgUp"_s, { u"Ctrl+PgUp"_s, u"Ctrl+Shift+Tab"_s },
            place },
        { u"findInTerminal"_s, u"Find"_s, u"Ctrl+Shift+F"_s, { u"Ctrl+Shift+F"_s }, place },
        { u"copyFromTerminal"_s, u"Copy"_s, u"Ctrl+Shift+C"_s, { u"Ctrl+Shift+C"_s }, place },
        { u"pasteIntoTerminal"_s, u"Paste"_s, u"Ctrl+Shift+V"_s, { u"Ctrl+Shift+V"_s }, place },
        { u"largerType"_s, u"Larger type"_s, u"Ctrl++"_s, { u"Ctrl++"_s, u"Ctrl+="_s }, place },
        { u"smallerType"_s, u"Smaller type"_s, u"Ctrl+-"_s, { u"Ctrl+-"_s }, place },
        { u"usualType"_s, u"Usual type"_s, u"Ctrl+0"_s, { u"Ctrl+0"_s }, place },
        { u"leaveTerminal"_s, u"Out of the terminal"_s, u"Shift+F6"_s, {}, place },
    };
}

}
