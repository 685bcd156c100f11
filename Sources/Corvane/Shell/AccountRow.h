#pragma once

#include "Engines/Account.h"
#include "Engines/RuntimeState.h"

#include <QList>

namespace corvane {

/// What a person can do with an account. `label` is the button; `confirmation` is the question to ask first,
/// empty where none is needed.
struct AccountAction {
    QString id; ///< "start", "pause", "pair", "resetPairing", "resetSession", "sync" or "remove"
    QString label;
    QString confirmation;

    bool operator==(const AccountAction&) const = default;
};

/// One account on the settings screen, in the words that it shows.
struct AccountRow {
    QUuid id;
    QString name;
    QString channel; ///< such as "WHATSAPP"
    QString status;
    QString detail; ///< beside the status: who is signed in, or what went wrong; mostly empty
    QString log; ///< the engine's last word
    QString kind; ///< "good", "busy", "warn", "bad" or "idle"
    qint64 lastMessageMs = 0; ///< 0 where no message is known
    QList<AccountAction> actions;

    bool operator==(const AccountRow&) const = default;
};

AccountRow accountRow(const Account& account, const RuntimeState& state, qint64 lastMessageMs);

/// Whether an account of that channel keeps a secret of its own.
bool keepsSecret(Channel channel);

}
