#include "Browser/ChromiumBrowserController.h"

#include "Browser/ChromiumStart.h"

#include <QJsonArray>

namespace corvane {

namespace {

const QString notStarted = u"not started"_s;
const QString starting = u"starting Chromium"_s;
const QString connected = u"connected"_s;
const QString loaded = u"loaded"_s;
const QString failed = u"failed"_s;
const QString disconnected = u"disconnected"_s;
const QString blankPage = u"about:blank"_s;
const QString hangs = u"The browser does not answer."_s;

constexpr Milliseconds tellPause(50);
constexpr Milliseconds watchPeriod(5000);
constexpr Milliseconds passwordLimit(3000);

/// The current title, and the content of password fields in the page and in all accessible frames.
const QString titleAndPasswords = uR"JS((() => {
    const found = [];
    const look = page => {
        for (const field of page.querySelectorAll('input[type=password]')) found.push(field.value);
        for (const frame of page.querySelectorAll('iframe')) if (frame.contentDocument) look(frame.contentDocument);
    };
    look(document);
    return { title: document.title, passwords: found };
})())JS"_s;

}

ChromiumBrowserController::ChromiumBrowserController(const BrowserSurroundings& at, QObject* parent)
    : QObject(parent)
    , m_at(at)
    , m_options(at.options)
    , m_page(at.scheduler, this)
    , m_surface(m_page, this)
    , m_status(notStarted)
    , m_tell(at.scheduler, tellPause, [this] { Q_EMIT changed(); })
    , m_tellEvents(at.scheduler, tellPause, [this] { Q_EMIT eventsChanged(); })
    , m_start(std::make_unique<ChromiumStart>(at, [this](const QString& reason) { lose(reason); }))
{
    connect(&m_page, &BrowserPage::changed, this, [this] { m_tell.request(); });
    connect(&m_page, &BrowserPage::eventsChanged, this, [this] { m_tellEvents.request(); });
    connect(&m_surface, &BrowserSurface::shown, this, [this] { m_tell.request(); });
    connect(&m_page, &BrowserPage::loaded, this, [this] {
        m_status = loaded;
        m_tell.request();
    });
    connect(&m_page, &BrowserPage::crashed, this, [this] {
        m_error = u"The page crashed. Reload it to go on."_s;
        m_tell.request();
    });
}

ChromiumBrowserController::~ChromiumBrowserController()
{
    m_start.reset();
    delete m_connection;
}

qint64 ChromiumBrowserController::browserPid() const
{
    return m_start->pid();
}

void ChromiumBrowserController::open(const QString& url)
{
    m_wanted = normalizedURL(url, m_options.homeURL);
    m_error.clear();
    m_page.open(m_wanted);
    if (!m_connection && !m_isConnecting)
        start();
    m_tell.request();
}

QCoro::Task<void> ChromiumBrowserController::start()
{
    const QPointer<ChromiumBrowserController> self(this);
    m_isConnecting = true;
    m_status = starting;
    m_error.clear();
    m_tell.request();
    const Result<OpenedPage> page = co_await m_start->open(m_options, this);
    if (!self)
        co_return;
    m_isConnecting = false;
    m_tell.request();
    if (!page) {
        m_status = failed;
        m_error = page.error().message;
        co_return;
    }
    adopt(page->connection);
}

void ChromiumBrowserController::adopt(DevToolsConnection* connection)
{
    if (m_connection)
        m_connection->deleteLater();
    m_connection = connection;
    connect(connection, &DevToolsConnection::closed, this, [this, connection](const QString& reason) {
        if (m_connection == connection)
            lose(reason.isEmpty() ? u"The connection to the browser ended."_s : reason);
    });
    m_status = connected;
    m_page.attach(connection);
    m_surface.attach(connection);
    connection->call(u"Browser.getVersion"_s, {}, [self = QPointer(this)](const Result<QJsonObject>& version) {
        if (self && version)
            self->m_browser = version->value("product"_L1).toString();
    });
    m_isHanging = false;
    m_isAsked = false;
    m_watch = m_at.scheduler.every(watchPeriod, [this] { watch(); });
    if (!m_wanted.isEmpty())
        m_page.open(m_wanted);
    m_tell.request();
}

/// A working browser answers at once, whatever its page does.
void ChromiumBrowserController::watch()
{
    if (!m_connection)
        return;
    if (m_isAsked) {
        m_isHanging = true;
        m_error = hangs;
        return m_tell.request();
    }
    m_isAsked = true;
    m_connection->call(u"Browser.getVersion"_s, {}, [self = QPointer(this)](const Result<QJsonObject>& version) {
        if (!self || !version)
            return;
        self->m_isAsked = false;
        if (std::exchange(self->m_isHanging, false) && self->m_error == hangs)
            self->m_error.clear();
        self->m_tell.request();
    });
}

/// The reason that the process gives arrives later than the connection's, and is more precise.
void ChromiumBrowserController::lose(const QString& reason)
{
    m_tell.request();
    if (!m_connection) {
        if (!reason.isEmpty() && !m_isConnecting)
            m_error = reason;
        return;
    }
    m_connection->deleteLater();
    m_connection = nullptr;
    m_surface.attach(nullptr);
    m_watch.reset();
    m_isHanging = false;
    m_status = disconnected;
    m_error = reason;
}

void ChromiumBrowserController::end()
{
    m_start->end();
    lose({});
}

void ChromiumBrowserController::restart()
{
    const QString url = m_page.url() == blankPage ? m_wanted : m_page.url();
    end();
    open(url);
}

void ChromiumBrowserController::send(const QString& method)
{
    if (m_connection)
        m_connection->call(method);
}

void ChromiumBrowserController::reload()
{
    m_error.clear();
    if (!m_connection)
        return restart();
    send(u"Page.reload"_s);
    m_tell.request();
}

void ChromiumBrowserController::stop()
{
    send(u"Page.stopLoading"_s);
}

bool ChromiumBrowserController::hasEvidence() const
{
    const BrowserEvents& events = m_page.events();
    return m_surface.hasFrame() || !events.console().isEmpty() || !events.network().isEmpty();
}

QString ChromiumBrowserController::evidenceRoot() const
{
    return m_at.paths.applicationSupport + u"/BrowserQA"_s;
}

void ChromiumBrowserController::gatherEvidence(
    const QString& requestedURL, const QString& note, std::function<void(const BrowserEvidencePayload&)> done)
{
    const auto give = [self = QPointer(this), requestedURL, note, done = std::move(done)] {
        if (!self || !std::exchange(self->m_evidenceLimit, nullptr))
            return;
        BrowserEvidencePayload payload;
        payload.capturedAt = self->m_at.scheduler.nowMs();
        payload.title = self->title();
        payload.url = self->currentURL();
        payload.requestedURL = masked(self->m_page, requestedURL);
        payload.note = masked(self->m_page, note);
        payload.status = self->status();
        payload.lastError = self->lastError();
        payload.consoleEvents = maskedConsole(self->m_page);
        payload.networkEvents = maskedRequests(self->m_page);
        payload.steps = maskedSteps(self->m_page);
        payload.browser = self->m_browser;
        done(payload);
    };
    // A page that hangs must not block its evidence.
    m_evidenceLimit = m_at.scheduler.after(m_connection ? passwordLimit : Milliseconds(0), give);
    if (!m_connection)
        return;
    m_connection->evaluate(titleAndPasswords, [self = QPointer(this), give](const QJsonValue& found) {
        if (!self)
            return;
        for (const QJsonValue& value : found["passwords"_L1].toArray())
            self->m_page.steps().addSecret(value.toString());
        if (const QJsonValue title = found["title"_L1]; title.isString())
            self->m_page.setTitle(title.toString());
        give();
    });
}

}
