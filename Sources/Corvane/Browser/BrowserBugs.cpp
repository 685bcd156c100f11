#include "Browser/BrowserBugs.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/ShellQuoting.h"
#include "Store/Work/WorkWrites.h"

namespace corvane {

namespace {

const QString module = u"dev"_s;

/// "URL: …" and the counts, for the item and its evidence.
QString countLines(const BrowserBug& bug)
{
    return u"URL: %1\nConsole warnings/errors: %2\nNetwork failures/errors: %3"_s.arg(
        bug.url, QString::number(bug.consoleCount), QString::number(bug.networkCount));
}

}

bool saveBrowserSession(LocalDB& db, const QString& id, const BrowserProject& project, const QString& url,
    const QString& status, const QString& capturePath, const QString& error)
{
    return upsertDevBrowserSession(db,
        { .id = id,
            .projectId = project.id,
            .title = u"Browser "_s + url,
            .url = url,
            .engine = u"playwright-chrome"_s,
            .status = status,
            .lastCapturePath = capturePath,
            .lastError = error });
}

std::optional<WorkItemRecord> fileBrowserBug(LocalDB& db, const BrowserProject& project, const BrowserBug& bug)
{
    const auto item = insertWorkItem(db,
        { .module = module,
            .context = project.context,
            .kind = u"bug"_s,
            .title = bug.title,
            .priority = bug.severity.toLower(),
            .owner = bug.owner.isEmpty() ? u"unassigned"_s : bug.owner,
            .source = u"browser-manual"_s,
            .summary = u"Manual Browser bug report.\n%1\n\n%2"_s.arg(
                countLines(bug), bug.note.isEmpty() ? u"No note supplied."_s : bug.note) });
    if (!item)
        return std::nullopt;
    const QString missing = bug.evidencePath.isEmpty() ? u'\n' + bug.evidenceError : QString();
    insertWorkEvidence(db,
        { .module = module,
            .context = project.context,
            .itemId = item->id,
            .kind = u"browser-capture"_s,
            .title = u"Browser evidence for "_s + bug.title,
            .source = u"chromium"_s,
            .uri = bug.evidencePath,
            .summary = countLines(bug) + missing });
    return item;
}

QString browserScanCommand(const QString& projectSlug, const QString& url)
{
    const QJsonObject arguments { { u"project"_s, projectSlug }, { u"url"_s, url } };
    return u"printf %s "_s + posixQuoted(QString::fromUtf8(compactJson(arguments)))
        + u" | corvane tool dev_browser_scan"_s;
}

}
