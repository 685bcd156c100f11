#pragma once

#include "Foundation/Result.h"
#include "Store/Work/OpsRecords.h"

#include <QByteArray>

namespace corvane {

/// The name of a project's own folder: nothing in a slug leads out of the folder that holds it.
QString projectFolder(const QString& slug);

/// PROJECT.md as agents that work with files read it: the project's facts, and from "## Log" on what the file held
/// before. A text that has no such line stands whole below it.
QByteArray mirrorText(const OpsProjectRow& project, const QByteArray& before);

/// Writes it into the folder, in one step: after a crash the old text is there or the new one. What an agent appended
/// meanwhile is kept. The error says why nothing was written.
Result<QString> writeProjectMirror(const OpsProjectRow& project, const QString& folder);

}
