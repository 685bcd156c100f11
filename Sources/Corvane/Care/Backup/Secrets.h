#pragma once

#include "Foundation/Result.h"
#include "Platform/Keyring.h"

namespace corvane {

struct AppPaths;

/// Every password and token of the profile, by account: those in its private file, and the keyring's. Waits for the
/// keyring, and for the user if it is locked. The error is for the user.
Result<Keyring::Secrets> readSecrets(const AppPaths& paths, Keyring& keyring);

}
