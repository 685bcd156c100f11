#pragma once

#include "Engines/MailSettings.h"
#include "Foundation/Result.h"
#include "Foundation/Scheduler.h"

#include <functional>

namespace corvane {

class ChildProcess;
class ProcessLauncher;
struct AppPaths;
struct ProcessSpec;

/// The mail servers of an address, as far as they were found.
struct FoundMailServers {
    MailServer imap;
    MailServer smtp;
    bool isGuess = false; ///< only the usual names, not confirmed
    QStringList strangers; ///< hosts that the user must confirm before a password is sent there
    bool needsToken = false; ///< this provider does not accept passwords
    QString hint; ///< how to sign in with this provider, one sentence; may be empty
};

/// Runs the e-mail engine before there is an account: to find the servers, and to try a sign-in. One run at a time.
/// Errors are for the user.
class MailProbe {
public:
    /// The references outlive the object.
    MailProbe(const AppPaths& paths, ProcessLauncher& launcher, Scheduler& scheduler);
    ~MailProbe(); ///< cancels

    void findServers(const QString& address, std::function<void(Result<FoundMailServers>)> done);
    void signIn(const QString& address, const MailSettings& settings, std::function<void(Result<void>)> done);
    void cancel(); ///< cancels the run without an answer

private:
    using Done = std::function<void(Result<QJsonObject>)>;
    void run(const ProcessSpec& spec, const QString& type, Done done);

    const AppPaths& m_paths;
    ProcessLauncher& m_launcher;
    Scheduler& m_scheduler;
    std::shared_ptr<ChildProcess> m_child; ///< null if none is running
    std::unique_ptr<Timer> m_limit;
    std::shared_ptr<bool> m_alive; ///< of the current run
};

}
