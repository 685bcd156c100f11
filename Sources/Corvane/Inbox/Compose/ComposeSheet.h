#pragma once

#include "Engines/Account.h"
#include "Foundation/Literals.h"
#include "Inbox/Compose/Attachments.h"

#include <functional>

namespace corvane {

class AccountStore;
class EngineManager;

/// Whether the recipient is valid for the account's channel. Surrounding spaces are ignored.
bool recipientValid(Channel channel, const QString& recipient);

/// The label of the recipient field of a channel.
QString recipientLabel(Channel channel);

/// An example recipient; empty if the channel has no format.
QString recipientExample(Channel channel);

/// The recipient in the form of the channel's conversations: a WhatsApp number becomes its address.
QString recipientAddress(Channel channel, const QString& recipient);

/// An account that can send.
class AccountChoice {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString channel MEMBER channel)
public:
    QString id;
    QString label;
    QString channel; ///< such as "WHATSAPP"

    bool operator==(const AccountChoice&) const = default;
};

/// A message to a new person. It queues a draft, which needs approval before it is sent. What was typed is kept until
/// it is queued.
class ComposeSheet : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString note READ note CONSTANT)
    Q_PROPERTY(QString submitLabel READ submitLabel CONSTANT)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed) ///< only if there is no account
    Q_PROPERTY(bool shown READ shown NOTIFY changed)
    Q_PROPERTY(QList<corvane::AccountChoice> accounts READ accounts NOTIFY changed)
    Q_PROPERTY(QString accountId READ accountId WRITE setAccountId NOTIFY changed)
    Q_PROPERTY(QString recipientLabel READ label NOTIFY changed)
    Q_PROPERTY(QString recipientExample READ example NOTIFY changed)
    Q_PROPERTY(QString recipient READ recipient WRITE setRecipient NOTIFY changed)
    Q_PROPERTY(bool takesSubject READ takesSubject NOTIFY changed)
    Q_PROPERTY(QString subject READ subject WRITE setSubject NOTIFY changed)
    Q_PROPERTY(corvane::Attachments* attachments READ attachments CONSTANT)
    Q_PROPERTY(QString message READ message WRITE setMessage NOTIFY changed)
    Q_PROPERTY(bool valid READ valid NOTIFY changed)
    Q_PROPERTY(QString errorText READ errorText NOTIFY changed)
public:
    /// Queues the message; false on failure.
    using Submit
        = std::function<bool(const Account& account, const QString& recipient, const OutgoingMessage& message)>;

    /// The references outlive the sheet.
    ComposeSheet(
        AccountStore& accounts, EngineManager& engine, Desktop& desktop, Submit onSubmit, QObject* parent = nullptr);

    QString title() const { return u"New message"_s; }
    QString note() const { return u"Queues a draft — you approve it before it sends."_s; }
    QString submitLabel() const { return u"Queue draft"_s; }
    QString emptyText() const;
    bool shown() const { return m_shown; }
    QList<AccountChoice> accounts() const;
    QString accountId() const;
    void setAccountId(const QString& id); ///< an unknown id changes nothing
    QString label() const;
    QString example() const;
    const QString& recipient() const { return m_recipient; }
    void setRecipient(const QString& recipient);
    bool hasValidRecipient() const;
    bool takesSubject() const { return m_features.subject; }
    const QString& subject() const { return m_subject; }
    void setSubject(const QString& subject);
    Attachments* attachments() { return &m_attachments; }
    const QString& message() const { return m_message; }
    void setMessage(const QString& message);
    bool valid() const;
    const QString& errorText() const { return m_errorText; }

    Q_INVOKABLE void open();
    Q_INVOKABLE void close();
    Q_INVOKABLE void submit(); ///< only if valid; closes after the draft was queued

Q_SIGNALS:
    void changed();

private:
    std::optional<Account> account() const; ///< the chosen one, else the first
    void readFeatures(); ///< of that account
    void refuse(const QString& why);

    AccountStore& m_accounts;
    EngineManager& m_engine;
    Submit m_onSubmit;
    Attachments m_attachments;
    ChannelFeatures m_features;
    std::optional<QUuid> m_accountId;
    bool m_shown = false;
    QString m_recipient;
    QString m_subject;
    QString m_message;
    QString m_errorText;
};

}
