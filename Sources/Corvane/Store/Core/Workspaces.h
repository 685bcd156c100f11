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

    QString displayName() const; ///< as the pickers show it
};

enum class Repair { No, IfNeeded };
enum class LegacyRows { Keep, Migrate };

/// The active workspace, never empty ("local" is the fallback). With repair, a workspace without conversations is
/// replaced by the one that has most of them.
QString activeWorkspaceId(LocalDB& db, Repair repair = Repair::IfNeeded);

/// The user's choice. Returns the active workspace, which may differ from `id`.
QString selectWorkspace(LocalDB& db, const QString& id, const std::optional<QString>& orgId = std::nullopt);

/// The only writer of the selection: row, user default and, if anything changed, the notification
/// "nimb.activeWorkspaceChanged".
void persistActiveWorkspace(LocalDB& db, const QString& id, const std::optional<QString>& orgId, LegacyRows legacy);

/// Saves the list from the web and updates the selection. Returns the active id.
QString storeWorkspaceRows(
    LocalDB& db, const QList<WorkspaceRow>& rows, const std::optional<QString>& preferredWorkspaceId);

QList<WorkspaceRow> fetchWorkspaceRows(LocalDB& db);

/// The pending one-line message about a change of workspace; a second call returns nothing.
std::optional<QString> consumeWorkspaceSelectionNotice(LocalDB& db);

}
