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

/// Where the account's engine keeps what it remembers; nothing where the slug is no plain folder name.
std::optional<QString> memoryFolder(const AppPaths& paths, const Account& account);

/// Asks every engine to tell its history anew at its next start, since the database may have lost some of it.
void askToRetell(const AppPaths& paths);

/// Whether an account of that channel keeps a secret of its own.
bool keepsSecret(Channel channel);

/// How to start the engine of an account. Reads the account's secret.
ProcessSpec engineSpec(const AppPaths& paths, Keychain& keychain, const Account& account);

/// How to run the e-mail engine in one of the modes of the connect sheet, before there is an account. The secret stays
/// out of the environment where it is empty.
ProcessSpec mailProbeSpec(const AppPaths& paths, const QString& mode, const QString& address, const QString& secret);

/// "NAME=value" in the environment of the account's engine and of what it starts: which profile and account they
/// work for.
QString engineMark(const AppPaths& paths, const Account& account);

/// How an engine that was started so ended, in words. `code` is its exit status, or minus the signal's number.
QString exitWords(const ProcessSpec& spec, int code);

/// How to start the tool server that all channels share.
ProcessSpec toolServerSpec(const AppPaths& paths, int port);

}
