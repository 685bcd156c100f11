#pragma once

#include "Terminals/TerminalsView.h"

#include <QtQml/qqml.h>

namespace corvane::qml {

// The types of the rooms that this module's QML names. The rooms know nothing of QML.

struct TerminalsViewType {
    Q_GADGET
    QML_FOREIGN(corvane::TerminalsView)
    QML_NAMED_ELEMENT(TerminalsView)
    QML_UNCREATABLE("The program makes it.")
};

struct TerminalQuestionType {
    Q_GADGET
    QML_FOREIGN(corvane::TerminalQuestion)
    QML_NAMED_ELEMENT(TerminalQuestion)
    QML_UNCREATABLE("The program makes it.")
};

struct TerminalFontSizeType {
    Q_GADGET
    QML_FOREIGN(corvane::TerminalFontSize)
    QML_NAMED_ELEMENT(TerminalFontSize)
    QML_UNCREATABLE("The program makes it.")
};

struct LumoTerminalSessionType {
    Q_GADGET
    QML_FOREIGN(corvane::LumoTerminalSession)
    QML_NAMED_ELEMENT(LumoTerminalSession)
    QML_UNCREATABLE("The program makes it.")
};

struct TerminalSearchType {
    Q_GADGET
    QML_FOREIGN(corvane::TerminalSearch)
    QML_NAMED_ELEMENT(TerminalSearch)
    QML_UNCREATABLE("The program makes it.")
};

struct TerminalTabType {
    Q_GADGET
    QML_FOREIGN(corvane::TerminalTab)
    QML_VALUE_TYPE(terminalTab)
};

}
