#pragma once

#include "Foundation/Literals.h"
#include "Foundation/Result.h"
#include "Store/Core/Workspaces.h"

namespace corvane {

/// A channel or shop connected on the web.
struct WebIntegration {
    QString id;
    QString type;
    QString provider;
    std::optional<QString> displayName;
    std::optional<QString> username;
    QString status;
    std::optional<QString> avatarUrl;
    std::optional<QString> workspaceId;

    bool isConnected() const { return status == "CONNECTED"_L1; }
    bool operator==(const WebIntegration&) const = default;
};

struct WsNode {
    QString id;
    QString name;
    std::optional<QString> slug;
    std::optional<bool> isDefault;
    std::optional<QString> status;
    QList<WebIntegration> integrations;
};

struct OrgNode {
    QString id;
    QString name;
    std::optional<QString> slug;
    QList<WsNode> workspaces;
    QList<WebIntegration> integrations;
};

/// The user's data on the web: organizations, workspaces, integrations.
struct BootstrapData {
    std::optional<QString> activeOrganizationId;
    QList<OrgNode> organizations;
};

/// The same, flattened for storage and display.
struct BootstrapLists {
    QList<WorkspaceRow> workspaces; ///< in the order of the document
    QList<WebIntegration> integrations; ///< without duplicates, connected ones first, then by type and name
    std::optional<QString> preferredWorkspaceId; ///< of the active organization: its default, else its first
};

/// Parses the document, bare or under "data"; nothing if it has another shape.
std::optional<BootstrapData> decodeBootstrap(const QByteArray& json);

BootstrapLists flattened(const BootstrapData& data);

/// Why a bootstrap failed.
struct WebSyncError {
    QString message; ///< for the user
    bool isRejected = false; ///< the web does not accept the token
};

/// Parses the response of the bootstrap request. Runs on any thread.
std::expected<BootstrapLists, WebSyncError> readBootstrap(int status, const QByteArray& body, const QString& path);

}
