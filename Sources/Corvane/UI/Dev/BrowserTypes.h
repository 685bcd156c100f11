#pragma once

#include "Browser/BrowserView.h"

#include <QtQml/qqml.h>

namespace corvane::qml {

// The types of the room Browser that this module's QML names.

struct BrowserViewType {
    Q_GADGET
    QML_FOREIGN(corvane::BrowserView)
    QML_NAMED_ELEMENT(BrowserView)
    QML_UNCREATABLE("The program makes it.")
};

struct ChromiumBrowserControllerType {
    Q_GADGET
    QML_FOREIGN(corvane::ChromiumBrowserController)
    QML_NAMED_ELEMENT(ChromiumBrowserController)
    QML_UNCREATABLE("The program makes it.")
};

struct BrowserReportSheetType {
    Q_GADGET
    QML_FOREIGN(corvane::BrowserReportSheet)
    QML_NAMED_ELEMENT(BrowserReportSheet)
    QML_UNCREATABLE("The program makes it.")
};

struct BrowserIssueType {
    Q_GADGET
    QML_FOREIGN(corvane::BrowserIssue)
    QML_VALUE_TYPE(browserIssue)
};

struct BrowserSessionType {
    Q_GADGET
    QML_FOREIGN(corvane::BrowserSession)
    QML_VALUE_TYPE(browserSession)
};

}
