#pragma once

#include "Dev/LumoScreen.h"

#include <QtQml/qqml.h>

namespace corvane::qml {

// The types of the rooms that this module's QML names. The rooms know nothing of QML.

struct TerminalWorkspaceViewType {
    Q_GADGET
    QML_FOREIGN(corvane::TerminalWorkspaceView)
    QML_NAMED_ELEMENT(TerminalWorkspaceView)
    QML_UNCREATABLE("The program makes it.")
};

struct LumoScreenType {
    Q_GADGET
    QML_FOREIGN(corvane::LumoScreen)
    QML_NAMED_ELEMENT(LumoScreen)
    QML_UNCREATABLE("The program makes it.")
};

struct DevInspectorType {
    Q_GADGET
    QML_FOREIGN(corvane::DevInspector)
    QML_NAMED_ELEMENT(DevInspector)
    QML_UNCREATABLE("The program makes it.")
};

struct DevRailType {
    Q_GADGET
    QML_FOREIGN(corvane::DevRail)
    QML_NAMED_ELEMENT(DevRail)
    QML_UNCREATABLE("The program makes it.")
};

struct DevProjectFormType {
    Q_GADGET
    QML_FOREIGN(corvane::DevProjectForm)
    QML_NAMED_ELEMENT(DevProjectForm)
    QML_UNCREATABLE("The program makes it.")
};

struct DevLauncherType {
    Q_GADGET
    QML_FOREIGN(corvane::DevLauncher)
    QML_NAMED_ELEMENT(DevLauncher)
    QML_UNCREATABLE("The program makes it.")
};

struct DevAssistantType {
    Q_GADGET
    QML_FOREIGN(corvane::DevAssistant)
    QML_NAMED_ELEMENT(DevAssistant)
    QML_UNCREATABLE("The program makes it.")
};

struct DevSRSType {
    Q_GADGET
    QML_FOREIGN(corvane::DevSRS)
    QML_NAMED_ELEMENT(DevSRS)
    QML_UNCREATABLE("The program makes it.")
};

struct DevTasksType {
    Q_GADGET
    QML_FOREIGN(corvane::DevTasks)
    QML_NAMED_ELEMENT(DevTasks)
    QML_UNCREATABLE("The program makes it.")
};

struct DevTeamType {
    Q_GADGET
    QML_FOREIGN(corvane::DevTeam)
    QML_NAMED_ELEMENT(DevTeam)
    QML_UNCREATABLE("The program makes it.")
};

struct DevMemoryType {
    Q_GADGET
    QML_FOREIGN(corvane::DevMemory)
    QML_NAMED_ELEMENT(DevMemory)
    QML_UNCREATABLE("The program makes it.")
};

struct DevServerAgentType {
    Q_GADGET
    QML_FOREIGN(corvane::DevServerAgent)
    QML_NAMED_ELEMENT(DevServerAgent)
    QML_UNCREATABLE("The program makes it.")
};

struct DevHealthType {
    Q_GADGET
    QML_FOREIGN(corvane::DevHealth)
    QML_NAMED_ELEMENT(DevHealth)
    QML_UNCREATABLE("The program makes it.")
};

struct DevSRSSectionType {
    Q_GADGET
    QML_FOREIGN(corvane::DevSRSSection)
    QML_VALUE_TYPE(srsSection)
};

struct DevHealthLineType {
    Q_GADGET
    QML_FOREIGN(corvane::DevHealthLine)
    QML_VALUE_TYPE(healthLine)
};

}
