#include "Shell/BackupCommand.h"

#include "Care/Backup/Restore.h"
#include "Care/Backup/Secrets.h"
#include "Foundation/Literals.h"
#include "Foundation/SystemScheduler.h"
#include "Platform/AppPaths.h"
#include "Platform/Interruption.h"
#include "Platform/Passphrase.h"
#include "Platform/PrivateFile.h"
#include "Presentation/CountWords.h"
#include "Presentation/SizeWords.h"

#include <QCommandLineParser>
#include <QDateTime>
#include <QFileInfo>
#include <QTextStream>
#include <numeric>

namespace corvane {

namespace {

constexpr int wrongUse = 2;

QString contentWords(const Manifest& manifest)
{
    const qint64 rows = std::accumulate(manifest.rows.begin(), manifest.rows.end(), qint64(0));
    return countWords(rows, u"row"_s, u"rows"_s) + u" in "_s + countWords(manifest.rows.size(), u"table"_s, u"tables"_s)
        + u", "_s + countWords(manifest.files.size(), u"file"_s, u"files"_s);
}

QString dateWords(const Manifest& manifest)
{
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(manifest.madeAtMs), QLocale::ShortFormat);
}

int failed(QTextStream& errors, const QString& what, const Error& error)
{
    errors << what << ": " << error.message << '\n';
    return 1;
}

/// Asks for it only where the file needs it. False where there is none then.
bool askFor(const QString& file, std::optional<QString>& passphrase)
{
    if (isSealedBackup(file))
        passphrase = askPassphrase(Ask::Once);
    return passphrase.has_value() || !isSealedBackup(file);
}

int verify(const QString& file, QTextStream& out, QTextStream& errors)
{
    std::optional<QString> passphrase;
    if (!askFor(file, passphrase))
        return 1;
    const auto progress = std::make_shared<BackupProgress>();
    const Interruption interruption(progress->stopped);
    const auto manifest = verifyBackup(file, passphrase, progress);
    if (!manifest)
        return failed(errors, u"The backup is not sound"_s, manifest.error());
    out << "The backup of " << dateWords(*manifest) << " is sound: " << contentWords(*manifest) << ".\n";
    return 0;
}

}

int runBackup(const TextCall& call)
{
    const auto& [paths, arguments, out, errors] = call;
    QCommandLineParser parser;
    const QCommandLineOption verifies(u"verify"_s);
    const QCommandLineOption encrypts(u"encrypt"_s);
    const QCommandLineOption takesSecrets(u"secrets"_s);
    const QCommandLineOption leavesMedia(u"no-media"_s);
    parser.addOptions({ verifies, encrypts, takesSecrets, leavesMedia });
    if (!parser.parse(QStringList(u"backup"_s) + arguments) || parser.positionalArguments().size() != 1) {
        errors << "Usage: corvane backup [--encrypt] [--secrets] [--no-media] FILE, or --verify FILE\n";
        return wrongUse;
    }
    const QString file = QFileInfo(parser.positionalArguments().first()).absoluteFilePath();
    if (parser.isSet(verifies))
        return verify(file, out, errors);
    if (parser.isSet(takesSecrets) && !parser.isSet(encrypts)) {
        errors << "Passwords and tokens go only into an encrypted backup: give --encrypt, too.\n";
        return wrongUse;
    }
    SystemScheduler scheduler;
    BackupRequest request { file, scheduler.nowMs(), !parser.isSet(leavesMedia), {} };
    if (parser.isSet(encrypts)) {
        request.passphrase = askPassphrase(Ask::Twice);
        if (!request.passphrase)
            return 1;
    }
    const QString what = u"There is no backup"_s;
    if (parser.isSet(takesSecrets)) {
        const auto keyring = makeKeyring();
        const auto secrets = readSecrets(paths, *keyring);
        if (!secrets)
            return failed(errors, what, secrets.error());
        request.secrets = *secrets;
    }
    const auto progress = std::make_shared<BackupProgress>();
    const Interruption interruption(progress->stopped);
    const auto manifest = makeBackup(paths, request, progress);
    if (!manifest)
        return failed(errors, what, manifest.error());
    out << file << ": " << contentWords(*manifest) << ", " << sizeWords(QFileInfo(file).size()) << ".\n";
    return 0;
}

int runRestore(const TextCall& call)
{
    const auto& [paths, arguments, out, errors] = call;
    QCommandLineParser parser;
    const QCommandLineOption into(u"into"_s, {}, u"FOLDER"_s);
    const QCommandLineOption replaces(u"replace"_s);
    parser.addOptions({ into, replaces });
    if (!parser.parse(QStringList(u"restore"_s) + arguments) || parser.positionalArguments().size() != 1) {
        errors << "Usage: corvane restore [--into FOLDER] [--replace] FILE\n";
        return wrongUse;
    }
    const QString what = u"Nothing was restored"_s;
    const Result<AppPaths> target = parser.isSet(into) ? profileIn(parser.value(into), paths) : paths;
    if (!target)
        return failed(errors, what, target.error());
    RestoreRequest request { parser.positionalArguments().first(), {}, parser.isSet(replaces) };
    if (!askFor(request.file, request.passphrase))
        return 1;
    keepFilesPrivate({ QFileInfo(target->defaultsFile).path() });
    SystemScheduler scheduler;
    const auto progress = std::make_shared<BackupProgress>();
    const Interruption interruption(progress->stopped);
    const auto restored = restoreBackup(*target, request, scheduler, progress);
    if (!restored)
        return failed(errors, what, restored.error());
    out << "Restored the backup of " << dateWords(restored->manifest) << ": " << contentWords(restored->manifest)
        << ".\nAccounts are paused: resume each in Settings > Accounts. Messages that were on their way wait in "
           "Approvals, marked “May have gone out”.\n";
    if (!restored->aside.isEmpty())
        out << "The profile that was there lies in " << restored->aside << ".\n";
    for (const QString& folder : restored->leftAlone)
        out << "A sign-in that was there is kept: " << folder << ".\n";
    if (parser.isSet(into))
        out << "Start it with: XDG_DATA_HOME=" << QFileInfo(target->applicationSupport).path()
            << " XDG_CONFIG_HOME=" << QFileInfo(QFileInfo(target->defaultsFile).path()).path() << " corvane\n";
    return 0;
}

}
