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

/// What a person wrote into the sheet, and what the browser had seen. Texts are masked already.
struct BrowserBug {
    QString title;
    QString severity; ///< "High", "Medium" or "Low"
    QString owner; ///< empty: nobody yet
    QString note;
    QString url;
    qsizetype consoleCount = 0;
    qsizetype networkCount = 0;
    QString evidencePath; ///< empty where it could not be saved
    QString evidenceError; ///< why, in words
};

/// A row of the session `id`; its title, engine and times are given here.
bool saveBrowserSession(LocalDB& db, const QString& id, const BrowserProject& project, const QString& url,
    const QString& status, const QString& capturePath, const QString& error);

/// The item on the project's board, with its evidence. Nothing where the database did not take it.
std::optional<WorkItemRecord> fileBrowserBug(LocalDB& db, const BrowserProject& project, const BrowserBug& bug);

/// For a person's shell: lets the tool server look at the page.
QString browserScanCommand(const QString& projectSlug, const QString& url);

}
