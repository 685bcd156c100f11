#include "Browser/BrowserCommands.h"

#include "Foundation/Literals.h"

namespace corvane {

QList<Command> browserCommands()
{
    return at({ u"In the browser"_s, 1 },
        {
            { u"browserAddress"_s, u"To the address"_s, u"Ctrl+L"_s },
            { u"browserBack"_s, u"Back"_s, u"Alt+Left"_s },
            { u"browserForward"_s, u"Forward"_s, u"Alt+Right"_s },
            { u"browserReload"_s, u"Reload"_s, u"F5"_s },
            { u"browserFind"_s, u"Find on the page"_s, u"Ctrl+F"_s },
            { u"browserZoom"_s, u"Larger, smaller, usual size"_s, u"Ctrl++, Ctrl+-, Ctrl+0"_s },
            { u"browserReport"_s, u"Report a bug"_s, u"Ctrl+Shift+B"_s },
            { u"leaveBrowser"_s, u"Out of the page"_s, u"Shift+F6"_s },
        });
}

}
