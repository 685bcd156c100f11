#pragma once

#include "Store/Sync/CloudPush.h"

namespace corvane {

/// The input of a dry run.
struct DryRun {
    QString path;
    QString workspaceId;
    QString target; ///< the address, with the path of the ingest
    int mostThreads = 0;
    int mostMessages = 0; ///< per chat
};

/// Writes all requests of the next push to a file, in order and readable. On failure no file remains; the error is for
/// the user. Runs on any thread.
QString writeDryRun(SqlConnection& db, const DryRun& dry);

}
