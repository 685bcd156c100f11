#include "Care/Backup/BackupKeeper.h"
#include "Care/Backup/ProfileFiles.h"
#include "Care/Backup/Restore.h"
#include "Care/Backup/Secrets.h"
#include "Engines/AccountStore.h"
#include "Foundation/BackgroundQueue.h"
#include "Platform/PrivateFile.h"
#include "Platform/ProfileLock.h"
#include "Platform/SecretFile.h"
#include "Store/Approvals/ApprovalRecords.h"
#include "Support/AccountNamed.h"
#include "Support/Await.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeKeyring.h"
#include "Support/StoreTest.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QSignalSpy>
#include <QThread>

#include <archive.h>
#include <archive_entry.h>

using namespace corvane;

namespace {

class Backups : public StoreTest {
protected:
    Backups()
    {
        m_home.write("share/Corvane/accounts.json", encodeAccounts({ accountNamed(u"shop"_s) }));
        m_home.write("share/Corvane/media/shop/a.jpg", "picture");
        m_home.write("share/Corvane/Models/Speech/big.bin", "model");
        m_home.write("share/Corvane/mcp-token", "token");
        m_home.write(".whatsapp-baileys/shop/creds.json", "sign-in");
        QFile::link(u"/etc/hostname"_s, data(u"media/shop/link"_s));
        m_defaults.setText(u"nimb.test"_s, u"kept"_s);
        m_defaults.synchronise();
        open();
        m_db->run("INSERT INTO unified_message(id, conversation_id, media_path) VALUES('m','c',?);",
            { data(u"media/shop/a.jpg"_s) });
        for (const QString& status : { u"pending"_s, u"approved"_s, u"sending"_s, u"sent"_s })
            m_db->run("INSERT INTO outbound_draft(id, conversation_id, channel, account_id, external_id, body, status, "
                      "created_at, updated_at) VALUES(?,'c','whatsapp','shop','x','hello',?,1,1);",
                { status, status });
        m_db->run("INSERT INTO ai_requests(id, prompt, created_at) VALUES('r','write',1);");
    }

    QString data(const QString& name) const { return m_home.paths().applicationSupport + u'/' + name; }
    QString file() const { return m_home.path(u"shop.tar"_s); }

    Result<Manifest> backUp(const std::optional<QString>& passphrase = {}, const Keyring::Secrets* secrets = nullptr)
    {
        BackupRequest request { file(), m_clock.nowMs(), true, passphrase };
        if (secrets)
            request.secrets = *secrets;
        return makeBackup(m_home.paths(), request, progress);
    }

    Result<Restored> restore(const AppPaths& paths, bool replace = false, const std::optional<QString>& passphrase = {})
    {
        return restoreBackup(paths, { file(), passphrase, replace }, m_clock, progress);
    }

    /// A backup with these files, as another program might make it.
    void craft(const QMap<QString, QByteArray>& files)
    {
        QFile to(file());
        ASSERT_TRUE(to.open(QIODevice::WriteOnly));
        ArchiveWriter writer(to);
        Manifest manifest;
        for (auto each = files.begin(); each != files.end(); ++each)
            manifest.files.insert(each.key(), writer.add(each.key(), each.value()).value());
        EXPECT_TRUE(writer.add(backupNames::manifest, manifestText(manifest)));
        EXPECT_TRUE(writer.finish());
    }

    AppPaths elsewhere()
    {
        AppPaths paths = *profileIn(m_home.path(u"other"_s), m_home.paths());
        paths.home = m_home.path(u"other/home"_s);
        return paths;
    }

    std::shared_ptr<BackupProgress> progress = std::make_shared<BackupProgress>();
};

QString messageOf(const auto& result)
{
    return result ? u"it worked"_s : result.error().message;
}

}

TEST_F(Backups, aSealedBackupMadeDuringWritesBecomesTheSameProfileElsewhereAndSendsNothing)
{
    OtherProcess engine(path());
    engine.exec("BEGIN IMMEDIATE; INSERT INTO contact(id, display_name) VALUES('late','Late');");
    const Keyring::Secrets secrets { { u"shop"_s, u"s3cret"_s } };
    EXPECT_EQ(messageOf(backUp({}, &secrets)), "Passwords and tokens are saved only in an encrypted backup.");
    const auto made = backUp(u"tiles"_s, &secrets);
    engine.exec("COMMIT;");
    ASSERT_TRUE(made) << qPrintable(messageOf(made));
    EXPECT_EQ(
        QFile(file()).permissions() & ~(QFile::ReadUser | QFile::WriteUser), QFile::ReadOwner | QFile::WriteOwner);
    EXPECT_EQ(verifyBackup(file(), u"tiles"_s, progress).value_or(Manifest()), *made);
    EXPECT_EQ(messageOf(verifyBackup(file(), {}, progress)), "It is encrypted, and there is no passphrase.");

    const AppPaths other = elsewhere();
    const auto restored = restore(other, false, u"tiles"_s);
    ASSERT_TRUE(restored) << qPrintable(messageOf(restored));
    UserDefaults defaults(other.defaultsFile);
    EXPECT_EQ(defaults.text(u"nimb.test"_s), u"kept"_s);
    m_db = std::make_unique<LocalDB>(
        other.database(), LocalDB::SchemaFolders { other.resources, other.home }, m_clock, defaults, m_centre);
    EXPECT_EQ(cell(u"SELECT COUNT(*) FROM contact"_s), u"0"_s);
    EXPECT_EQ(cell(u"SELECT media_path FROM unified_message"_s), other.applicationSupport + u"/media/shop/a.jpg"_s);
    EXPECT_EQ(table(u"SELECT id, status FROM outbound_draft ORDER BY id"_s),
        QStringList({ u"approved|failed"_s, u"pending|pending"_s, u"sending|failed"_s, u"sent|sent"_s }));
    EXPECT_TRUE(cell(u"SELECT error FROM outbound_draft WHERE id='approved'"_s).startsWith(u"May have gone out"_s));
    EXPECT_EQ(cell(u"SELECT status FROM ai_requests"_s), u"error"_s);
    EXPECT_TRUE(checkRecords(*m_db).sound);
    EXPECT_EQ(m_home.read("other/data/Corvane/media/shop/a.jpg"), "picture");
    EXPECT_EQ(m_home.read("other/home/.whatsapp-baileys/shop/creds.json"), "sign-in");
    EXPECT_FALSE(QFileInfo::exists(other.applicationSupport + u"/mcp-token"_s));
    EXPECT_FALSE(QFileInfo(other.applicationSupport + u"/media/shop/link"_s).isSymLink());
    EXPECT_EQ(AccountStore(other.applicationSupport).accounts().first().paused, true);
    FakeKeyring absent;
    EXPECT_EQ(readSecrets(other, absent).value_or(Keyring::Secrets()), secrets);
}

TEST_F(Backups, nothingIsRestoredOverAProfileThatIsUsedOrThroughALink)
{
    m_home.write("share/.corvane-unfinished-killed/backup", "of a program that was killed");
    ASSERT_TRUE(backUp());
    const AppPaths& own = m_home.paths();
    auto running = ProfileLock::take(own.applicationSupport);
    EXPECT_TRUE(messageOf(restore(own, true)).contains(u"Quit it first"_s));
    running.reset();
    EXPECT_TRUE(messageOf(restore(own)).contains(u"a profile in"_s));
    EXPECT_FALSE(profileIn(u"there/../other"_s, own));
    QFile::link(own.applicationSupport, m_home.path(u"link"_s));
    EXPECT_FALSE(profileIn(m_home.path(u"link"_s), own));
    AppPaths linked = own;
    linked.applicationSupport = m_home.path(u"link"_s);
    EXPECT_TRUE(messageOf(restore(linked, true)).contains(u"is a link"_s));
    m_db.reset();
    const auto replaced = restore(own, true);
    ASSERT_TRUE(replaced) << qPrintable(messageOf(replaced));
    EXPECT_TRUE(QFileInfo::exists(replaced->aside + u"/mcp-token"_s));
    EXPECT_TRUE(QFileInfo::exists(own.database()));
    EXPECT_EQ(QDir(m_home.path(u"share"_s)).entryList({ u".corvane*"_s }, QDir::Dirs | QDir::Hidden), QStringList());
    EXPECT_EQ(QDir(m_home.path(u"."_s)).entryList({ u".corvane*"_s }, QDir::AllEntries | QDir::Hidden), QStringList());
}

TEST_F(Backups, whatIsDamagedOrLeadsElsewhereIsRefused)
{
    const auto archiveOf = [&](const char* name, const char* link) {
        archive* to = archive_write_new();
        archive_write_set_format_pax_restricted(to);
        archive_write_open_filename(to, file().toUtf8().constData());
        archive_entry* entry = archive_entry_new();
        archive_entry_set_pathname(entry, name);
        archive_entry_set_filetype(entry, link ? AE_IFLNK : AE_IFREG);
        archive_entry_set_symlink(entry, link);
        archive_entry_set_perm(entry, 0644);
        archive_write_header(to, entry);
        archive_entry_free(entry);
        archive_write_free(to);
        return messageOf(verifyBackup(file(), {}, progress));
    };
    EXPECT_EQ(archiveOf("data/../../x", nullptr), "It contains a path that leads out of its folder: data/../../x.");
    EXPECT_EQ(archiveOf("/etc/x", nullptr), "It contains a path that leads out of its folder: /etc/x.");
    EXPECT_EQ(archiveOf("data/x", "/etc/passwd"), "It contains something other than a regular file: data/x.");
    EXPECT_EQ(archiveOf("data/x", nullptr), "It is incomplete: its list of files is missing.");

    QFile::remove(file());
    ASSERT_TRUE(backUp());
    QFile tar(file());
    ASSERT_TRUE(tar.open(QIODevice::ReadWrite));
    const QByteArray content = tar.readAll();
    const auto cutAt = [&](qsizetype end) {
        m_home.write("cut.tar", content.first(end));
        return messageOf(verifyBackup(m_home.path(u"cut.tar"_s), {}, progress));
    };
    EXPECT_TRUE(cutAt(content.indexOf("picture") + 3).startsWith("Truncated"_L1)) << "a copy that stopped in a file";
    EXPECT_TRUE(cutAt(content.lastIndexOf("ustar") + 600).startsWith("Truncated"_L1)) << "in the list of files";
    tar.seek(content.indexOf("picture"));
    tar.write("forgery");
    tar.close();
    EXPECT_EQ(messageOf(verifyBackup(file(), {}, progress)), "data/media/shop/a.jpg is not as it was saved.");
    EXPECT_FALSE(restore(elsewhere()));
    EXPECT_FALSE(QFileInfo::exists(elsewhere().database()));
    progress->stopped = true;
    EXPECT_EQ(messageOf(backUp()), "Stopped.");
    QFile(file()).open(QIODevice::ReadOnly);
    EXPECT_EQ(m_home.read("shop.tar").size(), content.size()); // the previous backup is kept
}

TEST_F(Backups, whatIsThereAlreadyIsKeptUnderAnotherName)
{
    m_home.write("share/Corvane/companion.jwt", "session");
    const Keyring::Secrets none;
    ASSERT_TRUE(backUp(u"tiles"_s, &none));
    const AppPaths other = elsewhere();
    m_home.write("other/home/.whatsapp-baileys/shop/creds.json", "newer");
    m_home.write("other/config/Corvane/defaults.ini", "[old]");
    const auto first = restore(other, false, u"tiles"_s);
    ASSERT_TRUE(first) << qPrintable(messageOf(first));
    EXPECT_EQ(first->aside, "");
    EXPECT_EQ(first->leftAlone, QStringList { other.home + u"/.whatsapp-baileys/shop"_s });
    EXPECT_EQ(m_home.read("other/home/.whatsapp-baileys/shop/creds.json"), "newer");
    EXPECT_EQ(m_home.read("other/config/Corvane/defaults.ini.before-restore"), "[old]");
    EXPECT_EQ(m_home.read("other/data/Corvane/companion.jwt"), "session");
    m_home.write("other/data/Corvane/media/shop/a.jpg", "of the first");
    ASSERT_TRUE(backUp());
    EXPECT_EQ(restore(other, true).value().aside, other.applicationSupport + u".before-restore"_s);
    EXPECT_EQ(m_home.read("other/data/Corvane.before-restore/media/shop/a.jpg"), "of the first");
    EXPECT_EQ(restore(other, true).value().aside, other.applicationSupport + u".before-restore-2"_s);
    EXPECT_EQ(m_home.read("other/data/Corvane/media/shop/a.jpg"), "picture");

    EXPECT_EQ(messageOf(restoreDatabase(m_home.path(u"none.tar"_s), m_home.path(u"new.db"_s), other, m_clock)),
        u"There is no file %1."_s.arg(m_home.path(u"none.tar"_s)));
    EXPECT_EQ(messageOf(restoreDatabase(file(), m_home.path(u"new.db"_s), other, m_clock)), "it worked");
    m_db = std::make_unique<LocalDB>(m_home.path(u"new.db"_s), LocalDB::SchemaFolders { other.resources, other.home },
        m_clock, m_defaults, m_centre);
    EXPECT_EQ(cell(u"SELECT media_path FROM unified_message"_s), other.applicationSupport + u"/media/shop/a.jpg"_s);
    EXPECT_EQ(cell(u"SELECT status FROM outbound_draft WHERE id='sending'"_s), u"failed"_s);
}

TEST_F(Backups, whatABackupLacksIsNotNeededAndWhatIsForeignIsLeftOut)
{
    const AppPaths other = elsewhere();
    craft({ { u"data/accounts.json"_s, "[{" } });
    EXPECT_EQ(messageOf(restore(other)), "The accounts of the backup cannot be read.");
    EXPECT_FALSE(QFileInfo::exists(other.applicationSupport + u"/accounts.json"_s));
    craft({ { u"data/note"_s, "n" }, { u"secrets/home/.ssh/shop/id"_s, "key" } });
    const auto restored = restore(other);
    ASSERT_TRUE(restored) << qPrintable(messageOf(restored));
    EXPECT_EQ(restored->leftAlone, QStringList { other.home + u"/.ssh/shop"_s });
    EXPECT_FALSE(QFileInfo::exists(other.home + u"/.ssh"_s));
    EXPECT_EQ(m_home.read("other/data/Corvane/note"), "n");
    EXPECT_FALSE(QFileInfo::exists(other.defaultsFile));
    EXPECT_FALSE(QFileInfo::exists(other.database()));
    EXPECT_FALSE(QFileInfo::exists(other.secretsFile()));
}

TEST_F(Backups, whatCanBeMadeAgainIsLeftOut)
{
    for (const char* name :
        { "secrets/x", "backups/x", "outbox/picked/x", "outbox/sent", "BrowserQA/InteractiveProfile/x", "instance.lock",
            "nimblocal.db.damaged", "companion.jwt", "log/nimblocal.db" })
        m_home.write("share/Corvane/"_L1 + QLatin1String(name), "x");
    const auto names = [&](bool media, bool secrets) {
        QStringList names;
        for (const ProfileFile& file : profileFiles(m_home.paths(), media, secrets))
            names.append(file.name);
        return names;
    };
    const QStringList own { u"data/accounts.json"_s, u"data/log/nimblocal.db"_s, u"data/outbox/sent"_s };
    const QStringList settings { u"settings/defaults.ini"_s };
    const QStringList media { u"data/media/shop/a.jpg"_s };
    EXPECT_EQ(names(false, false), own + settings);
    EXPECT_EQ(names(true, true),
        own.first(2) + media + own.last(1)
            + QStringList({ u"secrets/companion.jwt"_s, u"secrets/home/.whatsapp-baileys/shop/creds.json"_s })
            + settings);
    m_home.write(".whatsapp-baileys/other/creds.json", "of another profile");
    QFile::remove(m_home.paths().defaultsFile);
    QFile::remove(data(u"companion.jwt"_s));
    QFile::remove(data(u"accounts.json"_s));
    EXPECT_EQ(names(false, true), own.last(2));
}

TEST_F(Backups, passwordsAreReadFromTheirFileAndTheKeyring)
{
    using Where = SecretPlace::Where;
    SecretFile(m_home.paths().secretsFile())
        .write({ { u"kept"_s, { Where::Keyring, {} } }, { u"moved"_s, { Where::File, u"file"_s } },
            { u"removed"_s, { Where::Nowhere, {} } }, { u"own"_s, { Where::File, u"own"_s } } });
    FakeKeyring keyring;
    keyring.values = { { u"kept"_s, u"ring"_s }, { u"moved"_s, u"ring"_s }, { u"removed"_s, u"ring"_s } };
    keyring.silent = true;
    QMetaObject::invokeMethod(qApp, [&] { keyring.speak(); }, Qt::QueuedConnection);
    EXPECT_EQ(readSecrets(m_home.paths(), keyring).value(),
        (Keyring::Secrets { { u"kept"_s, u"ring"_s }, { u"moved"_s, u"file"_s }, { u"own"_s, u"own"_s } }));
    EXPECT_EQ(keyring.asked, 1);
    keyring.failure = Keyring::Failure::Absent;
    EXPECT_EQ(readSecrets(m_home.paths(), keyring).value(),
        (Keyring::Secrets { { u"moved"_s, u"file"_s }, { u"own"_s, u"own"_s } }));
    keyring.failure = Keyring::Failure::Locked;
    EXPECT_EQ(messageOf(readSecrets(m_home.paths(), keyring)),
        "The keyring is locked or does not answer. Unlock it and try again.");
}

TEST_F(Backups, itsProgressIsToldWhileItIsMade)
{
    BackgroundQueue background;
    FakeDesktop desktop;
    BackupKeeper keeper({ m_home.paths(), m_defaults, m_clock, background, desktop });
    const QSignalSpy changed(&keeper, &BackupKeeper::changed);
    const QSignalSpy progressed(&keeper, &BackupKeeper::progressed);
    keeper.setMedia(false);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_FALSE(keeper.media());
    keeper.setDaily(true);
    EXPECT_EQ(changed.count(), 3) << "the setting, and the first one begins";
    keeper.backUpNow();
    EXPECT_EQ(changed.count(), 3) << "one at a time";
    const QDeadlineTimer limit(60'000);
    while (keeper.progress() == 0 && !limit.hasExpired()) // without its end, which comes through the event loop
        QThread::yieldCurrentThread();
    EXPECT_GT(keeper.progress(), 0);
    EXPECT_LE(keeper.progress(), 1);
    EXPECT_TRUE(keeper.progressText().contains(" of "_L1)) << qPrintable(keeper.progressText());
    m_clock.advance(Milliseconds(200));
    EXPECT_EQ(progressed.count(), 1);
    ASSERT_TRUE(await([&] { return !keeper.busy(); }));
    EXPECT_EQ(changed.count(), 4);
    EXPECT_EQ(keeper.progress(), 0);
    m_clock.advance(Milliseconds(200));
    EXPECT_EQ(progressed.count(), 1);
    EXPECT_TRUE(backsUpDaily(m_defaults));
    EXPECT_EQ(keptBackups(keeper.folder()).first().madeAtMs, 1'760'000'000'000);
    desktop.chosen = QList<QUrl> { QUrl::fromLocalFile(m_home.path(u"safe"_s)) };
    keeper.chooseFolder();
    EXPECT_EQ(changed.count(), 5);
}

TEST_F(Backups, oneADayIsMadeAndSevenAreKept)
{
    BackgroundQueue background;
    FakeDesktop desktop;
    BackupKeeper keeper({ m_home.paths(), m_defaults, m_clock, background, desktop });
    keeper.start();
    EXPECT_EQ(keeper.lastText(), "There is none yet.");
    m_home.write("share/Corvane/backups/corvane-notes.tar", "a person's");
    keeper.setDaily(true);
    for (int day = 0; day < 9; ++day) {
        ASSERT_TRUE(await([&] { return !keeper.busy(); }));
        ASSERT_EQ(keeper.error(), u""_s);
        m_clock.advance(std::chrono::hours(25));
    }
    ASSERT_TRUE(await([&] { return !keeper.busy(); }));
    EXPECT_EQ(keptBackups(keeper.folder()).size(), 7);
    EXPECT_EQ(m_home.read("share/Corvane/backups/corvane-notes.tar"), "a person's");
    EXPECT_TRUE(verifyBackup(keptBackups(keeper.folder()).first().file, {}, progress));
    keeper.backUpNow();
    EXPECT_TRUE(keeper.busy());
    EXPECT_EQ(keeper.progressText(), "Copying the database…");
    keeper.cancel();
    ASSERT_TRUE(await([&] { return !keeper.busy(); }));
    EXPECT_EQ(keeper.error(), u""_s);
}

TEST_F(Backups, whatTheCardSaysOfTheLastOneAndWhyThereIsNone)
{
    BackgroundQueue background;
    FakeDesktop desktop;
    BackupKeeper keeper({ m_home.paths(), m_defaults, m_clock, background, desktop });
    keeper.start();
    const auto ended = [&] {
        EXPECT_TRUE(await([&] { return !keeper.busy(); }));
        return keptBackups(keeper.folder()).size();
    };
    m_clock.advance(std::chrono::hours(25));
    EXPECT_EQ(ended(), 0) << "only when asked to";
    desktop.chosen = QList<QUrl> {};
    keeper.chooseFolder();
    EXPECT_EQ(keeper.folder(), data(u"backups"_s)) << "nothing was chosen";
    desktop.chosen = QList<QUrl> { QUrl::fromLocalFile(m_home.path(u"safe"_s)) };
    keeper.chooseFolder();
    EXPECT_EQ(keeper.folder(), m_home.path(u"safe"_s));
    desktop.chosen = failure(u"no portal"_s);
    keeper.chooseFolder();
    EXPECT_EQ(keeper.error() + keeper.folder(), "no portal" + m_home.path(u"safe"_s));
    keeper.setMedia(false);
    keeper.backUpNow();
    EXPECT_EQ(keeper.error(), "");
    EXPECT_EQ(ended(), 1);
    EXPECT_TRUE(keeper.lastText().startsWith("The last one was made just now and takes "));
    const qint64 small = keptBackups(keeper.folder()).first().bytes;
    m_home.write("share/Corvane/media/shop/film.mp4", QByteArray(3'000'000, 'f'));
    m_clock.advance(std::chrono::hours(23));
    keeper.setDaily(true);
    EXPECT_FALSE(keeper.busy()) << "a day is not over";
    keeper.setMedia(true);
    m_clock.advance(std::chrono::hours(1));
    EXPECT_EQ(ended(), 2);
    EXPECT_GT(keptBackups(keeper.folder()).first().bytes, small + 2'900'000) << "with media";
    m_home.write("blocked", "a file");
    desktop.chosen = QList<QUrl> { QUrl::fromLocalFile(m_home.path(u"blocked/in"_s)) };
    keeper.chooseFolder();
    keeper.backUpNow();
    EXPECT_EQ(ended(), 0);
    EXPECT_EQ(keeper.error(), u"The folder %1 cannot be created."_s.arg(m_home.path(u"blocked/in"_s)));
}
