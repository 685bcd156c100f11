#include "Platform/Linux/Calendar/FolderCalendars.h"

#include "Foundation/Literals.h"
#include "Platform/Linux/Calendar/IcsText.h"
#include "Platform/PrivateFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTimeZone>
#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {

namespace {

constexpr qsizetype mostCalendars = 200;
constexpr qsizetype mostFiles = 50'000;
constexpr qsizetype longestName = 4096; ///< of a calendar's title or colour

QString firstLine(const QString& path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readLine(longestName)).simplified();
}

QString colourIn(const QString& folder)
{
    static const QRegularExpression pattern(u"^#[0-9a-fA-F]{6}"_s); // an alpha value may follow
    return pattern.match(firstLine(folder + u"/color"_s)).captured();
}

bool isCalendarFile(QByteArrayView name)
{
    return name.endsWith(".ics") && !name.startsWith('.');
}

bool holdsFiles(const QString& folder)
{
    const QStringList names = QDir(folder).entryList({ u"*.ics"_s }, QDir::Files);
    return !names.isEmpty();
}

/// A file name that every file system accepts.
QString fileName(const QString& uid)
{
    static const QRegularExpression plain(u"^[A-Za-z0-9_@-][A-Za-z0-9._@-]{0,120}$"_s);
    const QString name = plain.match(uid).hasMatch()
        ? uid
        : QString::fromLatin1(QCryptographicHash::hash(uid.toUtf8(), QCryptographicHash::Sha1).toHex());
    return name + u".ics"_s;
}

/// Opens regular files only, and never blocks.
std::optional<QByteArray> contentOf(const QString& path)
{
    const Descriptor descriptor(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    struct stat status {};
    if (!descriptor.isOpen() || ::fstat(descriptor.number(), &status) != 0 || !S_ISREG(status.st_mode)
        || status.st_size > mostOfCalendarFile)
        return std::nullopt;
    QFile file;
    if (!file.open(descriptor.number(), QIODevice::ReadOnly))
        return std::nullopt;
    return file.read(status.st_size); // thousands of buffers of the maximum size would cost more than the reads
}

Result<void> write(const QString& path, const QByteArray& content, const QString& title)
{
    if (writePrivateFile(path, content))
        return {};
    return failure(u"The calendar “%1” could not be written."_s.arg(title));
}

}

FolderCalendars::FolderCalendars(const QString& dataHome, const QString& home)
    : m_dataHome(dataHome)
    , m_home(home)
    , m_watch([this] { Q_EMIT changed(); })
{
}

QStringList FolderCalendars::roots(const CalendarPlaces& places) const
{
    QStringList roots { m_dataHome + u"/calendars"_s };
    for (const QString& folder : places.folders) {
        const QString path = folder.startsWith("~/"_L1) ? m_home + folder.sliced(1) : folder;
        if (QDir::isAbsolutePath(path) && !roots.contains(QDir::cleanPath(path)))
            roots.append(QDir::cleanPath(path));
    }
    return roots;
}

QList<FolderCalendars::Folder> FolderCalendars::folders(const CalendarPlaces& places) const
{
    QList<Folder> found;
    QSet<QString> seen; // two paths to one folder are one calendar
    const auto add = [&](const QString& path, const QString& id) {
        const QString real = QFileInfo(path).canonicalFilePath();
        if (real.isEmpty() || seen.contains(real) || found.size() >= mostCalendars)
            return;
        seen.insert(real);
        const QString title = firstLine(path + u"/displayname"_s);
        QString origin = path;
        if (origin.startsWith(m_home + u'/'))
            origin.replace(0, m_home.size(), u'~');
        found.append({ path,
            { id, title.isEmpty() ? QFileInfo(path).fileName() : title, colourIn(path), origin,
                ::access(QFile::encodeName(path).constData(), W_OK | X_OK) == 0 } });
    };
    const QStringList all = roots(places);
    for (const QString& root : all) {
        if (!QFileInfo(root).isDir())
            continue;
        const bool usual = root == all.first();
        const QStringList below = QDir(root).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        if (!usual && (below.isEmpty() || holdsFiles(root)))
            add(root, root);
        for (const QString& name : below)
            add(root + u'/' + name, usual ? name : root + u'/' + name);
    }
    return found;
}

Result<FolderCalendars::Folder> FolderCalendars::folder(const CalendarPlaces& places, const QString& calendarId) const
{
    const QList<Folder> all = folders(places);
    const auto found = std::ranges::find(all, calendarId, [](const Folder& one) { return one.info.id; });
    if (found == all.end())
        return failure(u"The calendar is no longer there."_s);
    return *found;
}

CalendarAccess FolderCalendars::access(const CalendarPlaces& places) const
{
    CalendarAccess access = CalendarAccess::None;
    for (const QString& root : roots(places)) {
        const QFileInfo folder(root);
        if (folder.isDir() && folder.isReadable() && folder.isExecutable())
            return CalendarAccess::Full;
        if (folder.isDir() && folder.isWritable())
            access = CalendarAccess::WriteOnly;
    }
    return access;
}

void FolderCalendars::watch(const CalendarPlaces& places)
{
    QStringList watched = roots(places);
    for (const Folder& folder : folders(places))
        watched.append(folder.path);
    watched.removeDuplicates();
    m_watch.watch(watched);
}

/// A time without a zone follows the machine's zone.
void FolderCalendars::useZone()
{
    const QByteArray zone = QTimeZone::systemTimeZoneId();
    if (zone != m_zone)
        m_read.clear();
    m_zone = zone;
}

CalendarReading FolderCalendars::read(const CalendarPlaces& places, qint64 fromMs, qint64 toMs)
{
    const std::lock_guard lock(m_mutex);
    useZone();
    CalendarReading reading;
    QHash<QString, Files> read;
    for (const Folder& folder : folders(places)) {
        reading.calendars.append(folder.info);
        Files files = update(folder, reading.troubles);
        for (File& file : files)
            file.calendar.addTo(reading.entries, folder.info.id, fromMs, toMs);
        read.insert(folder.path, std::move(files));
    }
    m_read = std::move(read);
    return reading;
}

CalendarReading FolderCalendars::readKnown(const CalendarPlaces& places, qint64 fromMs, qint64 toMs)
{
    const std::lock_guard lock(m_mutex);
    useZone();
    CalendarReading reading;
    for (const Folder& folder : folders(places)) {
        reading.calendars.append(folder.info);
        if (!m_read.contains(folder.path))
            m_read.insert(folder.path, update(folder, reading.troubles));
        for (File& file : m_read[folder.path])
            file.calendar.addPageTo(reading.entries, folder.info.id, fromMs, toMs);
    }
    return reading;
}

/// The files of the folder as last read, with changes since then.
FolderCalendars::Files FolderCalendars::update(const Folder& folder, QStringList& troubles)
{
    Files before = m_read.take(folder.path);
    Files files;
    files.reserve(before.size());
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(
        ::opendir(QFile::encodeName(folder.path).constData()), &::closedir);
    if (!listing) {
        troubles.append(u"The calendar “%1” could not be read."_s.arg(folder.info.title));
        return files;
    }
    int unreadable = 0;
    while (const dirent* const item = ::readdir(listing.get())) {
        const QByteArray name(static_cast<const char*>(item->d_name));
        struct stat status {};
        if (!isCalendarFile(name) || files.size() >= mostFiles
            || ::fstatat(::dirfd(listing.get()), name.constData(), &status, 0) != 0 || !S_ISREG(status.st_mode))
            continue;
        const Stamp stamp { status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec, status.st_size,
            status.st_ino };
        File file = before.take(name);
        if (file.stamp != stamp) {
            const auto content = contentOf(folder.path + u'/' + QFile::decodeName(name));
            file = { stamp, ExpandedIcs(content ? IcsFile::read(*content, m_zone) : nullptr) };
        }
        unreadable += file.calendar.file() ? 0 : 1;
        files.insert(name, std::move(file));
    }
    if (unreadable > 0)
        troubles.append(unreadable == 1
                ? u"A file of the calendar “%1” could not be read."_s.arg(folder.info.title)
                : u"%1 files of the calendar “%2” could not be read."_s.arg(unreadable).arg(folder.info.title));
    return files;
}

FolderCalendars::Stamp FolderCalendars::stampOf(const QString& path)
{
    struct stat status {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return { status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec, status.st_size, status.st_ino };
}

QHash<QString, QByteArray> FolderCalendars::filesByUid(const Folder& folder)
{
    useZone();
    QStringList troubles;
    const Files& files = *m_read.insert(folder.path, update(folder, troubles));
    QHash<QString, QByteArray> names;
    for (auto file = files.cbegin(); file != files.cend(); ++file) {
        const IcsFile* const calendar = file->calendar.file();
        for (const QString& uid : calendar ? calendar->uids() : QStringList())
            names.insert(uid, file.key());
    }
    return names;
}

Result<void> FolderCalendars::add(
    const CalendarPlaces& places, const QString& calendarId, const NewCalendarEntry& entry)
{
    const auto folder = this->folder(places, calendarId);
    if (!folder)
        return std::unexpected(folder.error());
    const QString path = folder->path + u'/' + fileName(entry.uid);
    const auto written = write(path, icsOf(entry), folder->info.title);
    const std::lock_guard lock(m_mutex);
    if (written)
        m_written.insert(path, stampOf(path));
    return written;
}

Result<void> FolderCalendars::remove(const CalendarPlaces& places, const QString& calendarId, const QString& uid)
{
    const auto folder = this->folder(places, calendarId);
    if (!folder)
        return std::unexpected(folder.error());
    const QString path = folder->path + u'/' + fileName(uid);
    const std::lock_guard lock(m_mutex);
    if (!m_written.contains(path) || m_written.value(path) != stampOf(path))
        return failure(u"The event was changed meanwhile, so it was kept."_s);
    if (!QFile::remove(path))
        return failure(u"The calendar “%1” could not be written."_s.arg(folder->info.title));
    m_written.remove(path);
    return {};
}

Result<CalendarImport> FolderCalendars::import(
    const CalendarPlaces& places, const QString& calendarId, const QByteArray& ics)
{
    const auto folder = this->folder(places, calendarId);
    if (!folder)
        return std::unexpected(folder.error());
    const IcsParts parts = icsParts(ics);
    const std::shared_ptr<const IcsFile> whole = IcsFile::read(ics, QTimeZone::systemTimeZoneId());
    if (parts.events.isEmpty() || !whole)
        return failure(u"There is no event in this file."_s);
    const std::lock_guard lock(m_mutex);
    const QHash<QString, QByteArray> present = filesByUid(*folder);
    CalendarImport result;
    for (auto event = parts.events.keyBegin(); event != parts.events.keyEnd(); ++event) {
        const QString uid = QString::fromUtf8(*event);
        if (present.contains(uid)) {
            ++result.present;
            continue;
        }
        if (const auto written = write(folder->path + u'/' + fileName(uid), parts.file(*event), folder->info.title);
            !written)
            return std::unexpected(written.error());
        ++result.added;
    }
    return result;
}

Result<QByteArray> FolderCalendars::exported(
    const CalendarPlaces& places, const QString& calendarId, const QString& uid)
{
    const auto folder = this->folder(places, calendarId);
    if (!folder)
        return std::unexpected(folder.error());
    const std::lock_guard lock(m_mutex);
    const QByteArray name = filesByUid(*folder).value(uid);
    const auto content = name.isEmpty() ? std::nullopt : contentOf(folder->path + u'/' + QFile::decodeName(name));
    if (!content)
        return failure(u"The event no longer exists."_s);
    return icsParts(*content).file(uid.toUtf8());
}

int FolderCalendars::openTasks(const CalendarPlaces& places)
{
    int open = 0;
    for (const Folder& folder : folders(places)) {
        for (const QString& name : QDir(folder.path).entryList({ u"*.ics"_s }, QDir::Files))
            open += corvane::openTasks(contentOf(folder.path + u'/' + name).value_or(QByteArray()));
    }
    return open;
}

Result<void> FolderCalendars::makeCalendar(const QString& title)
{
    const QString folder = m_dataHome + u"/calendars/"_s + fileName(title.toLower()).chopped(4);
    if (!QDir().mkpath(folder))
        return failure(u"The folder %1 could not be made."_s.arg(folder));
    if (QFileInfo::exists(folder + u"/displayname"_s))
        return {};
    return write(folder + u"/displayname"_s, title.toUtf8() + '\n', title);
}

}
