#include "Terminals/TerminalCommands.h"

#include "Foundation/Literals.h"

namespace corvane {

QList<Command> terminalCommands()
{
    return at({ u"In a terminal"_s, 1 },
        {
            shortcut(u"newTerminal"_s, u"New terminal"_s, u"Ctrl+Shift+T"_s),
            shortcut(u"closeTerminal"_s, u"Close it"_s, u"Ctrl+Shift+W"_s),
            { u"nextTerminal"_s, u"Next terminal"_s, u"Ctrl+PgDown"_s, { u"Ctrl+PgDown"_s, u"Ctrl+Tab"_s } },
            { u"previousTerminal"_s, u"Previous terminal"_s, u"Ctrl+PgUp"_s, { u"Ctrl+PgUp"_s, u"Ctrl+Shift+Tab"_s } },
            shortcut(u"findInTerminal"_s, u"Find"_s, u"Ctrl+Shift+F"_s),
            shortcut(u"copyFromTerminal"_s, u"Copy"_s, u"Ctrl+Shift+C"_s),
            shortcut(u"pasteIntoTerminal"_s, u"Paste"_s, u"Ctrl+Shift+V"_s),
            shortcut(u"previousPrompt"_s, u"Previous prompt"_s, u"Ctrl+Shift+Z"_s),
            shortcut(u"nextPrompt"_s, u"Next prompt"_s, u"Ctrl+Shift+X"_s),
            shortcut(u"copyTranscript"_s, u"Copy the transcript"_s, u"Ctrl+Shift+Y"_s),
            { u"largerType"_s, u"Larger text"_s, u"Ctrl++"_s, { u"Ctrl++"_s, u"Ctrl+="_s } },
            shortcut(u"smallerType"_s, u"Smaller text"_s, u"Ctrl+-"_s),
            shortcut(u"usualType"_s, u"Default text size"_s, u"Ctrl+0"_s),
            { u"leaveTerminal"_s, u"Leave the terminal"_s, u"Shift+F6"_s },
        });
}

}
