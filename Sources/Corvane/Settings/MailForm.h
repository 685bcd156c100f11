#pragma once

#include "Engines/MailProbe.h"
#include "Foundation/Literals.h"
#include "Presentation/Choice.h"
#include "Settings/AccountSetup.h"
#include "Settings/FormField.h"

#include <QUuid>

namespace corvane {

/// A mail server in the form.
class MailServerForm : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::FormField* host READ host CONSTANT)
    Q_PROPERTY(corvane::FormField* port READ port CONSTANT)
    Q_PROPERTY(QList<corvane::Choice> securities READ securities CONSTANT)
    Q_PROPERTY(QString security READ security WRITE setSecurity NOTIFY securityChanged)
    Q_PROPERTY(QString securityLabel READ securityLabel NOTIFY securityChanged)
public:
    /// The usual port of each kind of encryption.
    struct Ports {
        int tls;
        int startTls;
    };
    MailServerForm(const QString& name, const Ports& usual);

    FormField* host() { return &m_host; }
    FormField* port() { return &m_port; }
    QList<Choice> securities() const;
    QString security() const; ///< the id of one of them
    QString securityLabel() const;
    void setSecurity(const QString& id); ///< a usual port changes with it

    /// What it says; nothing while no host is there. A missing port is the usual one, a wrong one is 0.
    std::optional<MailServer> value() const;
    void fill(const std::optional<MailServer>& server);

Q_SIGNALS:
    void securityChanged();

private:
    QString usualPort() const;

    const Ports m_usual;
    FormField m_host;
    FormField m_port;
    bool m_startTls = false;
};

/// The sheet that connects a mailbox, or changes how one is signed in to. It finds the servers of an address, lets the
/// person correct them, tries the sign-in, and keeps only what worked.
class MailForm : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString hint READ hint CONSTANT)
    Q_PROPERTY(corvane::FormField* address READ address CONSTANT)
    Q_PROPERTY(corvane::FormField* password READ password CONSTANT)
    Q_PROPERTY(corvane::FormField* userName READ userName CONSTANT)
    Q_PROPERTY(corvane::FormField* tokenCommand READ tokenCommand CONSTANT)
    Q_PROPERTY(corvane::MailServerForm* imap READ imap CONSTANT)
    Q_PROPERTY(corvane::MailServerForm* smtp READ smtp CONSTANT)
    Q_PROPERTY(QString serversLabel READ serversLabel CONSTANT)
    Q_PROPERTY(QString serversText READ serversText NOTIFY changed)
    Q_PROPERTY(bool serversShown READ serversShown WRITE setServersShown NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(QString message READ message NOTIFY changed)
    Q_PROPERTY(QString messageKind READ messageKind NOTIFY changed)
    Q_PROPERTY(QString buttonLabel READ buttonLabel NOTIFY changed)
    Q_PROPERTY(bool complete READ complete NOTIFY changed)
public:
    MailForm(const AccountSetup& setup, const AppPaths& paths, ProcessLauncher& launcher, Scheduler& scheduler,
        QObject* parent = nullptr);

    bool isOpen() const { return m_stage != Stage::Closed; }
    QString title() const;
    QString hint() const; ///< Markdown
    FormField* address() { return &m_address; }
    FormField* password() { return &m_password; }
    FormField* userName() { return &m_userName; }
    FormField* tokenCommand() { return &m_tokenCommand; }
    MailServerForm* imap() { return &m_imap; }
    MailServerForm* smtp() { return &m_smtp; }
    QString serversLabel() const { return u"Server settings"_s; }
    QString serversText() const; ///< in short, for while they are folded
    bool serversShown() const { return m_serversShown; }
    void setServersShown(bool shown);
    bool busy() const { return m_stage == Stage::Finding || m_stage == Stage::Trying; }
    QString message() const { return m_message; } ///< what goes on, what to decide, or what failed
    QString messageKind() const; ///< "plain", "warn" or "bad"
    QString buttonLabel() const;
    bool complete() const; ///< an address, and something to sign in with

    void open();
    void edit(const Account& account);

    /// Goes on: finds the servers, or takes those that were asked about, tries the sign-in, and connects.
    Q_INVOKABLE void submit();
    Q_INVOKABLE void cancel(); ///< ends what goes on; where nothing does, closes the sheet
    Q_INVOKABLE void close(); ///< what was typed is forgotten

Q_SIGNALS:
    void changed();

private:
    enum class Stage { Closed, Asking, Finding, NeedsToken, Confirming, Trying, Failed };

    void fill(const QUuid& accountId, const QString& address, const MailSettings& settings);
    void findServers();
    void take(const FoundMailServers& found);
    void goOn();
    void trySignIn();
    void keep();
    void enter(Stage stage, const QString& message = {});
    QString problem() const;
    MailSettings settings() const;

    const AccountSetup m_setup;
    MailProbe m_probe;
    FormField m_address;
    FormField m_password;
    FormField m_userName;
    FormField m_tokenCommand;
    MailServerForm m_imap;
    MailServerForm m_smtp;
    Stage m_stage = Stage::Closed;
    QString m_message;
    QUuid m_accountId; ///< of the account that is changed; null for a new one
    QJsonObject m_others; ///< what its secret says besides
    FoundMailServers m_found; ///< its strangers are those that the person has not confirmed
    QString m_foundFor; ///< the domain whose servers are filled in
    bool m_serversShown = false;
};

}
