#pragma once

#include "Desk/CorvaneMenuBarView.h"
#include "Desk/QuickCapture.h"
#include "Voice/DictationAnywhere.h"

#include <QtQml/qqml.h>

namespace corvane::qml {

// The types of the rooms that this module's QML names. The rooms know nothing of QML.

struct CorvaneMenuBarViewType {
    Q_GADGET
    QML_FOREIGN(corvane::CorvaneMenuBarView)
    QML_NAMED_ELEMENT(CorvaneMenuBarView)
    QML_UNCREATABLE("The program makes it.")
};

struct QuickCaptureType {
    Q_GADGET
    QML_FOREIGN(corvane::QuickCapture)
    QML_NAMED_ELEMENT(QuickCapture)
    QML_UNCREATABLE("The program makes it.")
};

struct DictationAnywhereType {
    Q_GADGET
    QML_FOREIGN(corvane::DictationAnywhere)
    QML_NAMED_ELEMENT(DictationAnywhere)
    QML_UNCREATABLE("The program makes it.")
};

struct DictationPanelType {
    Q_GADGET
    QML_FOREIGN(corvane::DictationPanel)
    QML_NAMED_ELEMENT(DictationPanel)
    QML_UNCREATABLE("The program makes it.")
};

struct DayLineType {
    Q_GADGET
    QML_FOREIGN(corvane::DayLine)
    QML_VALUE_TYPE(dayLine)
};

struct ResourcesViewType {
    Q_GADGET
    QML_FOREIGN(corvane::ResourcesView)
    QML_NAMED_ELEMENT(ResourcesView)
    QML_UNCREATABLE("The program makes it.")
};

struct ProcessItemType {
    Q_GADGET
    QML_FOREIGN(corvane::ProcessItem)
    QML_VALUE_TYPE(processItem)
};

struct GlanceLineType {
    Q_GADGET
    QML_FOREIGN(corvane::GlanceLine)
    QML_VALUE_TYPE(glanceLine)
};

}
