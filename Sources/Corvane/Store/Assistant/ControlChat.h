#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// A conversation that can be chosen for giving approvals. The program only stores the choice; the processes that share
/// `engine_settings` read the chat and execute its commands.
struct ApprovalControlChat {
    QString id;
    QString title;
    QString channel;
    QString accountId; ///< the account's slug

    bool operator==(const ApprovalControlChat&) const = default;
};

QList<ApprovalControlChat> fetchApprovalControlChats(LocalDB& db, int limit); ///< newest first

QString approvalsControlChatId(LocalDB& db); ///< empty while none is chosen
bool setApprovalsControlChatId(LocalDB& db, const QString& id); ///< an empty id clears it

}
