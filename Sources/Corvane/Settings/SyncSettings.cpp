#include "Settings/SyncSettings.h"

#include "Foundation/Json.h"
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
        return QStringLiteral("bad");
    return row.status == QLatin1StringView("running") ? QStringLiteral("busy") : QStringLiteral("good");
}

struct Word {
    QLatin1StringView word;
    QLatin1StringView text;
};

/// What the tool server and the push write into their rows, and what a person reads instead.
constexpr Word sources[] = {
    { QLatin1StringView("bootstrap"), QLatin1StringView("Workspaces and integrations") },
    { QLatin1StringView("inbox"), QLatin1StringView("Conversations from the web") },
    { QLatin1StringView("outbound_drafts"), QLatin1StringView("Drafts from the web") },
    { QLatin1StringView("crm"), QLatin1StringView("Contacts and deals") },
    { QLatin1StringView("corvane_ingest"), QLatin1StringView("Local channels to the web") },
};
constexpr Word statuses[] = {
    { QLatin1StringView("running"), QLatin1StringView("Running") },
    { QLatin1StringView("ok"), QLatin1StringView("Up to date") },
    { QLatin1StringView("skipped"), QLatin1StringView("Skipped") },
    { QLatin1StringView("waiting_for_web"), QLatin1StringView("Waiting for the web") },
    { QLatin1StringView("error"), QLatin1StringView("Failed") },
};

/// A word that is not known stands for itself.
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

/// What the sources count.
constexpr Counted counts[] = {
    { QLatin1StringView("workspaces"), QLatin1StringView("workspace"), QLatin1StringView("workspaces") },
    { QLatin1StringView("rows"), QLatin1StringView("row"), QLatin1StringView("rows") },
    { QLatin1StringView("localThreads"), QLatin1StringView("chat"), QLatin1StringView("chats") },
    { QLatin1StringView("localMessages"), QLatin1StringView("message"), QLatin1StringView("messages") },
};

SyncHealthLine healthLine(
    const SyncHealthRow& row, const std::optional<SyncStateCursorRow>& cursor, const DateWords& words)
{
    QStringList details;
    if (!row.lastError.isEmpty())
        details.append(row.lastError);
    else if (row.lastFinishedAt)
        details.append(QStringLiteral("Finished ") + words.ago(*row.lastFinishedAt));
    const QJsonObject counted = jsonObject(row.countsJson.toUtf8()).value_or(QJsonObject());
    for (const auto& [key, one, many] : counts) {
        if (const auto count = wholeNumber(counted, key))
            details.append(countWords(*count, one, many));
    }
    if (cursor && cursor->lastPulled)
        details.append(QStringLiteral("cursor %1").arg(*cursor->lastPulled));
    return { plainWords(sources, row.source), plainWords(statuses, row.status), kindOf(row),
        details.join(QStringLiteral(" · ")) };
}

QString engineLine(const EngineInfoRow& engine, const DateWords& words)
{
    const QString revision = engine.gitSha.value_or(QString()).left(8);
    return QStringLiteral("Version %1%2, started %3")
        .arg(engine.version, revision.isEmpty() ? QString() : u' ' + revision, words.ago(engine.startedAt));
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
        return QStringLiteral("Signing in…");
    if (!signedIn())
        return m_session.lastErrorText().isEmpty() ? QStringLiteral("Not signed in") : m_session.lastErrorText();
    return m_session.webRejected() ? QStringLiteral("The web rejected the session of %1 — sign out and sign in again")
                                         .arg(machineWords::thisMachine)
                                   : QStringLiteral("Signed in");
}

QString SyncSettings::stateKind() const
{
    if (m_session.busy())
        return QStringLiteral("busy");
    if (!signedIn())
        return m_session.lastErrorText().isEmpty() ? QStringLiteral("idle") : QStringLiteral("bad");
    return m_session.webRejected() ? QStringLiteral("bad") : QStringLiteral("good");
}

QString SyncSettings::actionLabel() const
{
    return signedIn() ? QStringLiteral("Sign Out") : QStringLiteral("Sign in to Nimb");
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
    const QString id = queueWebPullSync(m_db, QStringLiteral("settings"));
    m_queuedText = QStringLiteral("Queued as ") + id;
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
