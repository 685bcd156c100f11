#pragma once

#include "Engines/MailProbe.h"
#include "Foundation/Literals.h"
#include "Presentation/Choice.h"
#include "Presentation/Form.h"
#include "Settings/AccountSetup.h"

#include <QUuid>

namespace corvane {

/// A mail server in the form of a mailbox.
class MailServerForm : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::FormField* host READ host CONSTANT)
    Q_PROPERTY(corvane::FormField* port READ port CONSTANT)
    Q_PROPERTY(QList<corvane::Choice> securities READ securities CONSTANT)
    Q_PROPERTY(QString security READ security WRITE setSecurity NOTIFY changed)
    Q_PROPERTY(QString securityLabel READ securityLabel NOTIFY changed)
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
    void setSecurity(const QString& id); ///< a default port is adapted

    /// The entered server; nothing without a host. A missing port becomes the default one, an invalid one 0.
    std::optional<MailServer> value() const;
    void fill(const std::optional<MailServer>& server);

Q_SIGNALS:
    void changed();

private:
    QString usualPort() const;

    const Ports m_usual;
    FormField m_host;
    FormField m_port;
    bool m_startTls = false;
};

/// Connects a mailbox, or changes how to sign in to it. It finds the servers of an address, lets the user correct them,
/// tries the sign-in, and stores only what worked.
class MailForm final : public corvane::Form {
    Q_OBJECT
    Q_PROPERTY(corvane::MailServerForm* imap READ imap CONSTANT)
    Q_PROPERTY(corvane::MailServerForm* smtp READ smtp CONSTANT)
    Q_PROPERTY(QString serversLabel READ serversLabel CONSTANT)
    Q_PROPERTY(QString serversText READ serversText NOTIFY changed)
    Q_PROPERTY(bool serversShown READ serversShown WRITE setServersShown NOTIFY changed)
public:
    MailForm(const AccountSetup& setup, const AppPaths& paths, ProcessLauncher& launcher, Scheduler& scheduler,
        QObject* parent = nullptr);

    bool isOpen() const override { return m_stage != Stage::Closed; }
    QString title() const override;
    QString hint() const override;
    QString buttonLabel() const override;
    bool complete() const override; ///< has an address, and a password or token command
    bool busy() const override { return m_stage == Stage::Finding || m_stage == Stage::Trying; }
    QString message() const override { return m_message; }
    QString messageKind() const override;
    MailServerForm* imap() { return &m_imap; }
    MailServerForm* smtp() { return &m_smtp; }
    QString serversLabel() const { return u"Server settings"_s; }
    QString serversText() const; ///< a summary for when they are folded
    bool serversShown() const { return m_serversShown; }
    void setServersShown(bool shown);

    void open();
    void edit(const Account& account);

    /// The next step: finds the servers, or accepts the confirmed ones, tries the sign-in, and connects.
    void submit() override;
    void cancel() override; ///< cancels the running step; without one, closes the sheet
    void close() override; ///< discards what was typed

private:
    enum class Stage { Closed, Asking, Finding, NeedsToken, Confirming, Trying, Failed };

    void edited() override;
    void fill(const QUuid& accountId, const QString& address, const MailSettings& settings);
    void findServers();
    void take(const FoundMailServers& found);
    void goOn();
    void trySignIn();
    void keep();
    void enter(Stage stage, const QString& message = {});
    QString typed(const QString& fieldId) const { return field(fieldId).trimmed(); }
    QString problem() const;
    MailSettings settings() const;

    const AccountSetup m_setup;
    MailProbe m_probe;
    MailServerForm m_imap;
    MailServerForm m_smtp;
    Stage m_stage = Stage::Closed;
    QString m_message;
    QUuid m_accountId; ///< of the account that is changed; null for a new one
    QJsonObject m_others; ///< other members of its secret
    FoundMailServers m_found; ///< its strangers are those that the user has not confirmed
    QString m_foundFor; ///< the domain whose servers are filled in
    bool m_serversShown = false;
};

}
