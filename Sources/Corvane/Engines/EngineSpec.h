#pragma once

#include "Engines/Account.h"
#include "Platform/ProcessLauncher.h"

namespace corvane {

class Keychain;
struct AppPaths;

/// The folder of the engine programs: in the resources, else in a developer's checkout below the home directory.
QString engineDir(const AppPaths& paths);

/// The Node executable; "/usr/bin/env", which searches the PATH, if none is found.
QString nodePath(const QString& engineDir);

/// The folder with the engine's sign-in; nothing if the slug is not a plain folder name.
std::optional<QString> stateFolder(const AppPaths& paths, const Account& account);

/// The folder with the engine's state; nothing if the slug is not a plain folder name.
std::optional<QString> memoryFolder(const AppPaths& paths, const Account& account);

/// Makes every engine send its history again at its next start, since the database may have lost some of it.
void askToRetell(const AppPaths& paths);

/// Whether an account of that channel keeps a secret of its own.
bool keepsSecret(Channel channel);

/// How to start an account's engine. Reads the account's secret.
ProcessSpec engineSpec(const AppPaths& paths, Keychain& keychain, const Account& account);

/// How to run the e-mail engine in one of the modes of the connect sheet, before there is an account. An empty secret
/// is left out of the environment.
ProcessSpec mailProbeSpec(const AppPaths& paths, const QString& mode, const QString& address, const QString& secret);

/// "NAME=value" in the environment of the account's engine and its children: identifies the profile and the account.
QString engineMark(const AppPaths& paths, const Account& account);

/// The exit of an engine, for the user. `code` is its exit status, or minus the signal's number.
QString exitWords(const ProcessSpec& spec, int code);

/// How to start the tool server that all channels share.
ProcessSpec toolServerSpec(const AppPaths& paths, int port);

}
