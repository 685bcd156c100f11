#include "Browser/BrowserView.h"

#include "Foundation/Literals.h"

namespace corvane {

using Purpose = BrowserReportSheet::Purpose;

BrowserView::BrowserView(const Surroundings& at, QObject* parent)
    : QObject(parent)
    , m_at(at)
    , m_browser(at.browser)
    , m_sheet(at.db, m_browser, this)
    , m_issues(m_browser, this)
    , m_history(at.db, m_browser, at.desktop, this)
    , m_display(m_browser, at.defaults, this)
    , m_picker(m_browser, at.browser.scheduler, this)
    , m_player(m_browser, at.browser.scheduler, this)
{
    connect(&m_browser, &ChromiumBrowserController::changed, this, &BrowserView::refresh);
    connect(&m_issues, &BrowserIssues::changed, this, &BrowserView::changed);
    connect(&m_player, &BrowserPlayer::changed, this, &BrowserView::changed);
    connect(&m_display, &BrowserDisplay::said, this, [this](const QString& words) { say(words); });
    connect(&m_history, &BrowserHistory::said, this, [this](const QString& words) { say(words); });
    connect(&m_history, &BrowserHistory::openRequested, this, [this](const QString& url) {
        m_address = url;
        open();
    });
    connect(&m_history, &BrowserHistory::playRequested, this, [this](const QList<BrowserStep>& steps) {
        say({});
        m_player.play(steps);
    });
    connect(&m_sheet, &BrowserReportSheet::submitted, this, [this](const QString& words, const QString& itemId) {
        m_history.reload();
        say(words, itemId);
        Q_EMIT wrote();
    });
}

void BrowserView::setProject(const BrowserProject& project)
{
    if (project == m_project)
        return;
    if (project.id != m_project.id)
        m_sheet.close();
    m_project = project;
    m_history.setProject(project);
    Q_EMIT changed();
}

/// After a navigation, the field and the row of the session follow.
void BrowserView::refresh()
{
    const QString url = m_browser.currentURL();
    if (m_browser.isRunning() && m_browser.page().hasLoaded() && url != m_savedURL) {
        m_savedURL = url;
        m_address = m_browser.page().url();
        m_history.save();
        if (!m_project.id.isEmpty())
            Q_EMIT wrote();
    }
    Q_EMIT changed();
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
    say({});
    m_player.stop();
    m_savedURL.clear();
    if (normalizedURL(m_address, m_browser.options().homeURL).isEmpty())
        return say(u"Type the address of a page first."_s);
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
    if (problem().isEmpty() || m_browser.isConnecting() || problem() == browserWords::isRoot)
        return {};
    return m_browser.isHanging() ? u"Start it again"_s : m_browser.isRunning() ? u"Reload"_s : u"Try again"_s;
}

void BrowserView::solveProblem()
{
    m_player.stop();
    if (m_browser.isHanging())
        m_browser.restart();
    else if (m_browser.isRunning())
        m_browser.reload();
    else
        open();
}

QString BrowserView::notice() const
{
    QStringList parts { m_notice, m_player.words(), masked(m_browser.page(), m_browser.page().notice()) };
    parts.removeAll(QString());
    return parts.join(u' ');
}

QString BrowserView::noticeAction() const
{
    return m_player.isPlaying() ? u"Stop"_s : m_item.isEmpty() ? QString() : u"Show the bug"_s;
}

void BrowserView::actOnNotice()
{
    if (m_player.isPlaying())
        m_player.stop();
    else
        Q_EMIT itemRequested(m_item);
}

void BrowserView::dismissNotice()
{
    m_player.stop();
    m_browser.page().dismissNotice();
    say({});
}

void BrowserView::say(const QString& notice, const QString& itemId)
{
    m_notice = notice;
    m_item = itemId;
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

void BrowserView::find(const QString& text, bool backwards)
{
    m_browser.page().find(text, backwards);
}

void BrowserView::openSheet(Purpose purpose)
{
    if (m_project.id.isEmpty())
        return say(u"No project selected"_s);
    if (!evidenceReady())
        return say(u"There is nothing to keep yet: open a page first."_s);
    m_player.stop();
    m_sheet.open(purpose, m_project, m_history.sessionId(), m_address);
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

}
