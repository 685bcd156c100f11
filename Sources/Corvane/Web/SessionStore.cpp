#include "Web/SessionStore.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Foundation/MachineWords.h"
#include "Foundation/Text.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/Desktop.h"
#include "Platform/Keychain.h"
#include "Platform/PrivateFile.h"
#include "Web/CompanionCalls.h"

#include <QFile>
#include <QPointer>

namespace corvane {

namespace {

const QString tokenAccount = u"companion.jwt"_s;
constexpr qint64 linkMs = 10 * 60 * 1000; // for the browser to return
const QString deviceAccount = u"companion.deviceId"_s;

}

/// A flow continues only while its owner exists and no newer sign-in, sign-out or shutdown has replaced it.
struct SessionStore::Flow {
    QPointer<SessionStore> owner;
    quint64 attempt;

    bool isCurrent() const { return owner && owner->m_attempt == attempt; }

    static QCoro::Task<> signIn(Flow flow, QString email, QString password)
    {
        SessionStore* const self = flow.owner;
        const auto accessToken = co_await login(self->m_client.get(), webBase(self->m_defaults), email, password);
        if (!flow.isCurrent())
            co_return;
        if (!accessToken)
            co_return self->endAttempt(accessToken.error().message);

        const auto code
            = co_await handshake(self->m_client.get(), webBase(self->m_defaults), *accessToken, self->deviceName());
        if (!flow.isCurrent())
            co_return;
        if (!code)
            co_return self->endAttempt(code.error().message);

        co_await finish(flow, *code);
    }

    static QCoro::Task<> finish(Flow flow, QString code)
    {
        SessionStore* const self = flow.owner;
        const auto credentials
            = co_await exchange(self->m_client.get(), webBase(self->m_defaults), code, self->deviceName());
        if (!flow.isCurrent())
            co_return;
        if (!credentials)
            co_return self->endAttempt(credentials.error().message);
        self->setAuth(credentials->token, credentials->deviceId);
        self->endAttempt(std::nullopt);
    }
};

SessionStore::SessionStore(const AppPaths& paths, Keychain& keychain, UserDefaults& defaults, Desktop& desktop,
    Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_paths(paths)
    , m_keychain(keychain)
    , m_defaults(defaults)
    , m_desktop(desktop)
    , m_scheduler(scheduler)
    , m_client(std::make_unique<WebClient>(scheduler))
{
    takeUpToken();
    connect(&m_keychain, &Keychain::changed, this, [this] {
        takeUpToken();
        Q_EMIT changed();
    });
}

SessionStore::~SessionStore()
{
    cancelAttempt();
}

bool SessionStore::isAwaited() const
{
    return !m_token && m_keychain.isAwaited(tokenAccount);
}

void SessionStore::takeUpToken()
{
    if (m_token)
        return;
    m_token = m_keychain.get(tokenAccount);
    if (!m_token)
        return;
    m_deviceId = m_keychain.get(deviceAccount);
    decodeClaims(*m_token);
    writeTokenFile(*m_token);
}

void SessionStore::setWebRejected(bool rejected)
{
    if (m_webRejected == rejected)
        return;
    m_webRejected = rejected;
    Q_EMIT changed();
}

QString SessionStore::knownAs() const
{
    const QString name = m_claims.userName.value_or(QString());
    return name.isEmpty() ? m_claims.email.value_or(QString()) : name;
}

QString SessionStore::displayLine() const
{
    if (isAwaited())
        return u"Waiting for the desktop's keyring"_s;
    if (!m_token)
        return u"Not signed in"_s;
    const QString who = knownAs().isEmpty() ? u"Signed in"_s : knownAs();
    const QString workspace = m_claims.workspaceId.value_or(QString());
    return workspace.isEmpty() ? who : who + u" · workspace "_s + firstCharacters(workspace, 8);
}

QString SessionStore::initial() const
{
    return knownAs().isEmpty() ? u"?"_s : firstCharacters(knownAs(), 1);
}

void SessionStore::signIn(const QString& email, const QString& password)
{
    Flow::signIn({ this, beginAttempt() }, email, password);
}

void SessionStore::startSignIn()
{
    const QUrl url = companionLoginUrl(webBase(m_defaults), deviceName());
    m_lastError = url.isValid() ? std::nullopt : std::optional(badUrlWords(webBase(m_defaults), u"companion"_s));
    if (url.isValid()) {
        m_browserOpenedMs = m_scheduler.nowMs();
        m_desktop.openInBrowser(url);
    }
    Q_EMIT changed();
}

void SessionStore::handleCallback(const QUrl& url)
{
    const QString code = oneTimeCode(url);
    if (url.scheme() != "nimb-companion"_L1 || url.host() != "auth"_L1 || code.isEmpty())
        return;
    const bool wanted = m_browserOpenedMs && m_scheduler.nowMs() - *m_browserOpenedMs <= linkMs;
    if (wanted && !m_busy) {
        m_browserOpenedMs.reset();
        Flow::finish({ this, beginAttempt() }, code);
        return;
    }
    log(u"SessionStore: a sign-in link that was not asked for waits for the user"_s);
    m_offeredCode = code;
    Q_EMIT changed();
}

void SessionStore::acceptLink()
{
    if (m_busy || !asksAboutLink())
        return;
    const QString code = std::exchange(m_offeredCode, {});
    Flow::finish({ this, beginAttempt() }, code);
}

void SessionStore::ignoreLink()
{
    m_offeredCode.clear();
    Q_EMIT changed();
}

void SessionStore::forgetError()
{
    m_lastError.reset();
    Q_EMIT changed();
}

void SessionStore::setAuth(const QString& token, const QString& deviceId)
{
    m_token = token;
    m_deviceId = deviceId;
    m_keychain.set(token, tokenAccount);
    m_keychain.set(deviceId, deviceAccount);
    writeTokenFile(token);
    decodeClaims(token);
    Q_EMIT changed();
}

void SessionStore::signOut()
{
    cancelAttempt();
    m_token.reset();
    m_deviceId.reset();
    m_claims = {};
    m_webRejected = false;
    m_browserOpenedMs.reset();
    m_offeredCode.clear();
    m_keychain.remove(tokenAccount);
    m_keychain.remove(deviceAccount);
    QFile::remove(tokenFilePath());
    Q_EMIT changed();
    Q_EMIT signedOut();
}

quint64 SessionStore::beginAttempt()
{
    cancelAttempt();
    m_busy = true;
    m_lastError.reset();
    const quint64 attempt = m_attempt;
    Q_EMIT changed();
    return attempt;
}

void SessionStore::cancelAttempt()
{
    // The number is increased before the abort: the flow resumes inside the abort, and must see that it was replaced.
    ++m_attempt;
    m_client->abortAll();
    m_busy = false;
}

void SessionStore::endAttempt(const std::optional<QString>& error)
{
    m_lastError = error;
    m_busy = false;
    Q_EMIT changed();
}

void SessionStore::decodeClaims(const QString& token)
{
    const QStringList parts = token.split(u'.');
    if (parts.size() < 2)
        return;
    const QByteArray payload = parts[1].toUtf8().replace('-', '+').replace('_', '/');
    const auto decoded = QByteArray::fromBase64Encoding(payload, QByteArray::AbortOnBase64DecodingErrors);
    const auto claims = decoded ? jsonObject(*decoded) : std::nullopt;
    if (!claims)
        return;
    const auto either = [&](QLatin1StringView key, QLatin1StringView otherKey) {
        const auto value = textValue(*claims, key);
        return value ? value : textValue(*claims, otherKey);
    };
    m_claims.email = textValue(*claims, "email"_L1);
    m_claims.userName = textValue(*claims, "name"_L1);
    m_claims.workspaceId = either("workspaceId"_L1, "workspace_id"_L1);
    m_claims.organizationId = either("organizationId"_L1, "organization_id"_L1);
}

void SessionStore::writeTokenFile(const QString& token)
{
    if (!writePrivateFile(tokenFilePath(), token.toUtf8()))
        log(u"SessionStore: %1 could not be written"_s.arg(tokenFilePath()));
}

QString SessionStore::tokenFilePath() const
{
    return m_paths.applicationSupport + u"/companion.jwt"_s;
}

QString SessionStore::deviceName() const
{
    const QString name = m_desktop.hostName();
    return name.isEmpty() ? atStart(machineWords::thisMachine) : name;
}

}
