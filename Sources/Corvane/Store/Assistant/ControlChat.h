#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// A conversation that may become the one from which approvals can be given. The program only keeps the choice;
/// the processes that share `engine_settings` read the chat and act on its commands.
struct ApprovalControlChat {
    QString id;
    QString title;
    QString channel;
    QString accountId; ///< the account's slug

    bool operator==(const ApprovalControlChat&) const = default;
};

QList<ApprovalControlChat> fetchApprovalControlChats(LocalDB& db, int limit); ///< newest first

QString approvalsControlChatId(LocalDB& db); ///< empty while none is chosen
bool setApprovalsControlChatId(LocalDB& db, const QString& id); ///< an empty id chooses none

}
