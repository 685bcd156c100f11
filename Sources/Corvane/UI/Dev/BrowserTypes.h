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

struct BrowserSurfaceType {
    Q_GADGET
    QML_FOREIGN(corvane::BrowserSurface)
    QML_NAMED_ELEMENT(BrowserSurface)
    QML_UNCREATABLE("The program makes it.")
};

struct BrowserReportSheetType {
    Q_GADGET
    QML_FOREIGN(corvane::BrowserReportSheet)
    QML_NAMED_ELEMENT(BrowserReportSheet)
    QML_UNCREATABLE("The program makes it.")
};

struct BrowserBlackoutType {
    Q_GADGET
    QML_FOREIGN(corvane::BrowserBlackout)
    QML_NAMED_ELEMENT(BrowserBlackout)
    QML_UNCREATABLE("The program makes it.")
};

struct BrowserDisplayType {
    Q_GADGET
    QML_FOREIGN(corvane::BrowserDisplay)
    QML_NAMED_ELEMENT(BrowserDisplay)
    QML_UNCREATABLE("The program makes it.")
};

struct BrowserHistoryType {
    Q_GADGET
    QML_FOREIGN(corvane::BrowserHistory)
    QML_NAMED_ELEMENT(BrowserHistory)
    QML_UNCREATABLE("The program makes it.")
};

struct BrowserIssuesType {
    Q_GADGET
    QML_FOREIGN(corvane::BrowserIssues)
    QML_NAMED_ELEMENT(BrowserIssues)
    QML_UNCREATABLE("The program makes it.")
};

struct BrowserPickerType {
    Q_GADGET
    QML_FOREIGN(corvane::BrowserPicker)
    QML_NAMED_ELEMENT(BrowserPicker)
    QML_UNCREATABLE("The program makes it.")
};

struct BrowserFieldPickerType {
    Q_GADGET
    QML_FOREIGN(corvane::BrowserFieldPicker)
    QML_NAMED_ELEMENT(BrowserFieldPicker)
    QML_UNCREATABLE("The program makes it.")
};

struct BrowserFieldOptionType {
    Q_GADGET
    QML_FOREIGN(corvane::BrowserFieldOption)
    QML_VALUE_TYPE(browserFieldOption)
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
