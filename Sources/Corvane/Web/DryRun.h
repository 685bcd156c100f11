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

/// Writes every request of the next push into a file: in their order, as a person can read them. Returns the words for
/// the user where it fails, and then leaves no file. Runs on any thread.
QString writeDryRun(SqlConnection& db, const DryRun& dry);

}
