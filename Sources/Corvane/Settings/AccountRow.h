#pragma once

#include "Engines/Account.h"
#include "Engines/RuntimeState.h"

#include <QMetaType>
#include <QVariantList>

namespace corvane {

/// One account on the settings screen, in the words that it shows.
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
    Q_PROPERTY(QVariantList actions MEMBER actions)
    Q_PROPERTY(QString sentence MEMBER sentence)
public:
    QString accountId;
    QString name;
    QString channel; ///< such as "WHATSAPP"
    QString channelLabel;
    QString status;
    QString detail; ///< beside the status: who is signed in, or what went wrong; mostly empty
    QString note; ///< how the engine ended, and what it said last
    QString kind; ///< "good", "busy", "warn", "bad" or "idle"
    QString lastMessage; ///< such as "Last message 14:20"
    /// {id, label, confirmation, destructive}. `confirmation` is the question to ask first, empty where none is
    /// needed. The ids: "start", "pause", "pair", "resetPairing", "resetSession", "sync", "remove".
    QVariantList actions;
    QString sentence; ///< the row, read aloud

    const QString& key() const { return accountId; }
    bool operator==(const AccountRow&) const = default;
};

/// `lastMessage` is the time of the account's newest message in words, empty where there is none.
AccountRow accountRow(const Account& account, const RuntimeState& state, const QString& lastMessageTime);

}
