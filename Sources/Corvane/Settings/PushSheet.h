#pragma once

#include "Foundation/Literals.h"
#include "Presentation/RowListModel.h"
#include "Store/Sync/CloudPush.h"

namespace corvane {

class AccountStore;
class SessionStore;
class SyncClient;

/// A chat in the sheet shown before a push.
class PushChatLine {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(bool kept MEMBER kept)
public:
    QString id; ///< of the conversation
    QString title;
    QString detail; ///< such as "12 messages since 3 May 2026"
    bool kept = false; ///< will be kept local
    QString account;

    static constexpr const char* role = "chat";
    const QString& key() const { return id; }
    bool operator==(const PushChatLine&) const = default;
};

/// An account in that sheet.
class PushAccountLine {
    Q_GADGET
    Q_PROPERTY(QString slug MEMBER slug)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(bool kept MEMBER kept)
public:
    QString slug;
    QString name;
    QString detail; ///< such as "3 chats, 42 messages"
    bool kept = false;

    bool operator==(const PushAccountLine&) const = default;
};

/// A chat or an account that never leaves this machine.
class KeptLine {
    Q_GADGET
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString detail MEMBER detail)
public:
    QString title;
    QString detail;

    bool operator==(const KeptLine&) const = default;
};

/// The information before a push: what leaves the machine, where it goes, and what can be excluded.
class PushSheet : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
    Q_PROPERTY(QString state READ state NOTIFY changed) ///< "loading", "failed", "empty" or "filled"
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString targetText READ targetText NOTIFY changed)
    Q_PROPERTY(QString summaryText READ summaryText NOTIFY changed)
    Q_PROPERTY(QString contentText READ contentText CONSTANT) ///< which parts of a message are sent
    Q_PROPERTY(QString moreText READ moreText NOTIFY changed) ///< empty if everything is listed
    Q_PROPERTY(corvane::GadgetListModel* chats READ chats CONSTANT)
    Q_PROPERTY(QList<corvane::PushAccountLine> accounts READ accounts NOTIFY changed)
    Q_PROPERTY(bool canPush READ canPush NOTIFY changed)
    Q_PROPERTY(bool writing READ writing NOTIFY changed)
    Q_PROPERTY(QString dryRunText READ dryRunText NOTIFY changed) ///< the result of the dry run
    Q_PROPERTY(bool dryRunFailed READ dryRunFailed NOTIFY changed)
public:
    /// All of it outlives the sheet.
    struct Surroundings {
        SyncClient& client;
        SessionStore& session;
        AccountStore& accounts;
        LocalDB& db;
    };

    explicit PushSheet(const Surroundings& surroundings, QObject* parent = nullptr);

    bool isOpen() const { return m_isOpen; }
    QString state() const;
    QString title() const { return u"Push to the web"_s; }
    QString targetText() const;
    QString summaryText() const;
    QString contentText() const
    {
        return u"Each message goes with its text, its sender, its time and its reaction. Pictures, voice "
               "notes and files stay on this computer."_s;
    }
    QString moreText() const;
    GadgetListModel* chats() { return &m_chats; }
    const QList<PushAccountLine>& accounts() const { return m_accounts; }
    bool canPush() const;
    bool writing() const;
    const QString& dryRunText() const { return m_dryRunText; }
    bool dryRunFailed() const { return m_dryRunFailed; }

    Q_INVOKABLE void open();
    Q_INVOKABLE void close();
    Q_INVOKABLE void push(); ///< the user agrees to everything in the sheet
    Q_INVOKABLE void retry();

    /// Toggles between kept and pushed.
    Q_INVOKABLE void keepChat(const QString& conversationId, bool kept);
    Q_INVOKABLE void keepAccount(const QString& slug, bool kept);
    Q_INVOKABLE void writeDryRun(); ///< into the downloads folder

Q_SIGNALS:
    void changed();

private:
    void show();
    void showAccounts();

    Surroundings m_at;
    RowListModel<PushChatLine> m_chats;
    QList<PushAccountLine> m_accounts;
    QString m_dryRunText;
    bool m_dryRunFailed = false;
    bool m_isOpen = false;
};

/// The account's name, or its slug if the account is gone.
QString accountName(const AccountStore& accounts, const QString& slug);

}
