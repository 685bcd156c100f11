#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// A workspace of the user's web account.
struct WorkspaceRow {
    QString workspaceId;
    QString workspaceName;
    QString workspaceSlug;
    QString orgId;
    QString orgName;
    QString orgSlug;
    bool isDefault = false;

    QString displayName() const; ///< what the pickers show
};

enum class Repair { No, IfNeeded };
enum class LegacyRows { Keep, Migrate };

/// The active workspace, never empty ("local" is the fallback). With repair, a workspace without
/// conversations is left for the one that has most of them.
QString activeWorkspaceId(LocalDB& db, Repair repair = Repair::IfNeeded);

/// The user's choice. Returns what is active afterwards, which is not always `id`.
QString selectWorkspace(LocalDB& db, const QString& id, const std::optional<QString>& orgId = std::nullopt);

/// The single writer of the selection: row, user default, and, where anything changed, the notification
/// "nimb.activeWorkspaceChanged".
void persistActiveWorkspace(LocalDB& db, const QString& id, const std::optional<QString>& orgId, LegacyRows legacy);

/// Saves the list that the web returned and settles the selection. Returns the active id.
QString storeWorkspaceRows(
    LocalDB& db, const QList<WorkspaceRow>& rows, const std::optional<QString>& preferredWorkspaceId);

QList<WorkspaceRow> fetchWorkspaceRows(LocalDB& db);

/// The one-line message about a change of workspace that waits for the user; a second call gives nothing.
std::optional<QString> consumeWorkspaceSelectionNotice(LocalDB& db);

}
