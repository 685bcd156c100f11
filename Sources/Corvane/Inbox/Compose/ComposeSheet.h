#pragma once

#include "Engines/Account.h"
#include "Foundation/Literals.h"
#include "Inbox/Compose/Attachments.h"

#include <functional>

namespace corvane {

class AccountStore;
class EngineManager;

/// Whether a message can be addressed so through the account. Blanks around it do not count.
bool recipientValid(Channel channel, const QString& recipient);

/// What the recipient of a channel is called.
QString recipientLabel(Channel channel);

/// What one looks like; empty where that is the channel's to say.
QString recipientExample(Channel channel);

/// The recipient as the channel's conversations name it: a WhatsApp number becomes its address.
QString recipientAddress(Channel channel, const QString& recipient);

/// An account to send from.
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

/// A message to a new person. It queues a draft, which a person approves before it goes out. What was typed stays
/// until it is queued.
class ComposeSheet : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString note READ note CONSTANT)
    Q_PROPERTY(QString submitLabel READ submitLabel CONSTANT)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed) ///< only where there is no account
    Q_PROPERTY(bool shown READ shown NOTIFY changed)
    Q_PROPERTY(QList<corvane::AccountChoice> accounts READ accounts NOTIFY changed)
    Q_PROPERTY(QString accountId READ accountId WRITE setAccountId NOTIFY changed)
    Q_PROPERTY(QString recipientLabel READ label NOTIFY changed)
    Q_PROPERTY(QString recipientExample READ example NOTIFY changed)
    Q_PROPERTY(QString recipient READ recipient WRITE setRecipient NOTIFY changed)
    Q_PROPERTY(bool recipientValid READ hasValidRecipient NOTIFY changed)
    Q_PROPERTY(bool takesSubject READ takesSubject NOTIFY changed)
    Q_PROPERTY(QString subject READ subject WRITE setSubject NOTIFY changed)
    Q_PROPERTY(corvane::Attachments* attachments READ attachments CONSTANT)
    Q_PROPERTY(QString message READ message WRITE setMessage NOTIFY changed)
    Q_PROPERTY(bool valid READ valid NOTIFY changed)
    Q_PROPERTY(QString errorText READ errorText NOTIFY changed)
public:
    /// Queues the message; false where that failed.
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
    Q_INVOKABLE void submit(); ///< only while valid; closes where the draft was queued

Q_SIGNALS:
    void changed();

private:
    std::optional<Account> account() const; ///< the one picked, else the first
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
