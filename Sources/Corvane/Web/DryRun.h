#pragma once

#include "Store/Sync/CloudPush.h"

namespace corvane {

/// What a dry run writes of.
struct DryRun {
    QString path;
    QString workspaceId;
    QString target; ///< the address, with the path of the ingest
    int mostThreads = 0;
    int mostMessages = 0; ///< of a chat
};

/// Writes all requests of the next push into a file, in order and readable. Returns the error for the user, and leaves
/// no file then. Runs on any thread.
QString writeDryRun(SqlConnection& db, const DryRun& dry);

}
