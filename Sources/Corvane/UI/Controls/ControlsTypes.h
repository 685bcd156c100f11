#pragma once

#include "Presentation/Choice.h"
#include "Presentation/Commands.h"
#include "Presentation/Form.h"
#include "Presentation/RowListModel.h"
#include "Web/WorkspaceChoice.h"

#include <QtQml/QQmlEngine>
#include <QtQml/qqml.h>

namespace corvane::qml {

// The types of the rooms that this module's QML names. The rooms know nothing of QML.

struct GadgetListModelType {
    Q_GADGET
    QML_FOREIGN(corvane::GadgetListModel)
    QML_NAMED_ELEMENT(GadgetListModel)
    QML_UNCREATABLE("The program makes it.")
};

struct HoldingListModelType {
    Q_GADGET
    QML_FOREIGN(corvane::HoldingListModel)
    QML_NAMED_ELEMENT(HoldingListModel)
    QML_UNCREATABLE("The program makes it.")
};

struct FormType {
    Q_GADGET
    QML_FOREIGN(corvane::Form)
    QML_NAMED_ELEMENT(Form)
    QML_UNCREATABLE("The program makes it.")
};

struct FormFieldType {
    Q_GADGET
    QML_FOREIGN(corvane::FormField)
    QML_NAMED_ELEMENT(FormField)
    QML_UNCREATABLE("The program makes it.")
};

struct ChoiceType {
    Q_GADGET
    QML_FOREIGN(corvane::Choice)
    QML_VALUE_TYPE(choice)
};

struct TabItemType {
    Q_GADGET
    QML_FOREIGN(corvane::TabItem)
    QML_VALUE_TYPE(tabItem)
};

struct WorkspaceChoiceType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkspaceChoice)
    QML_VALUE_TYPE(workspaceChoice)
};

struct ContactChoiceType {
    Q_GADGET
    QML_FOREIGN(corvane::ContactChoice)
    QML_VALUE_TYPE(contactChoice)
};

struct CommandRowType {
    Q_GADGET
    QML_FOREIGN(corvane::CommandRow)
    QML_VALUE_TYPE(commandRow)
};

/// The program's only table, which the window passes to its engine.
struct CommandsType {
    Q_GADGET
    QML_FOREIGN(corvane::Commands)
    QML_NAMED_ELEMENT(Commands)
    QML_SINGLETON
public:
    static constexpr const char* property = "commands";
    static corvane::Commands* create(QQmlEngine* engine, QJSEngine*)
    {
        auto* const commands = engine->property(property).value<corvane::Commands*>();
        QJSEngine::setObjectOwnership(commands, QJSEngine::CppOwnership);
        return commands;
    }
};

}
