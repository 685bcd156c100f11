#include "Care/Backup/BackupKeeper.h"
#include "Care/Backup/Restore.h"
#include "Care/Backup/Secrets.h"
#include "Engines/AccountStore.h"
#include "Foundation/BackgroundQueue.h"
#include "Platform/PrivateFile.h"
#include "Platform/ProfileLock.h"
#include "Store/Approvals/ApprovalRecords.h"
#include "Support/Await.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeKeyring.h"
#include "Support/StoreTest.h"

#include <QDir>
#include <archive.h>
#include <archive_entry.h>

using namespace corvane;

namespace {

class Backups : public StoreTest {
protected:
    Backups()
    {
        Account account;
        account.id = QUuid::createUuid();
        account.name = account.slug = u"shop"_s;
        m_home.write("share/Corvane/accounts.json", encodeAccounts({ account }));
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
