#include "Browser/BrowserView.h"

#include "Foundation/Ids.h"
#include "Foundation/UserDefaults.h"
#include "Platform/Desktop.h"
#include "Presentation/CountWords.h"

#include <QDir>
#include <QFileInfo>
#include <cmath>

namespace corvane {

namespace {

using Purpose = BrowserReportSheet::Purpose;

const QString windowKey = u"browserWindowShown"_s;
constexpr int sessionsShown = 50;
constexpr int mostZoom = 5;

struct Device {
    const char* id;
    const char* label;
    QSize size;
    bool isMobile;
};

constexpr std::array devices {
    Device { "desktop", "Desktop, 1280 × 800", { 1280, 800 }, false },
    Device { "laptop", "Small laptop, 1024 × 768", { 1024, 768 }, false },
    Device { "tablet", "Tablet, 768 × 1024", { 768, 1024 }, true },
    Device { "phone", "Phone, 390 × 844", { 390, 844 }, true },
};

/// Whether something was kept of that session; then the next page begins another.
bool isKept(const QList<DevBrowserSessionRow>& rows, const QString& id)
{
    return std::ranges::any_of(
        rows, [&](const DevBrowserSessionRow& row) { return row.id == id && row.status != "live"_L1; });
}

}

BrowserView::BrowserView(const Surroundings& at, QObject* parent)
    : QObject(parent)
    , m_at(at)
    , m_browser(at.browser)
    , m_sheet(at.db, m_browser, this)
    , m_player(m_browser, at.browser.scheduler, this)
    , m_size(QString::fromLatin1(devices.front().id))
{
    m_browser.options().hasWindow = at.defaults.boolean(windowKey).value_or(false);
    connect(&m_browser, &ChromiumBrowserController::changed, this, &BrowserView::refresh);
    connect(&m_player, &BrowserPlayer::changed, this, &BrowserView::changed);
    connect(&m_browser, &ChromiumBrowserController::eventsChanged, this, [this] {
        m_issues.assign(browserIssues(m_browser.consoleEvents(), m_browser.networkEvents()));
        Q_EMIT changed();
    });
    connect(&m_sheet, &BrowserReportSheet::submitted, this, [this](const QString& words) {
        say(words);
        reload();
        Q_EMIT wrote();
    });
}

void BrowserView::setProject(const BrowserProject& project)
{
    if (project == m_project)
        return;
    const bool isAnother = project.id != m_project.id;
    m_project = project;
    if (isAnother)
        m_sheet.close();
    reload();
}

void BrowserView::reload()
{
    m_sessionRows = m_project.id.isEmpty() ? QList<DevBrowserSessionRow>()
                                           : fetchDevBrowserSessions(m_at.db, m_project.id, sessionsShown);
    m_sessions.assign(browserSessions(m_sessionRows, m_at.db.nowMs()));
    Q_EMIT changed();
}

/// The page moved on: the field follows it, and so does the row of the session.
void BrowserView::refresh()
{
    const QString url = m_browser.currentURL();
    if (m_browser.isRunning() && m_browser.page().hasLoaded() && url != m_savedURL) {
        m_savedURL = url;
        m_address = m_browser.page().url();
        saveSession();
    }
    Q_EMIT changed();
}

QString BrowserView::sessionId()
{
    QString& id = m_sessionIds[m_project.id];
    if (id.isEmpty())
        id = u"browser:"_s + uuidText();
    return id;
}

void BrowserView::saveSession()
{
    if (m_project.id.isEmpty())
        return;
    if (isKept(m_sessionRows, sessionId()))
        m_sessionIds.remove(m_project.id);
    saveBrowserSession(m_at.db, sessionId(), m_project, m_browser.currentURL(), u"live"_s, {}, m_browser.lastError());
    reload();
    Q_EMIT wrote();
}

void BrowserView::setAddress(const QString& address)
{
    if (address == m_address)
        return;
    m_address = address;
    Q_EMIT changed();
}

QString BrowserView::addressHint() const
{
    const QString& home = m_browser.options().homeURL;
    return home.isEmpty() ? u"Address of a page"_s : home;
}

void BrowserView::open()
{
    m_notice.clear();
    m_player.dismiss();
    m_savedURL.clear();
    if (normalizedURL(m_address, m_browser.options().homeURL).isEmpty())
        return say(u"Type the address of a page first."_s);
    applyMetrics();
    m_browser.open(m_address);
}

QString BrowserView::statusText() const
{
    return m_browser.isLoading() ? u"loading"_s : m_browser.status();
}

QString BrowserView::problem() const
{
    return m_browser.lastError();
}

QString BrowserView::problemAction() const
{
    if (problem().isEmpty() || m_browser.isConnecting())
        return {};
    return m_browser.isHanging() ? u"Start it again"_s : m_browser.isRunning() ? u"Reload"_s : u"Try again"_s;
}

void BrowserView::solveProblem()
{
    if (m_browser.isHanging())
        m_browser.restart();
    else if (m_browser.isRunning())
        m_browser.reload();
    else
        open();
}

QString BrowserView::notice() const
{
    QStringList parts { m_notice, m_player.words(), m_browser.notice() };
    parts.removeAll(QString());
    return parts.join(u' ');
}

void BrowserView::dismissNotice()
{
    m_notice.clear();
    m_player.dismiss();
    m_browser.dismissNotice();
    Q_EMIT changed();
}

void BrowserView::say(const QString& notice)
{
    m_notice = notice;
    Q_EMIT changed();
}

QString BrowserView::emptyTitle() const
{
    if (m_browser.isConnecting())
        return u"Starting the browser"_s;
    if (m_browser.lastError() == browserWords::notInstalled)
        return u"Install Google Chrome or Chromium"_s;
    return m_browser.isRunning() ? u"Waiting for the page"_s : u"No page is open"_s;
}

QString BrowserView::emptyDetail() const
{
    if (m_browser.lastError() == browserWords::notInstalled)
        return u"Corvane will not use WebKit here. A Chromium executable is required."_s;
    return m_browser.isRunning() || m_browser.isConnecting()
        ? QString()
        : u"Type an address above. What goes wrong in the page is gathered, and can be filed as a bug with its proof."_s;
}

QString BrowserView::emptyAction() const
{
    const bool canOpen = !m_browser.isRunning() && !m_browser.isConnecting() && m_browser.lastError().isEmpty()
        && !normalizedURL(m_address, m_browser.options().homeURL).isEmpty();
    return canOpen ? u"Open the page"_s : QString();
}

QString BrowserView::issueText() const
{
    return countWords(issueCount(), u"issue"_s, u"issues"_s);
}

QString BrowserView::issuesHint() const
{
    return issueCount() == 0 ? browserEvidencePreview({}, {}, 0) : QString();
}

QList<Choice> BrowserView::sizes() const
{
    QList<Choice> choices;
    for (const Device& device : devices) {
        Choice choice;
        choice.id = QString::fromUtf8(device.id);
        choice.label = QString::fromUtf8(device.label);
        choices.append(choice);
    }
    return choices;
}

void BrowserView::chooseSize(const QString& id)
{
    m_size = id;
    applyMetrics();
    Q_EMIT changed();
}

void BrowserView::zoom(int steps)
{
    m_zoom = steps == 0 ? 0 : std::clamp(m_zoom + steps, -mostZoom, mostZoom);
    applyMetrics();
    Q_EMIT changed();
}

void BrowserView::applyMetrics()
{
    constexpr double stepFactor = 1.2;
    for (const Device& device : devices) {
        if (m_size == QLatin1StringView(device.id))
            m_browser.setMetrics(device.size, std::pow(stepFactor, m_zoom), device.isMobile);
    }
}

QString BrowserView::zoomText() const
{
    constexpr double stepFactor = 1.2;
    return u"%1 %"_s.arg(std::round(100 * std::pow(stepFactor, m_zoom)));
}

void BrowserView::find(const QString& text, bool backwards)
{
    m_browser.find(text, backwards);
}

void BrowserView::setWindowShown(bool shown)
{
    m_at.defaults.setBoolean(windowKey, shown);
    m_browser.options().hasWindow = shown;
    say(m_browser.isRunning() ? u"This counts when the browser starts the next time."_s : QString());
}

void BrowserView::openSheet(Purpose purpose)
{
    if (m_project.id.isEmpty())
        return say(u"No project selected"_s);
    if (!evidenceReady())
        return say(u"There is nothing to keep yet: open a page first."_s);
    m_sheet.open(purpose, m_project, sessionId(), m_address);
}

void BrowserView::capture()
{
    openSheet(Purpose::Evidence);
}

void BrowserView::reportBug()
{
    openSheet(Purpose::Bug);
}

void BrowserView::scan()
{
    if (m_project.id.isEmpty())
        return say(u"No project selected"_s);
    m_at.openTerminal(u"Browser scan"_s, browserScanCommand(m_project.slug, m_browser.currentURL()));
}

/// Null where there is none of that id.
const DevBrowserSessionRow* BrowserView::findSession(const QString& id) const
{
    const auto row = std::ranges::find(m_sessionRows, id, &DevBrowserSessionRow::id);
    return row == m_sessionRows.end() ? nullptr : &*row;
}

void BrowserView::openEvidence(const QString& sessionId)
{
    const auto hasEvidence = [](const DevBrowserSessionRow& row) {
        return !row.lastCapturePath.isEmpty();
    };
    const auto latest = std::ranges::find_if(m_sessionRows, hasEvidence);
    const DevBrowserSessionRow* const row = !sessionId.isEmpty() ? findSession(sessionId)
        : latest == m_sessionRows.end()                          ? nullptr
                                                                 : &*latest;
    const QFileInfo info(row ? row->lastCapturePath : m_browser.evidenceRoot());
    const QString folder = info.isFile() ? info.absolutePath() : info.filePath();
    if (!QDir().mkpath(folder) || !m_at.desktop.openFile(folder))
        say(u"The folder could not be opened: %1"_s.arg(folder));
}

void BrowserView::openAgain(const QString& sessionId)
{
    if (const DevBrowserSessionRow* const row = findSession(sessionId)) {
        m_address = row->url;
        open();
    }
}

void BrowserView::playAgain(const QString& sessionId)
{
    const DevBrowserSessionRow* const row = findSession(sessionId);
    if (!row)
        return;
    const auto evidence = readEvidence(row->lastCapturePath);
    if (!evidence)
        return say(evidence.error().message);
    if (evidence->steps.isEmpty())
        return say(u"No steps were recorded with it."_s);
    m_notice.clear();
    applyMetrics();
    m_player.play(evidence->steps);
}

}
