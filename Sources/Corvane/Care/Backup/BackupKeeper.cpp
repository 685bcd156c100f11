#include "Care/Backup/BackupKeeper.h"

#include "Foundation/BackgroundQueue.h"
#include "Foundation/Log.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/Desktop.h"
#include "Presentation/DateWords.h"
#include "Presentation/SizeWords.h"

#include <QDir>
#include <QPointer>

namespace corvane {

namespace {

constexpr qsizetype mostKept = 7;
constexpr Milliseconds dayBetween = std::chrono::hours(24);
constexpr Milliseconds lookAgain = std::chrono::hours(1);
constexpr Milliseconds tick { 200 };

const QString dailyKey = u"nimb.dailyBackup"_s;
const QString mediaKey = u"nimb.backupMedia"_s;
const QString folderKey = u"nimb.backupFolder"_s;
const QString nameFormat = u"'corvane'-yyyy-MM-dd-HHmmss'.tar'"_s;

QDateTime timeIn(const QString& name)
{
    return QDateTime::fromString(name, nameFormat);
}

void removeOldest(const QString& folder)
{
    const QList<KeptBackup> kept = keptBackups(folder);
    for (const KeptBackup& backup : kept.mid(mostKept))
        QFile::remove(backup.file);
}

}

QString backupFolder(const AppPaths& paths, const UserDefaults& defaults)
{
    return defaults.text(folderKey).value_or(paths.applicationSupport + u"/backups"_s);
}

bool backsUpDaily(const UserDefaults& defaults)
{
    return defaults.boolean(dailyKey).value_or(false);
}

QList<KeptBackup> keptBackups(const QString& folder)
{
    QList<KeptBackup> kept;
    const QFileInfoList files = QDir(folder).entryInfoList(
        { u"corvane-*.tar"_s }, QDir::Files | QDir::NoSymLinks, QDir::Name | QDir::Reversed);
    for (const QFileInfo& file : files) {
        if (const QDateTime time = timeIn(file.fileName()); time.isValid())
            kept.append({ file.absoluteFilePath(), time.toMSecsSinceEpoch(), file.size() });
    }
    return kept;
}

BackupKeeper::BackupKeeper(const Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_at(surroundings)
{
}

BackupKeeper::~BackupKeeper()
{
    cancel();
}

void BackupKeeper::start()
{
    m_hourly = m_at.scheduler.every(lookAgain, [this] { backUpIfDue(); });
}

QString BackupKeeper::lastText() const
{
    const QList<KeptBackup> kept = keptBackups(folder());
    if (kept.isEmpty())
        return u"There is none yet."_s;
    const KeptBackup& last = kept.first();
    return u"The last one was made %1 and takes %2."_s.arg(
        DateWords(m_at.scheduler.nowMs()).ago(last.madeAtMs), sizeWords(last.bytes));
}

bool BackupKeeper::daily() const
{
    return backsUpDaily(m_at.defaults);
}

void BackupKeeper::setDaily(bool on)
{
    m_at.defaults.setBoolean(dailyKey, on);
    Q_EMIT changed();
    backUpIfDue();
}

bool BackupKeeper::media() const
{
    return m_at.defaults.boolean(mediaKey).value_or(true);
}

void BackupKeeper::setMedia(bool on)
{
    m_at.defaults.setBoolean(mediaKey, on);
    Q_EMIT changed();
}

QString BackupKeeper::folder() const
{
    return backupFolder(m_at.paths, m_at.defaults);
}

double BackupKeeper::progress() const
{
    return busy() && m_progress->allBytes > 0 ? std::min(1.0, double(m_progress->bytes) / double(m_progress->allBytes))
                                              : 0;
}

QString BackupKeeper::progressText() const
{
    if (!busy() || m_progress->bytes == 0)
        return u"Copying the database…"_s;
    return u"%1 of %2"_s.arg(sizeWords(m_progress->bytes), sizeWords(m_progress->allBytes));
}

void BackupKeeper::backUpIfDue()
{
    const QList<KeptBackup> kept = keptBackups(folder());
    if (daily() && (kept.isEmpty() || m_at.scheduler.nowMs() - kept.first().madeAtMs >= dayBetween.count()))
        backUpNow();
}

void BackupKeeper::backUpNow()
{
    if (busy())
        return;
    m_progress = std::make_shared<BackupProgress>();
    m_error.clear();
    m_ticks = m_at.scheduler.every(tick, [this] { Q_EMIT progressed(); });
    Q_EMIT changed();
    const qint64 now = m_at.scheduler.nowMs();
    const QString file = folder() + u'/' + QDateTime::fromMSecsSinceEpoch(now).toString(nameFormat);
    m_at.background.run<Result<Manifest>>(
        [paths = m_at.paths, request = BackupRequest { file, now, media(), {} },
            progress = m_progress]() -> Result<Manifest> {
            const QString folder = QFileInfo(request.file).path();
            if (!QDir().mkpath(folder))
                return failure(u"The folder %1 cannot be created."_s.arg(folder));
            auto made = makeBackup(paths, request, progress);
            if (made)
                removeOldest(folder);
            return made;
        },
        [self = QPointer(this)](const Result<Manifest>& made) {
            if (self)
                self->end(made);
        });
}

void BackupKeeper::end(const Result<Manifest>& made)
{
    if (!made && !m_progress->stopped) {
        m_error = made.error().message;
        log(u"The backup failed: "_s + m_error);
    }
    m_progress.reset();
    m_ticks.reset();
    Q_EMIT changed();
}

void BackupKeeper::cancel()
{
    if (m_progress)
        m_progress->stopped = true;
}

void BackupKeeper::chooseFolder()
{
    m_at.desktop.chooseFolder(u"Folder for backups"_s, this, [this](const Result<QList<QUrl>>& chosen) {
        if (chosen && chosen->isEmpty())
            return;
        m_error = chosen ? QString() : chosen.error().message;
        if (chosen)
            m_at.defaults.setText(folderKey, chosen->first().toLocalFile());
        Q_EMIT changed();
    });
}

}
