#pragma once

#include "Engines/Account.h"
#include "Platform/ProcessLauncher.h"

namespace corvane {

class Keychain;
struct AppPaths;

/// The folder of the engine programs: in the resources, else in a developer's checkout under the home directory.
QString engineDir(const AppPaths& paths);

/// The Node to run them with; "/usr/bin/env", which searches the PATH, where none is found.
QString nodePath(const QString& engineDir);

/// Where the account's engine keeps its sign-in; nothing where the slug is no plain folder name.
std::optional<QString> stateFolder(const AppPaths& paths, const Account& account);

/// How to start the engine of an account. Reads the account's secret.
ProcessSpec engineSpec(const AppPaths& paths, Keychain& keychain, const Account& account);

/// How to start the tool server that all channels share.
ProcessSpec toolServerSpec(const AppPaths& paths, int port);

}
