#pragma once

#include "Engines/Account.h"
#include "Engines/RuntimeState.h"

#include <QMetaType>

namespace corvane {

/// An action on an account.
class AccountAction {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString confirmation MEMBER confirmation)
    Q_PROPERTY(bool destructive MEMBER destructive)
    Q_PROPERTY(bool checkable MEMBER checkable)
    Q_PROPERTY(bool checked MEMBER checked)
public:
    QString id; ///< "start", "pause", "pair", "resetPairing", "resetSession", "sync", "edit", "startAtBoot" or
                ///< "remove"
    QString label;
    QString confirmation; ///< the question to ask first; empty if none is needed
    bool destructive = false;
    bool checkable = false; ///< it switches between two states
    bool checked = false;

    bool operator==(const AccountAction&) const = default;
};

/// An account on the settings screen.
class AccountRow {
    Q_GADGET
    Q_PROPERTY(QString accountId MEMBER accountId)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString channel MEMBER channel)
    Q_PROPERTY(QString channelLabel MEMBER channelLabel)
    Q_PROPERTY(QString status MEMBER status)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(QString note MEMBER note)
    Q_PROPERTY(QString kind MEMBER kind)
    Q_PROPERTY(QString lastMessage MEMBER lastMessage)
    Q_PROPERTY(corvane::AccountAction first READ first)
    Q_PROPERTY(QList<corvane::AccountAction> others READ others)
    Q_PROPERTY(QString sentence MEMBER sentence)
public:
    QString accountId;
    QString name;
    QString channel; ///< such as "WHATSAPP"
    QString channelLabel;
    QString status;
    QString detail; ///< beside the status: who is signed in, or the error; usually empty
    QString note; ///< how the engine exited, and its last message
    QString kind; ///< "good", "busy", "warn", "bad" or "idle"
    QString lastMessage; ///< such as "Last message 14:20"
    QList<AccountAction> actions;
    QString sentence; ///< accessible text of the row

    AccountAction first() const; ///< that needs no confirmation and is not a switch; has an empty id if there is none
    QList<AccountAction> others() const; ///< all but the first
    static constexpr const char* role = "account";
    const QString& key() const { return accountId; }
    bool operator==(const AccountRow&) const = default;
};

/// `lastMessage` is the formatted time of the account's newest message, empty if there is none.
AccountRow accountRow(const Account& account, const RuntimeState& state, const QString& lastMessageTime);

}
