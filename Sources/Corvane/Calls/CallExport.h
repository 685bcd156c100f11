#pragma once

#include "Calls/CallNotes.h"
#include "Calls/CallTurns.h"
#include "Store/Work/CallQueries.h"

namespace corvane {

struct AppPaths;

/// The call as readable text: title, summary, notes and transcript.
QString callAsText(const CallDetails& call, const QList<CallTurn>& turns, const CallNotes& notes);

/// Into the user's downloads folder, named after the call; empty paths are skipped. Returns where it went, or the
/// error. Takes as long as the copying does: for a background thread.
QString exportSoundOf(const CallDetails& call, const QStringList& paths);

/// Deletes the folder of a call's files, and nothing else.
void removeCallFiles(const AppPaths& paths, const QString& folder);

}
