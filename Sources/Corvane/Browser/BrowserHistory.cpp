#include "Browser/BrowserHistory.h"

#include "Browser/ChromiumBrowserController.h"
#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Platform/Desktop.h"
#include "Store/Core/LocalDB.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace corvane {

namespace {

constexpr int sessionsShown = 50;

}

BrowserHistory::BrowserHistory(LocalDB& db, ChromiumBrowserController& browser, Desktop& desktop, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_browser(browser)
    , m_desktop(desktop)
{
}

void BrowserHistory::setProject(const BrowserProject& project)
{
    m_project = project;
    reload();
}

void BrowserHistory::reload()
{
    m_sessions = m_project.id.isEmpty() ? QList<DevBrowserSessionRow>()
                                        : fetchDevBrowserSessions(m_db, m_project.id, sessionsShown);
    m_rows.assign(browserSessions(m_sessions, m_db.nowMs()));
}

QString BrowserHistory::sessionId()
{
    QString& id = m_sessionIds[m_project.id];
    if (id.isEmpty())
        id = u"browser:"_s + uuidText();
    return id;
}

/// Null if there is none with that id.
const DevBrowserSessionRow* BrowserHistory::find(const QString& id) const
{
    const auto row = std::ranges::find(m_sessions, id, &DevBrowserSessionRow::id);
    return row == m_sessions.end() ? nullptr : &*row;
}

void BrowserHistory::save()
{
    if (m_project.id.isEmpty())
        return;
    if (const DevBrowserSessionRow* const row = find(sessionId()); row && row->status != "live"_L1)
        m_sessionIds.remove(m_project.id);
    saveBrowserSession(m_db, sessionId(), m_project, m_browser.currentURL(), u"live"_s, {}, m_browser.lastError());
    reload();
}

void BrowserHistory::open(const QString& sessionId)
{
    if (const DevBrowserSessionRow* const row = find(sessionId))
        Q_EMIT openRequested(row->url);
}

void BrowserHistory::play(const QString& sessionId)
{
    const DevBrowserSessionRow* const row = find(sessionId);
    if (!row)
        return;
    if (const auto played = playSteps(row->lastCapturePath); !played)
        Q_EMIT said(played.error().message);
}

void BrowserHistory::openFolder(const QString& sessionId)
{
    const auto hasEvidence = [](const DevBrowserSessionRow& row) {
        return !row.lastCapturePath.isEmpty();
    };
    const auto latest = std::ranges::find_if(m_sessions, hasEvidence);
    const DevBrowserSessionRow* const row = !sessionId.isEmpty() ? find(sessionId)
        : latest == m_sessions.end()                             ? nullptr
                                                                 : &*latest;
    const QFileInfo info(row ? row->lastCapturePath : m_browser.evidenceRoot());
    const QString folder = info.isFile() ? info.absolutePath() : info.filePath();
    if (!QDir().mkpath(folder) || !m_desktop.openFile(folder))
        Q_EMIT said(u"The folder could not be opened: %1"_s.arg(folder));
}

/// Other programs write rows with paths, too: only paths inside the evidence folder are opened.
Result<QString> BrowserHistory::folderOf(const QString& evidencePath) const
{
    const QFileInfo info(evidencePath);
    const QString folder = QFileInfo(info.isDir() ? evidencePath : info.absolutePath()).canonicalFilePath();
    const QString root = QFileInfo(m_browser.evidenceRoot()).canonicalFilePath();
    if (evidencePath.isEmpty() || root.isEmpty() || !folder.startsWith(root + u'/'))
        return failure(u"The evidence is not there any more: %1"_s.arg(evidencePath));
    return folder;
}

Result<void> BrowserHistory::openReport(const QString& path)
{
    const auto folder = folderOf(path);
    if (!folder)
        return std::unexpected(folder.error());
    const QString report = *folder + u"/report.html"_s;
    return m_desktop.openFile(report) ? Result<void>() : failure(u"The report could not be opened: %1"_s.arg(report));
}

Result<void> BrowserHistory::playSteps(const QString& path)
{
    const auto folder = folderOf(path);
    if (!folder)
        return std::unexpected(folder.error());
    const auto evidence = readEvidence(*folder);
    if (!evidence)
        return std::unexpected(evidence.error());
    if (evidence->steps.isEmpty())
        return failure(u"No steps were recorded with it."_s);
    Q_EMIT playRequested(evidence->steps);
    return {};
}

}
