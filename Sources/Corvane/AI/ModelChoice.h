#pragma once

#include "Platform/SystemLanguageModel.h"

namespace corvane {

class UserDefaults;

/// Which local model the user picked, and where it is served: the defaults "nimb.localModel",
/// "nimb.localModelUrl" and "nimb.localModelElsewhere".
SystemLanguageModel::Choice modelChoice(const UserDefaults& defaults);

/// An empty text takes the default back.
void setModelChoice(UserDefaults& defaults, const SystemLanguageModel::Choice& choice);

}
