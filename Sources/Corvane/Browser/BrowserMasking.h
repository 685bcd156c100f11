#pragma once

#include "Browser/BrowserEvents.h"
#include "Browser/BrowserSteps.h"

namespace corvane {

class BrowserPage;

// A page's texts with every known secret masked. Anything that shows or writes such a text takes it from here.

QString masked(const BrowserPage& page, const QString& text);
QList<BrowserConsoleEvent> maskedConsole(const BrowserPage& page);
QList<BrowserNetworkEvent> maskedRequests(const BrowserPage& page); ///< the failed ones
QList<BrowserStep> maskedSteps(const BrowserPage& page); ///< since an address was last opened

}
