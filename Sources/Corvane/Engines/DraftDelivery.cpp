#include "Engines/DraftDelivery.h"

#include "Engines/EngineCommands.h"
#include "Engines/EngineManager.h"
#include "Engines/Outbox.h"
#include "Foundation/Literals.h"
#include "Platform/ProcessLauncher.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Messages/ChannelFeatures.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr Milliseconds watchPeriod { 4000 };
constexpr qint64 acknowledgmentMs = 120'000;
constexpr int rowsPerTick = 50;

bool placesTextInBrowser(Channel channel)
{
    return channel == Channel::LinkedIn || channel == Channel::Instagram || channel == Channel::Messenger;
}

}

DraftDelivery::DraftDelivery(LocalDB& db, EngineManager& engines, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_engines(engines)
    , m_scheduler(scheduler)
{
    m_db.watch().on(StoreSubject::Drafts, this, [this] { refresh(); });
    connect(&m_engines, &EngineManager::engineEnded, this, &DraftDelivery::engineEnded);
    connect(&m_engines, &EngineManager::sendProgressed, this, &DraftDelivery::sendProgressed);
    connect(&m_engines, &EngineManager::stopping, this, &DraftDelivery::stop);
}

DraftDelivery::~DraftDelivery() = default;

void DraftDelivery::startWatch()
{
    refresh();
    m_timer = m_scheduler.every(watchPeriod, [this] { refresh(); });
}

void DraftDelivery::stop()
{
    m_isStopped = true;
    m_timer.reset();
    m_soon.reset();
}

void DraftDelivery::refresh()
{
    if (m_isStopped || !m_db.isSound())
        return;
    if (m_db.inTransaction()) {
        m_soon = m_scheduler.after(Milliseconds(0), [this] { refresh(); });
        return;
    }
    if (m_db.isHeldElsewhere())
        return; // retried at the next tick
    expire();
    failThoseOfGoneAccounts();
    const QList<DraftOfAccount> approved = fetchApprovedIds(m_db);
    wakeEngines(approved);
    deliverApproved(approved);
    present();
}

bool DraftDelivery::deliver(const QString& draftId, const Account& account)
{
    const DraftClaim claim = DraftClaim::claim(m_db, draftId);
    if (claim.returned)
        Q_EMIT returned(draftId);
    if (!claim.draft)
        return true;
    const PendingDraft& row = claim.draft->row();
    const bool places = placesTextInBrowser(account.channel());
    const ChannelFeatures features = fetchFeatures(m_db, account.slug);
    const auto files = filesFromText(row.files);
    if (const auto reason = obstacle(files, !places && features.files, account)) {
        failClaimedDraft(m_db, *claim.draft, *reason);
        return true;
    }
    const QByteArray line = commandLine(places
            ? placeCommand(row.externalId, row.body, row.id)
            : sendCommand(row.externalId, { row.body, row.subject, *files }, features, Acknowledges::Draft, row.id));
    if (isStillUnread(*claim.draft, line))
        return true;
    const auto engine = m_engines.engineOf(account);
    if (engine && m_engines.writeLine(account, line, places ? u"writeCommand"_s : u"sendText"_s)) {
        m_awaited.insert(draftId, { m_scheduler.monotonicMs(), *claim.draft, engine, line });
        return true;
    }
    (void)unclaimDraft(m_db, *claim.draft);
    return false;
}

Decided DraftDelivery::approve(const QString& draftId, const QString& seenHash)
{
    const auto draft = fetchDraft(m_db, draftId);
    const auto files = draft && waitsForPerson(*draft) ? filesFromText(draft->files) : std::nullopt;
    if (files) {
        const QList<OutgoingFile> now = m_engines.outbox().asTheyLie(*files);
        if (now != *files)
            return returnDraft(m_db, draftId, now);
    }
    return approveDraft(m_db, draftId, seenHash);
}

/// Why these files differ from the approved ones.
std::optional<QString> DraftDelivery::obstacle(
    const std::optional<QList<OutgoingFile>>& files, bool takesFiles, const Account& account) const
{
    if (!files)
        return describe(DraftFailure::Unreadable);
    if (files->isEmpty())
        return std::nullopt;
    if (!takesFiles)
        return describe(DraftFailure::NoFiles, account.name);
    const QList<OutgoingFile> now = m_engines.outbox().asTheyLie(*files);
    for (qsizetype i = 0; i < now.size(); ++i) {
        if (now[i].bytes < 0)
            return describe(DraftFailure::FileGone, now[i].name);
        if (now[i] != files->at(i))
            return describe(DraftFailure::FileChanged, now[i].name);
    }
    return std::nullopt;
}

/// The engine has not read the previous line yet: a second one would be sent, too.
bool DraftDelivery::isStillUnread(const ClaimedDraft& draft, const QByteArray& line)
{
    const auto earlier = m_awaited.find(draft.row().id);
    if (earlier == m_awaited.end() || !earlier->engine || earlier->engine->hasRead(earlier->line)
        || earlier->engine->withdraw(earlier->line))
        return false;
    if (earlier->line == line) {
        earlier->sinceMs = m_scheduler.monotonicMs();
        earlier->draft = draft;
    } else {
        failClaimedDraft(m_db, draft, describe(DraftFailure::EarlierTextUnread));
    }
    return true;
}

/// If the engine can no longer read it, the draft is approved again.
bool DraftDelivery::takeBack(const Awaited& awaited)
{
    if (!awaited.draft || !awaited.engine->withdraw(awaited.line))
        return false;
    if (unclaimDraft(m_db, *awaited.draft))
        m_wokenFor.insert(awaited.draft->row().id);
    return true;
}

/// Unread drafts go back to "approved".
void DraftDelivery::engineEnded(const std::shared_ptr<ChildProcess>& engine)
{
    const auto takeTheirsBack = [this, engine] {
        m_awaited.removeIf([&](const auto& each) { return each->engine == engine && takeBack(*each); });
        refresh();
    };
    if (m_db.inTransaction())
        m_soon = m_scheduler.after(Milliseconds(0), takeTheirsBack);
    else
        takeTheirsBack();
}

void DraftDelivery::sendProgressed(const QString& accountSlug, const QString& draftId)
{
    const auto awaited = m_awaited.find(draftId);
    const auto draft = awaited == m_awaited.end() ? std::nullopt : fetchDraft(m_db, draftId);
    if (draft && draft->accountId == accountSlug)
        awaited->sinceMs = m_scheduler.monotonicMs();
}

/// Two minutes without an acknowledgment by the monotonic clock: neither clock changes nor sleep shorten them.
void DraftDelivery::expire()
{
    const qint64 now = m_scheduler.monotonicMs();
    const QStringList sending = fetchSendingIds(m_db);
    for (const QString& id : sending) {
        if (!m_awaited.contains(id))
            m_awaited.insert(id, { now, {}, {}, {} });
    }
    m_awaited.removeIf([&](const auto& each) {
        if (!sending.contains(each.key()))
            return !each->engine || each->engine->hasRead(each->line);
        if (now - each->sinceMs <= acknowledgmentMs)
            return false;
        if (takeBack(*each))
            return true;
        failUnacknowledgedDraft(m_db, each.key());
        return false;
    });
}

void DraftDelivery::failThoseOfGoneAccounts()
{
    for (const QString& slug : accountsWithApprovedDrafts(m_db)) {
        if (m_engines.isGone(slug))
            failApprovedDrafts(m_db, slug, describe(DraftFailure::AccountGone, slug));
    }
}

/// A signed-out engine drops its input, and one that has not read it for two minutes gets no more.
bool DraftDelivery::canTake(const Account& account) const
{
    const auto engine = m_engines.engineOf(account);
    const WAStatus status = m_engines.runtime(account.id).status;
    if (!engine || !engine->isRunning() || !engine->isInputOpen() || status == WAStatus::NeedsQR
        || status == WAStatus::LoggedOut)
        return false;
    const qint64 limit = m_scheduler.monotonicMs() - acknowledgmentMs;
    return std::ranges::none_of(m_awaited, [&](const Awaited& each) {
        return each.engine == engine && each.sinceMs < limit && !engine->hasRead(each.line);
    });
}

void DraftDelivery::deliverApproved(const QList<DraftOfAccount>& approved)
{
    QHash<QString, Account> takers;
    for (const DraftOfAccount& draft : approved) {
        const auto account = m_engines.accountBySlug(draft.accountId);
        if (account && m_awaited.contains(draft.id))
            deliver(draft.id, *account); // before its engine reads the first line
        if (account && !takers.contains(account->slug) && canTake(*account))
            takers.insert(account->slug, *account);
    }
    int left = rowsPerTick;
    for (bool someRefused = true; someRefused && left > 0 && !takers.isEmpty();) {
        someRefused = false;
        for (const PendingDraft& row : fetchApprovedDrafts(m_db, takers.keys(), left)) {
            if (!takers.contains(row.accountId))
                continue;
            if (deliver(row.id, takers.value(row.accountId))) {
                --left;
                continue;
            }
            takers.remove(row.accountId);
            someRefused = true;
        }
    }
}

/// Once per approval, so that a crashing engine is not restarted forever, and drafts approved before a pause wait. At
/// the first check this is everything that a paused account has.
void DraftDelivery::wakeEngines(const QList<DraftOfAccount>& approved)
{
    QSet<QString> seen;
    for (const DraftOfAccount& draft : approved) {
        seen.insert(draft.id);
        const auto account = m_wokenFor.contains(draft.id) ? std::nullopt : m_engines.accountBySlug(draft.accountId);
        if (!account || m_engines.isRunning(*account) || m_engines.isStarting(*account)
            || m_engines.runtime(account->id).status == WAStatus::LoggedOut
            || (m_isFirstLook && account->paused.value_or(false)))
            continue;
        m_engines.resume(*account);
    }
    m_wokenFor = seen;
    m_isFirstLook = false;
}

void DraftDelivery::present()
{
    QList<PendingDraft> pending = fetchDrafts(m_db,
        { DraftStatus::Failed, DraftStatus::Pending, DraftStatus::Sending, DraftStatus::Placed, DraftStatus::Approved },
        rowsPerTick);
    for (PendingDraft& draft : pending) {
        const auto account = m_engines.accountBySlug(draft.accountId);
        draft.accountName = account ? account->name : draft.accountId;
    }
    const bool isNews = std::exchange(m_pending, pending) != pending;
    if (isNews || !std::exchange(m_filesAreTidy, true))
        tidyFiles();
    if (isNews)
        Q_EMIT pendingChanged();
}

/// Sent and rejected drafts no longer need their files; after a crash, others may have lost their row.
void DraftDelivery::tidyFiles()
{
    const Outbox& outbox = m_engines.outbox();
    const auto files = outbox.holdsForDrafts() ? fetchDraftFiles(m_db) : std::nullopt;
    if (files)
        outbox.keepForDrafts(*files);
}

}
