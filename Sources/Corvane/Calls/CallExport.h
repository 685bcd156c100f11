#pragma once

#include "Calls/CallNotes.h"
#include "Calls/CallTurns.h"
#include "Store/Work/CallQueries.h"

namespace corvane {

struct AppPaths;

/// The call as readable text: title, summary, notes and transcript.
QString callAsText(const CallDetails& call, const QList<CallTurn>& turns, const CallNotes& notes);

/// Into the user's downloads folder, named after the call, without overwriting. Returns where it went, or the error.
QString exportCall(const CallDetails& call, const QString& suffix, const QByteArray& content);
QString exportSoundOf(const CallDetails& call, const QStringList& paths); ///< empty paths are skipped

/// Deletes the folder of a call's files, and nothing else.
void removeCallFiles(const AppPaths& paths, const QString& folder);

}
