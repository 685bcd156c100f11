#pragma once

#include "Platform/SystemLanguageModel.h"

namespace corvane {

class UserDefaults;

/// The user's choice of local model and server: the defaults "nimb.localModel", "nimb.localModelUrl" and
/// "nimb.localModelElsewhere".
SystemLanguageModel::Choice modelChoice(const UserDefaults& defaults);

/// An empty text removes the default.
void setModelChoice(UserDefaults& defaults, const SystemLanguageModel::Choice& choice);

}
