#pragma once

#include "Calls/CallNotes.h"
#include "Calls/CallTurns.h"
#include "Store/Work/CallQueries.h"

namespace corvane {

struct AppPaths;

/// The call as a text to read: title, summary, notes, and who said what when.
QString callAsText(const CallDetails& call, const QList<CallTurn>& turns, const CallNotes& notes);

/// Into the person's folder of downloads, under the call's title, beside what stands there. Says where it went, or why
/// it did not.
QString exportCall(const CallDetails& call, const QString& suffix, const QByteArray& content);
QString exportSoundOf(const CallDetails& call, const QStringList& paths); ///< empty ones are passed over

/// Removes a folder of a call's files, and nothing that is not one.
void removeCallFiles(const AppPaths& paths, const QString& folder);

}
