#include "Shell/StoreRecovery.h"

#include "Care/Backup/BackupKeeper.h"
#include "Care/Backup/Restore.h"
#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Engines/EngineSpec.h"
#include "Foundation/BackgroundQueue.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/SystemScheduler.h"
#include "Platform/AppPaths.h"
#include "Store/Core/DamagedFile.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/Salvage.h"
#include "Store/Core/StoreHealth.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QPointer>

namespace corvane {

namespace {

constexpr Milliseconds enginesTime { 5'000 }; // for engines to exit
constexpr Milliseconds lookAgain { 200 };

RecoveryChoice choice(const char* id, const QString& label, const QString& hint)
{
    return { QString::fromLatin1(id), label, hint };
}

}

StoreRecovery::StoreRecovery(const Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_at(surroundings)
{
    connect(&m_at.engine.db().health(), &StoreHealth::changed, this, &StoreRecovery::notice);
    if (const auto aside = awaitingChoice(m_at.paths.database())) {
        m_aside = *aside;
        m_step = Step::Choosing;
    }
}

StoreRecovery::~StoreRecovery()
{
    if (m_progress)
        m_progress->stopped = true;
}

QString StoreRecovery::explanation() const
{
    const QString kept = u"Engines are stopped, nothing is written, and new messages wait. "_s;
    switch (m_step) {
    case Step::None:
        return {};
    case Step::Stopping:
        return u"It is corrupt and must not be used. The engines are being stopped."_s;
    case Step::Stuck:
        return kept
            + u"The damaged file could not be moved out of the way. Check that its folder can be "
              "written: %1"_s.arg(m_at.paths.applicationSupport);
    case Step::Choosing:
    case Step::Copying:
        return kept + u"The damaged file was moved and stays as it is: %1"_s.arg(m_aside);
    }
    Q_UNREACHABLE();
}

QList<RecoveryChoice> StoreRecovery::choices() const
{
    if (m_step == Step::Stuck)
        return { choice("retry", u"Try again"_s, {}) };
    if (m_step != Step::Choosing)
        return {};
    QList<RecoveryChoice> offered { choice(
        "save", u"Save what can be read"_s, u"Copies every row that can still be read into a new database."_s) };
    if (const auto backup = latestBackup()) {
        const QDateTime made = QDateTime::fromMSecsSinceEpoch(backup->madeAtMs);
        offered.append(choice("backup", u"Use the latest backup"_s,
            u"Made on %1. Later changes are not in it."_s.arg(QLocale().toString(made, QLocale::ShortFormat))));
    }
    offered.append(
        choice("new", u"Start with an empty database"_s, u"Accounts stay connected and fetch what they can again."_s));
    return offered;
}

QString StoreRecovery::progressText() const
{
    if (!m_progress || m_progress->allTables == 0)
        return u"Reading the damaged file…"_s;
    return u"Table %1 of %2, %3 rows saved"_s.arg(m_progress->tables.load())
        .arg(m_progress->allTables.load())
        .arg(QLocale().toString(m_progress->rows.load()));
}

double StoreRecovery::progress() const
{
    return m_progress && m_progress->allTables > 0 ? double(m_progress->tables) / m_progress->allTables : 0;
}

void StoreRecovery::choose(const QString& id)
{
    if (m_step == Step::Stuck && id == "retry"_L1)
        return setAside();
    if (m_step != Step::Choosing)
        return;
    if (id == "save"_L1)
        copy(m_aside, Source::Damaged);
    else if (id == "backup"_L1 && latestBackup())
        copy(latestBackup()->file, Source::Backup);
    else if (id == "new"_L1 && makeEmpty())
        putInPlace();
}

void StoreRecovery::notice()
{
    const StoreFault fault = m_at.engine.db().health().fault();
    if (m_step == Step::None && (fault == StoreFault::Damaged || fault == StoreFault::NotADatabase))
        stopEngines();
}

void StoreRecovery::stopEngines()
{
    for (const Account& account : m_at.accounts.accounts()) {
        const WAStatus status = m_at.engine.runtime(account.id).status;
        if (!m_at.engine.isRunning(account) && status != WAStatus::Connecting && status != WAStatus::Starting)
            continue;
        m_stopped.append(account.slug);
        m_at.engine.stop(account);
    }
    const bool served = m_at.engine.mcpRunning();
    m_at.engine.stopUnifiedMCP();
    if (m_stopped.isEmpty() && !served)
        return setAside();
    set(Step::Stopping);
    m_timer = m_at.scheduler.after(enginesTime, [this] {
        const auto fired = std::move(m_timer);
        setAside();
    });
}

void StoreRecovery::setAside()
{
    m_at.engine.db().close();
    const auto aside = moveAside(m_at.paths.database());
    if (!aside)
        return set(Step::Stuck);
    m_aside = *aside;
    set(Step::Choosing);
}

void StoreRecovery::copy(const QString& from, Source source)
{
    if (!makeEmpty())
        return;
    m_progress = std::make_shared<SalvageProgress>();
    set(Step::Copying);
    m_timer = m_at.scheduler.every(lookAgain, [this] { Q_EMIT progressed(); });
    m_at.background.run<Result<Salvaged>>(
        [from, to = newFile(), source, progress = m_progress, paths = m_at.paths]() -> Result<Salvaged> {
            if (source == Source::Damaged)
                return salvage(from, to, *progress);
            SystemScheduler scheduler;
            QFile::remove(to);
            const auto restored = restoreDatabase(from, to, paths, scheduler);
            return restored ? Result<Salvaged>(Salvaged {}) : std::unexpected(restored.error());
        },
        [self = QPointer(this)](const Result<Salvaged>& result) {
            if (!self)
                return;
            self->m_timer.reset();
            if (!result) {
                QFile::remove(self->newFile());
                return self->set(Step::Choosing, result.error().message);
            }
            log(u"StoreRecovery: %1 rows saved; incomplete: %2"_s.arg(
                QString::number(result->rows), result->tornTables.join(u", "_s)));
            self->putInPlace();
        });
}

bool StoreRecovery::makeEmpty()
{
    QFile::remove(newFile());
    if (m_at.engine.db().makeEmpty(newFile()))
        return true;
    set(Step::Choosing, u"A new file cannot be created in %1."_s.arg(m_at.paths.applicationSupport));
    return false;
}

void StoreRecovery::putInPlace()
{
    if (!QFile::rename(newFile(), m_at.paths.database()))
        return set(Step::Choosing, u"The new file cannot be put in its place."_s);
    if (!m_at.engine.db().reopen())
        return set(Step::Choosing, u"The new file cannot be opened."_s);
    set(Step::None);
    askToRetell(m_at.paths);
    Q_EMIT recovered();
    for (const QString& slug : std::exchange(m_stopped, {})) {
        if (const auto account = m_at.accounts.findBySlug(slug))
            m_at.engine.start(*account);
    }
    m_at.engine.bump();
    m_at.engine.db().notifications().post(notifications::activeWorkspaceChanged);
}

void StoreRecovery::set(Step step, const QString& error)
{
    m_step = step;
    m_error = error;
    m_timer.reset();
    Q_EMIT changed();
}

QString StoreRecovery::newFile() const
{
    return m_at.paths.database() + u".new"_s;
}

std::optional<KeptBackup> StoreRecovery::latestBackup() const
{
    const QList<KeptBackup> kept = keptBackups(backupFolder(m_at.paths, m_at.engine.db().defaults()));
    return kept.isEmpty() ? std::nullopt : std::optional(kept.first());
}

}
