#include "Settings/SyncSettings.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"
#include "Presentation/CountWords.h"
#include "Presentation/DateWords.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Core/Workspaces.h"
#include "Store/Sync/SyncQueries.h"
#include "Web/SessionStore.h"

#include <algorithm>
#include <span>

namespace corvane {

namespace {

QString kindOf(const SyncHealthRow& row)
{
    if (!row.lastError.isEmpty())
        return u"bad"_s;
    return row.status == "running"_L1 ? u"busy"_s : u"good"_s;
}

struct Word {
    QLatin1StringView word;
    QLatin1StringView text;
};

/// The stored words of the tool server and the push, and their labels.
constexpr Word sources[] = {
    { "bootstrap"_L1, "Workspaces and integrations"_L1 },
    { "inbox"_L1, "Conversations from the web"_L1 },
    { "outbound_drafts"_L1, "Drafts from the web"_L1 },
    { "crm"_L1, "Contacts and deals"_L1 },
    { "corvane_ingest"_L1, "Local channels to the web"_L1 },
};
constexpr Word statuses[] = {
    { "running"_L1, "Running"_L1 },
    { "ok"_L1, "Up to date"_L1 },
    { "skipped"_L1, "Skipped"_L1 },
    { "waiting_for_web"_L1, "Waiting for the web"_L1 },
    { "error"_L1, "Failed"_L1 },
};

/// Unknown words are shown as they are.
QString plainWords(std::span<const Word> table, const QString& word)
{
    const auto known = std::ranges::find(table, word, &Word::word);
    return known == table.end() ? word : QString(known->text);
}

struct Counted {
    QLatin1StringView key;
    QLatin1StringView one;
    QLatin1StringView many;
};

/// The units of the sources.
constexpr Counted counts[] = {
    { "workspaces"_L1, "workspace"_L1, "workspaces"_L1 },
    { "rows"_L1, "row"_L1, "rows"_L1 },
    { "localThreads"_L1, "chat"_L1, "chats"_L1 },
    { "localMessages"_L1, "message"_L1, "messages"_L1 },
};

SyncHealthLine healthLine(
    const SyncHealthRow& row, const std::optional<SyncStateCursorRow>& cursor, const DateWords& words)
{
    QStringList details;
    if (!row.lastError.isEmpty())
        details.append(row.lastError);
    else if (row.lastFinishedAt)
        details.append(u"Finished "_s + words.ago(*row.lastFinishedAt));
    const QJsonObject counted = jsonObject(row.countsJson.toUtf8()).value_or(QJsonObject());
    for (const auto& [key, one, many] : counts) {
        if (const auto count = wholeNumber(counted, key))
            details.append(countWords(*count, one, many));
    }
    if (cursor && cursor->lastPulled)
        details.append(u"cursor %1"_s.arg(*cursor->lastPulled));
    return { plainWords(sources, row.source), plainWords(statuses, row.status), kindOf(row), details.join(u" · "_s) };
}

QString engineLine(const EngineInfoRow& engine, const DateWords& words)
{
    const QString revision = engine.gitSha.value_or(QString()).left(8);
    return u"Version %1%2, started %3"_s.arg(
        engine.version, revision.isEmpty() ? QString() : u' ' + revision, words.ago(engine.startedAt));
}

}

SyncSettings::SyncSettings(SessionStore& session, LocalDB& db, QObject* parent)
    : QObject(parent)
    , m_session(session)
    , m_db(db)
{
    connect(&m_session, &SessionStore::changed, this, &SyncSettings::changed);
    m_db.watch().on(StoreSubject::Sync, this, [this] { refresh(); });
}

bool SyncSettings::signedIn() const
{
    return m_session.signedIn();
}

QString SyncSettings::displayLine() const
{
    return m_session.displayLine();
}

QString SyncSettings::stateText() const
{
    if (m_session.busy())
        return u"Signing in…"_s;
    if (!signedIn())
        return m_session.lastErrorText().isEmpty() ? u"Not signed in"_s : m_session.lastErrorText();
    return m_session.webRejected()
        ? u"The web rejected the session of %1 — sign out and sign in again"_s.arg(machineWords::thisMachine)
        : u"Signed in"_s;
}

QString SyncSettings::stateKind() const
{
    if (m_session.busy())
        return u"busy"_s;
    if (!signedIn())
        return m_session.lastErrorText().isEmpty() ? u"idle"_s : u"bad"_s;
    return m_session.webRejected() ? u"bad"_s : u"good"_s;
}

QString SyncSettings::actionLabel() const
{
    return signedIn() ? u"Sign Out"_s : u"Sign in to Nimb"_s;
}

void SyncSettings::signInOrOut()
{
    if (signedIn())
        m_session.signOut();
    else
        m_session.startSignIn();
}

void SyncSettings::queuePull()
{
    const QString id = queueWebPullSync(m_db, u"settings"_s);
    m_queuedText = u"Queued as "_s + id;
    refresh();
}

void SyncSettings::refresh()
{
    const DateWords words(m_db.nowMs());
    m_health.clear();
    const QString workspace = activeWorkspaceId(m_db, Repair::No);
    for (const SyncHealthRow& row : fetchSyncHealthRows(m_db))
        m_health.append(healthLine(row, fetchSyncStateCursor(m_db, row.source + u':' + workspace), words));
    const auto engine = fetchEngineInfo(m_db);
    m_engineText = engine ? engineLine(*engine, words) : QString();
    Q_EMIT changed();
}

}
