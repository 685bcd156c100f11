#include "Care/Backup/Backup.h"

#include "Care/Backup/ProfileFiles.h"
#include "Care/Backup/SealedDevice.h"
#include "Care/Backup/WorkFolder.h"
#include "Foundation/Json.h"
#include "Platform/AppPaths.h"
#include "Platform/PrivateFile.h"
#include "Presentation/SizeWords.h"
#include "Store/Core/Snapshot.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QStorageInfo>
#include <QTemporaryDir>

namespace corvane {

namespace {

constexpr qint64 smallestRest = 64 * 1024 * 1024; // of the disk, reserved for the program itself

using Progress = std::shared_ptr<BackupProgress>;

PieceSeen counting(const Progress& progress)
{
    return [progress](qint64 bytes) {
        progress->bytes += bytes;
        return !progress->stopped;
    };
}

Result<void> checkRoom(const QString& file, qint64 needed)
{
    const QStorageInfo disk(QFileInfo(file).absolutePath());
    if (disk.isValid() && disk.bytesAvailable() < needed + smallestRest)
        return failure(u"There is not enough space on the disk: %1 needed, %2 free."_s.arg(
            sizeWords(needed), sizeWords(disk.bytesAvailable())));
    return {};
}

QByteArray secretsText(const QHash<QString, QString>& secrets)
{
    QJsonObject object;
    for (auto each = secrets.begin(); each != secrets.end(); ++each)
        object.insert(each.key(), each.value());
    return compactJson(object);
}

/// Writes everything to the archive, the manifest last.
Result<Manifest> fill(ArchiveWriter& archive, const AppPaths& paths, const BackupRequest& request,
    const WorkFolder& folder, const Progress& progress)
{
    Manifest manifest { QStringLiteral(CORVANE_VERSION), request.nowMs, paths.applicationSupport, request.media,
        request.secrets.has_value(), {}, {} };
    const auto add = [&](const QString& name, const QString& path) -> Result<void> {
        const auto stored = archive.addFile(name, path, counting(progress));
        if (!stored)
            return std::unexpected(stored.error());
        if (*stored)
            manifest.files.insert(name, **stored);
        return {};
    };

    const QString copy = folder.filePath(backupNames::database);
    if (QFileInfo::exists(paths.database())) {
        const std::shared_ptr<const std::atomic<bool>> stopped(progress, &progress->stopped);
        if (const auto copied = copyDatabase(paths.database(), copy, stopped); !copied)
            return std::unexpected(copied.error());
        manifest.rows = countRows(*SqlConnection::reader(copy, stopped));
        if (const auto added = add(backupNames::database, copy); !added)
            return std::unexpected(added.error());
        QFile::remove(copy);
    }
    for (const ProfileFile& file : profileFiles(paths, request.media, request.secrets.has_value())) {
        if (const auto added = add(file.name, file.path); !added)
            return std::unexpected(added.error());
    }
    if (request.secrets) {
        const auto added = archive.add(backupNames::secrets, secretsText(*request.secrets));
        if (!added)
            return std::unexpected(added.error());
        manifest.files.insert(backupNames::secrets, *added);
    }
    if (const auto added = archive.add(backupNames::manifest, manifestText(manifest)); !added)
        return std::unexpected(added.error());
    if (const auto finished = archive.finish(); !finished)
        return std::unexpected(finished.error());
    return manifest;
}

/// Every stored file is present and unchanged.
Result<void> compare(const Manifest& manifest, const QMap<QString, StoredFile>& found, const QString& folder)
{
    for (auto each = manifest.files.begin(); each != manifest.files.end(); ++each) {
        if (!found.contains(each.key()))
            return failure(u"%1 is missing."_s.arg(each.key()));
        if (found[each.key()] != each.value())
            return failure(u"%1 is not as it was saved."_s.arg(each.key()));
    }
    for (auto each = found.begin(); each != found.end(); ++each) {
        if (!manifest.files.contains(each.key()))
            return failure(u"%1 was added later."_s.arg(each.key()));
    }
    if (!manifest.files.contains(backupNames::database))
        return {};
    const auto db
        = SqlConnection::reader(folder + u'/' + backupNames::database, std::make_shared<std::atomic<bool>>(false));
    if (const QString trouble = integrityTrouble(*db); !trouble.isEmpty())
        return failure(u"Its database is damaged: %1"_s.arg(trouble));
    const QMap<QString, qint64> rows = countRows(*db);
    for (auto each = manifest.rows.begin(); each != manifest.rows.end(); ++each) {
        if (rows.value(each.key(), -1) != each.value())
            return failure(u"The table %1 has %2 rows instead of %3."_s.arg(each.key())
                    .arg(rows.value(each.key()))
                    .arg(each.value()));
    }
    return {};
}

Result<Manifest> unpack(QIODevice& device, const QString& folder, const Progress& progress)
{
    ArchiveReader archive(device);
    QMap<QString, StoredFile> found;
    for (;;) {
        const auto name = archive.next();
        if (!name)
            return std::unexpected(name.error());
        if (!*name)
            return failure(u"It is incomplete: its list of files is missing."_s);
        if (**name == backupNames::manifest)
            break;
        const auto stored = archive.extract(folder + u'/' + **name, counting(progress));
        if (!stored)
            return std::unexpected(stored.error());
        found.insert(**name, *stored);
    }
    constexpr qint64 mostManifest = 512 * 1024 * 1024;
    const auto text = archive.content(mostManifest);
    if (!text)
        return std::unexpected(text.error());
    const auto manifest = manifestFrom(*text);
    if (!manifest)
        return manifest;
    const auto rest = archive.next(); // reads to the end, to verify an encrypted file
    if (!rest)
        return std::unexpected(rest.error());
    if (*rest)
        return failure(u"The file contains extra data."_s);
    if (const auto same = compare(*manifest, found, folder); !same)
        return std::unexpected(same.error());
    return manifest;
}

}

Result<Manifest> makeBackup(const AppPaths& paths, const BackupRequest& request, const Progress& progress)
{
    if (request.secrets && !request.passphrase)
        return failure(u"Passwords and tokens are saved only in an encrypted backup."_s);
    const qint64 database = QFileInfo(paths.database()).size();
    qint64 files = 0;
    for (const ProfileFile& file : profileFiles(paths, request.media, request.secrets.has_value()))
        files += QFileInfo(file.path).size();
    progress->allBytes = database + files;
    if (const auto room = checkRoom(request.file, 2 * database + files); !room)
        return std::unexpected(room.error());

    const WorkFolder folder(request.file);
    PrivateSaveFile target(request.file, folder.path());
    if (const auto opened = target.open(); !opened)
        return failure(u"%1 cannot be written: %2"_s.arg(request.file, opened.error().message));
    std::unique_ptr<SealingDevice> sealing;
    if (request.passphrase) {
        sealing = std::make_unique<SealingDevice>(target.file(), *request.passphrase);
        if (!sealing->isOpen())
            return failure(sealing->errorString());
    }
    ArchiveWriter archive(sealing ? static_cast<QIODevice&>(*sealing) : target.file());
    auto manifest = fill(archive, paths, request, folder, progress);
    if (!manifest)
        return manifest;
    if (sealing) {
        if (const auto sealed = sealing->finish(); !sealed)
            return std::unexpected(sealed.error());
    }
    if (const auto kept = target.commit(); !kept)
        return failure(u"%1 cannot be written: %2"_s.arg(request.file, kept.error().message));
    return manifest;
}

Result<Manifest> unpackBackup(
    const QString& file, const std::optional<QString>& passphrase, const QString& folder, const Progress& progress)
{
    const auto source = openPlainFile(file);
    if (!source)
        return failure(u"There is no file %1."_s.arg(file));
    progress->allBytes = source->size();
    if (const auto room = checkRoom(folder + u"/."_s, source->size()); !room)
        return std::unexpected(room.error());
    if (!isSealedBackup(file))
        return unpack(*source, folder, progress);
    if (!passphrase)
        return failure(u"It is encrypted, and there is no passphrase."_s);
    UnsealingDevice unsealing(*source);
    if (const auto unlocked = unsealing.unlock(*passphrase); !unlocked)
        return std::unexpected(unlocked.error());
    return unpack(unsealing, folder, progress);
}

Result<Manifest> verifyBackup(const QString& file, const std::optional<QString>& passphrase, const Progress& progress)
{
    const WorkFolder beside(file);
    if (beside.isValid())
        return unpackBackup(file, passphrase, beside.path(), progress);
    const QTemporaryDir elsewhere;
    return unpackBackup(file, passphrase, elsewhere.path(), progress);
}

bool isSealedBackup(const QString& file)
{
    const auto source = openPlainFile(file);
    return source && isSealed(*source);
}

}
