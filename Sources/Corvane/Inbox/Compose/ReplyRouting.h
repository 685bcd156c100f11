#pragma once

#include "Foundation/Result.h"
#include "Presentation/Choice.h"
#include "Store/Messages/ChannelFeatures.h"
#include "Store/Messages/InboxQueries.h"

#include <QObject>
#include <functional>

namespace corvane {

class AccountStore;
class EngineManager;
class UserDefaults;
struct Account;

/// The channel for the reply to the open contact, and the conversation behind it.
class ReplyRouting : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::Choice> platforms READ platforms NOTIFY platformsChanged)
    Q_PROPERTY(QString replyPlatform READ replyPlatform WRITE setReplyPlatform NOTIFY changed)
    Q_PROPERTY(QString label READ label NOTIFY changed)
    Q_PROPERTY(bool takesSubject READ takesSubject NOTIFY changed)
public:
    using Say = std::function<bool(const Account& account, const QString& chatId)>; ///< false if not accepted

    /// All of them outlive the object.
    ReplyRouting(EngineManager& engine, AccountStore& accounts, UserDefaults& defaults, QObject* parent = nullptr);

    /// With an empty id: nobody. The channel is the remembered one while the contact still has it, else the first.
    void open(const ContactRow& contact);

    /// Passes the open contact's conversation on the channel to `say`, and remembers the channel if it was accepted.
    Result<void> send(const QString& platform, const Say& say);

    QList<Choice> platforms() const;
    const QString& replyPlatform() const { return m_replyPlatform; }
    void setReplyPlatform(const QString& platform); ///< must be a channel of the contact
    QString label() const;
    const ChannelFeatures& features() const { return m_features; }
    bool takesSubject() const { return m_features.subject; }

Q_SIGNALS:
    void platformsChanged();
    void changed();

private:
    void readFeatures();

    EngineManager& m_engine;
    AccountStore& m_accounts;
    UserDefaults& m_defaults;
    ContactRow m_contact;
    QString m_replyPlatform;
    ChannelFeatures m_features;
};

}
