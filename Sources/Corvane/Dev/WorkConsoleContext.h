#pragma once

#include <QStringList>

namespace corvane {

struct OpsProjectRow;

/// How one instance of the workspace differs from the other.
struct WorkConsoleContext {
    QString area; ///< "DEV" or "Lumo"
    QString title;
    QString subtitle;
    QString icon;
    QStringList projectTokens; ///< a project is listed if it contains one of them; none: every project
    QString safetyNote;

    static WorkConsoleContext lumo();
    static WorkConsoleContext dev();
};

enum class TerminalWorkspaceScope { All, Local, Remote, Asks };

/// Whether the project runs on this machine: its host is empty, a word for it, or its name.
bool runsHere(const OpsProjectRow& project, const QString& hostName);

bool isListed(const OpsProjectRow& project, const WorkConsoleContext& console, TerminalWorkspaceScope scope,
    const QString& search, const QString& hostName);

}
