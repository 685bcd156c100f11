#pragma once

#include "Foundation/Result.h"
#include "Store/Work/OpsRecords.h"

#include <QByteArray>

namespace corvane {

/// The name of a project's own folder: a slug cannot lead out of the parent folder.
QString projectFolder(const QString& slug);

/// PROJECT.md for agents that work with files: the project's facts, then the previous content from "## Log" on, or all
/// of it if it has no such line.
QByteArray mirrorText(const OpsProjectRow& project, const QByteArray& before);

/// Writes it to the folder atomically. What an agent appended in the meantime is kept. On an error nothing was written.
Result<QString> writeProjectMirror(const OpsProjectRow& project, const QString& folder);

}
