#include "Browser/BrowserPage.h"

#include "Browser/PageScript.h"
#include "Foundation/Json.h"
#include "Presentation/CountWords.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>

namespace corvane {

namespace {

constexpr QSize usualSize(1280, 800);
const QString blankPage = u"about:blank"_s;
constexpr Milliseconds historyPause(100);
constexpr int mostHistoryLooks = 20;
constexpr int everyFrame = 1; // if some were skipped, the last frame of a page at rest could be missing

QString script(const QString& function, const QJsonArray& arguments)
{
    const QString list = QString::fromUtf8(QJsonDocument(arguments).toJson(QJsonDocument::Compact));
    return u"("_s + function + u")(..."_s + list + u')';
}

}

BrowserPage::BrowserPage(Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_scheduler(scheduler)
{
}

void BrowserPage::attach(DevToolsConnection* connection)
{
    if (m_connection)
        m_connection->disconnect(this);
    m_connection = connection;
    connect(connection, &DevToolsConnection::told, this, &BrowserPage::take);
    m_isLoading = false;
    m_isLeaving = false;
    m_isReported = false;
    m_mainFrame.clear();
    m_history.clear();
    m_step = 0;
    for (const QString& domain : { u"Page"_s, u"Runtime"_s, u"Log"_s, u"Network"_s })
        connection->call(domain + u".enable"_s);
    sendMetrics();
    connection->call(u"Page.startScreencast"_s,
        { { u"format"_s, u"jpeg"_s }, { u"quality"_s, 72 }, { u"maxWidth"_s, usualSize.width() },
            { u"maxHeight"_s, usualSize.height() }, { u"everyNthFrame"_s, everyFrame } });
    connection->call(u"Inspector.enable"_s);
    // A page without a window is never focused otherwise, and its fields show no caret.
    connection->call(u"Emulation.setFocusEmulationEnabled"_s, { { u"enabled"_s, true } });
    connection->call(u"Page.setInterceptFileChooserDialog"_s, { { u"enabled"_s, true } });
    connection->call(u"Browser.setDownloadBehavior"_s, { { u"behavior"_s, u"deny"_s }, { u"eventsEnabled"_s, true } });
    const QString world = QString::fromLatin1(pageScriptWorld);
    connection->call(u"Runtime.addBinding"_s,
        { { u"name"_s, QString::fromLatin1(pageScriptBinding) }, { u"executionContextName"_s, world } });
    // A navigation that overtakes these calls may replace the page before it reports anything.
    connection->call(u"Page.addScriptToEvaluateOnNewDocument"_s,
        { { u"source"_s, pageScript() }, { u"worldName"_s, world }, { u"runImmediately"_s, true } },
        [self = QPointer(this), connection](const Result<QJsonObject>&) {
            if (!self || self->m_connection != connection)
                return;
            self->m_isReported = true;
            if (self->m_isOpening)
                self->navigate();
        });
}

void BrowserPage::setMetrics(QSize size, double zoom, bool isMobile)
{
    m_size = size;
    m_zoom = zoom;
    m_isMobile = isMobile;
    if (m_connection)
        sendMetrics();
}

/// The zoom lays the page out in fewer, larger pixels, as a browser's own zoom does.
void BrowserPage::sendMetrics()
{
    constexpr int longestSide = 10'000'000;
    const QSize size
        = m_size.isEmpty() || m_size.width() > longestSide || m_size.height() > longestSide ? usualSize : m_size;
    m_connection->call(u"Emulation.setDeviceMetricsOverride"_s,
        { { u"width"_s, int(size.width() / m_zoom) }, { u"height"_s, int(size.height() / m_zoom) },
            { u"deviceScaleFactor"_s, m_zoom }, { u"mobile"_s, m_isMobile } });
}

void BrowserPage::open(const QString& url)
{
    forget();
    m_steps.opened(url);
    m_hasLoaded = false;
    m_isOpening = true;
    m_wanted = url;
    m_said.clear();
    if (m_connection && m_isReported)
        navigate();
    Q_EMIT changed();
}

void BrowserPage::navigate()
{
    m_connection->call(
        u"Page.navigate"_s, { { u"url"_s, m_wanted } }, [self = QPointer(this)](const Result<QJsonObject>& result) {
            if (!self)
                return;
            const QString problem = result ? result->value("errorText"_L1).toString() : result.error().message;
            if (result && problem.isEmpty() && !result->contains("loaderId"_L1)) { // another place in this document
                self->m_isOpening = false;
                self->m_hasLoaded = true;
                Q_EMIT self->loaded();
            }
            if (!problem.isEmpty() && problem != "net::ERR_ABORTED"_L1)
                self->m_said = u"The page could not be opened: %1."_s.arg(problem);
            Q_EMIT self->changed();
        });
}

void BrowserPage::forget()
{
    m_events.clear();
    m_steps = {};
    Q_EMIT eventsChanged();
}

bool BrowserPage::canGo(int by) const
{
    return m_connection && m_historyIndex + by >= 0 && m_historyIndex + by < m_history.size();
}

/// Relative to the page's current entry: the list known here may be outdated.
void BrowserPage::step(int by)
{
    if (!m_connection)
        return;
    m_step += by;
    readHistory();
}

void BrowserPage::find(const QString& text, bool backwards)
{
    if (!m_connection || text.isEmpty())
        return;
    const QString function = u"(text, backwards) => { const all = document.body?.innerText.toLowerCase() ?? ''; "
                             "window.find(text, false, backwards, true); "
                             "return all.split(text.toLowerCase()).length - 1; }"_s;
    m_connection->evaluate(
        script(function, { text, backwards }), [self = QPointer(this), text](const QJsonValue& matches) {
            if (!self || !matches.isDouble())
                return;
            const int count = matches.toInt();
            self->m_said = count > 0 ? u"%1 on this page"_s.arg(countWords(count, u"match"_s, u"matches"_s))
                                     : u"“%1” is not on this page."_s.arg(text);
            Q_EMIT self->changed();
        });
}

double BrowserPage::progress() const
{
    if (!m_isLoading)
        return 1;
    constexpr double begun = 0.1;
    return m_requests == 0 ? begun : begun + (1 - begun) * std::min(1.0, double(m_answered) / (m_requests + 1));
}

void BrowserPage::take(const QString& method, const QJsonObject& parameters)
{
    if (method == "Page.screencastFrame"_L1)
        return takeFrame(parameters);
    if (m_events.take(method, parameters, m_scheduler.nowMs()))
        Q_EMIT eventsChanged();
    if (method.startsWith("Network."_L1) || method.startsWith("Page.frame"_L1))
        takeLoading(method, parameters);
    if (method == "Page.frameNavigated"_L1) {
        takeNavigation(parameters["frame"_L1].toObject());
    } else if (method == "Page.navigatedWithinDocument"_L1) {
        if (parameters["frameId"_L1].toString() == m_mainFrame) {
            m_url = parameters["url"_L1].toString();
            readHistory();
        }
    } else if (method == "Page.loadEventFired"_L1 && !m_isOpening) {
        m_hasLoaded = true;
        readTitle();
        readHistory(); // the entry may be added after the navigation is reported
        Q_EMIT loaded();
    } else if (method == "Runtime.bindingCalled"_L1
        && parameters["name"_L1].toString() == QLatin1StringView(pageScriptBinding)) {
        takeReport(jsonObject(parameters["payload"_L1].toString().toUtf8()).value_or(QJsonObject()),
            parameters["executionContextId"_L1].toInt());
    } else if (method == "Inspector.targetCrashed"_L1) {
        Q_EMIT crashed();
    } else if (refuse(method, parameters)) {
        Q_EMIT changed();
    }
}

void BrowserPage::takeReport(const QJsonObject& report, int context)
{
    const QString kind = report["kind"_L1].toString();
    if (kind == "list"_L1 || kind == "field"_L1)
        Q_EMIT valueAsked(report, context);
    else if (kind == "cursor"_L1)
        Q_EMIT cursorChanged(report["shape"_L1].toString());
    else
        m_steps.reported(report);
}

void BrowserPage::takeFrame(const QJsonObject& parameters)
{
    // At once, even if the frame is dropped: the browser waits for it before the next one.
    m_connection->call(u"Page.screencastFrameAck"_s, { { u"sessionId"_s, parameters["sessionId"_L1] } });
    const QJsonValue metadata = parameters["metadata"_L1];
    Q_EMIT frame(parameters["data"_L1].toString().toLatin1(),
        QSizeF(metadata["deviceWidth"_L1].toDouble(), metadata["deviceHeight"_L1].toDouble()));
}

void BrowserPage::takeNavigation(const QJsonObject& frame)
{
    if (frame.contains("parentId"_L1))
        return;
    m_mainFrame = frame["id"_L1].toString();
    const QString unreachable = frame["unreachableUrl"_L1].toString(); // an error page is shown instead
    m_url = !unreachable.isEmpty() ? unreachable : frame["url"_L1].toString() + frame["urlFragment"_L1].toString();
    if (m_url != blankPage || m_wanted == blankPage)
        m_isOpening = false;
    m_isLeaving = false;
    readTitle();
    readHistory();
    Q_EMIT changed();
}

void BrowserPage::takeLoading(const QString& method, const QJsonObject& parameters)
{
    const bool isMain = m_mainFrame.isEmpty() || parameters["frameId"_L1].toString() == m_mainFrame;
    if (method == "Page.frameStartedLoading"_L1 && isMain) {
        m_isLoading = true;
        m_isLeaving = true;
        m_requests = 0;
        m_answered = 0;
    } else if (method == "Page.frameStoppedLoading"_L1 && isMain) {
        m_isLoading = false;
        m_isLeaving = false;
    } else if (method == "Network.requestWillBeSent"_L1 && m_isLoading) {
        ++m_requests;
    } else if ((method == "Network.loadingFinished"_L1 || method == "Network.loadingFailed"_L1) && m_isLoading) {
        ++m_answered;
    } else {
        return;
    }
    Q_EMIT changed();
}

bool BrowserPage::refuse(const QString& method, const QJsonObject& parameters)
{
    if (method == "Page.javascriptDialogOpening"_L1) {
        ++m_dialogs;
        // Staying on a page that asks before it closes would block it forever.
        const bool leaves = parameters["type"_L1].toString() == "beforeunload"_L1;
        m_connection->call(u"Page.handleJavaScriptDialog"_s, { { u"accept"_s, leaves } });
    } else if (method == "Browser.downloadWillBegin"_L1) {
        ++m_downloads;
    } else if (method == "Page.fileChooserOpened"_L1) {
        ++m_fileChoosers;
    } else if (method == "Page.windowOpen"_L1) {
        m_said = u"The page opened another window, which is not shown: %1"_s.arg(parameters["url"_L1].toString());
    } else {
        return false;
    }
    return true;
}

QString BrowserPage::notice() const
{
    QStringList parts;
    if (m_dialogs > 0)
        parts.append(u"%1 of the page dismissed."_s.arg(countWords(m_dialogs, u"dialog"_s, u"dialogs"_s)));
    if (m_downloads > 0)
        parts.append(u"%1 refused."_s.arg(countWords(m_downloads, u"download"_s, u"downloads"_s)));
    if (m_fileChoosers > 0)
        parts.append(u"The page asked for a file; none is given from here."_s);
    if (!m_said.isEmpty())
        parts.append(m_said);
    return parts.join(u' ');
}

void BrowserPage::dismissNotice()
{
    m_dialogs = m_downloads = m_fileChoosers = 0;
    m_said.clear();
    Q_EMIT changed();
}

void BrowserPage::readTitle()
{
    m_connection->call(
        u"Runtime.evaluate"_s, { { u"expression"_s, u"document.title"_s }, { u"returnByValue"_s, true } },
        [self = QPointer(this)](const Result<QJsonObject>& result) {
            const QJsonValue value = result ? result->value("result"_L1)["value"_L1] : QJsonValue();
            if (!self || !value.isString())
                return;
            self->m_title = value.toString();
            Q_EMIT self->changed();
        },
        DevToolsConnection::titleNumber);
}

void BrowserPage::readHistory()
{
    m_historyLooks = 0;
    askForHistory();
}

void BrowserPage::askForHistory()
{
    if (!m_connection)
        return;
    m_connection->call(u"Page.getNavigationHistory"_s, {}, [self = QPointer(this)](const Result<QJsonObject>& result) {
        if (self && result)
            self->takeHistory(*result);
    });
}

/// The list may lag behind what the page reports. It is requested again until they agree.
void BrowserPage::takeHistory(const QJsonObject& history)
{
    const QJsonArray entries = history["entries"_L1].toArray();
    m_historyIndex = history["currentIndex"_L1].toInt();
    m_history.clear();
    for (const QJsonValue& entry : entries)
        m_history.append(entry["id"_L1].toInt());
    if (entries.at(m_historyIndex)["url"_L1].toString() != m_url && ++m_historyLooks < mostHistoryLooks) {
        m_historyLook = m_scheduler.after(historyPause, [this] { askForHistory(); });
    } else if (const int by = std::exchange(m_step, 0); by != 0 && canGo(by)) {
        m_connection->call(u"Page.navigateToHistoryEntry"_s, { { u"entryId"_s, m_history.at(m_historyIndex + by) } });
    }
    Q_EMIT changed();
}

}
