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

/// Where an address's mail is, as far as it could be found.
struct FoundMailServers {
    MailServer imap;
    MailServer smtp;
    bool isGuess = false; ///< nobody says so: they are the usual names
    QStringList strangers; ///< hosts that a person confirms before a password goes there
    bool needsToken = false; ///< this provider takes no password
    QString hint; ///< a sentence about its way to sign in; may be empty
};

/// The two short runs of the e-mail engine that come before an account: finding its servers, and a sign-in on trial.
/// One run at a time. A failure is told in words for the person.
class MailProbe {
public:
    /// The references outlive the object.
    MailProbe(const AppPaths& paths, ProcessLauncher& launcher, Scheduler& scheduler);
    ~MailProbe(); ///< cancels

    void findServers(const QString& address, std::function<void(Result<FoundMailServers>)> done);
    void signIn(const QString& address, const MailSettings& settings, std::function<void(Result<void>)> done);
    void cancel(); ///< ends the run, and nothing is told any more

private:
    using Done = std::function<void(Result<QJsonObject>)>;
    void run(const ProcessSpec& spec, const QString& type, Done done);

    const AppPaths& m_paths;
    ProcessLauncher& m_launcher;
    Scheduler& m_scheduler;
    std::shared_ptr<ChildProcess> m_child; ///< null while none runs
    std::unique_ptr<Timer> m_limit;
    std::shared_ptr<bool> m_alive; ///< of the run whose end is awaited
};

}
