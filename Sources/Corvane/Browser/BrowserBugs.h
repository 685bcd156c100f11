#pragma once

#include "Browser/BrowserEvidence.h"
#include "Store/Work/BrowserSessions.h"
#include "Store/Work/WorkRecords.h"

namespace corvane {

/// The project that the browser works for.
struct BrowserProject {
    QString id;
    QString slug;
    QString name;
    WorkContextId context = std::nullopt; ///< of the module "dev"

    bool operator==(const BrowserProject&) const = default;
};

/// What the user entered in the sheet, and what the browser recorded. All texts are masked.
struct BrowserBug {
    QString title;
    QString severity; ///< "High", "Medium" or "Low"
    QString owner; ///< empty: unassigned
    QString note;
    QString url;
    qsizetype consoleCount = 0;
    qsizetype networkCount = 0;
    QString evidencePath; ///< empty if it could not be saved
    QString evidenceError; ///< why it could not be saved, for the user
};

/// A row of the session `id`; its title, engine and times are given here.
bool saveBrowserSession(LocalDB& db, const QString& id, const BrowserProject& project, const QString& url,
    const QString& status, const QString& capturePath, const QString& error);

/// The item on the project's board, with its evidence. Nothing if the database could not be written.
std::optional<WorkItemRecord> fileBrowserBug(LocalDB& db, const BrowserProject& project, const BrowserBug& bug);

/// A shell command by which the tool server scans the page.
QString browserScanCommand(const QString& projectSlug, const QString& url);

}
