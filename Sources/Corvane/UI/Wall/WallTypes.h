#pragma once

#include "Shell/LoginWallView.h"
#include "Shell/StoreRecovery.h"

#include <QtQml/qqml.h>

namespace corvane::qml {

// The types of the rooms that this module's QML names. The rooms know nothing of QML.

struct LoginWallViewType {
    Q_GADGET
    QML_FOREIGN(corvane::LoginWallView)
    QML_NAMED_ELEMENT(LoginWallView)
    QML_UNCREATABLE("The program makes it.")
};

struct StoreRecoveryType {
    Q_GADGET
    QML_FOREIGN(corvane::StoreRecovery)
    QML_NAMED_ELEMENT(StoreRecovery)
    QML_UNCREATABLE("The program makes it.")
};

struct RecoveryChoiceType {
    Q_GADGET
    QML_FOREIGN(corvane::RecoveryChoice)
    QML_VALUE_TYPE(recoveryChoice)
};

}
