#include "Support/AccountNamed.h"
#include "Told.h"

#include "Care/Doctor/Doctor.h"
#include "Engines/AccountStore.h"
#include "Platform/Probes.h"
#include "Store/Approvals/ApprovalRecords.h"
#include "Store/Core/Transaction.h"
#include "Support/StoreTest.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

using namespace corvane;

namespace {

class ProfileChecks : public StoreTest {
protected:
    CheckedProfile profile() const { return checkedProfile(m_home.paths(), m_defaults, m_clock.nowMs()); }
    QString data(const QString& name) const { return m_home.paths().applicationSupport + u'/' + name; }
};

const QString setsIt = u"You need permission to read and write it: corvane doctor --fix sets it."_s;

}

TEST_F(ProfileChecks, aNewProfileLacksNothing)
{
    EXPECT_EQ(told(checks::database(profile())), "good|There is none yet. The first start creates it.|");
    EXPECT_EQ(told(checks::schema(profile())), "good|There is none yet.|");
    EXPECT_EQ(told(checks::databaseSize(profile())), "good|There is none yet.|");
    EXPECT_EQ(told(checks::databaseLog(profile())), "good|It is empty.|");
    EXPECT_EQ(told(checks::decisions(profile())), "good|There is none yet.|");
    EXPECT_EQ(told(checks::accounts(profile())), "good|0 accounts.|");
    EXPECT_EQ(fixes::databaseLog(profile()), std::nullopt);
    EXPECT_FALSE(QFileInfo::exists(path())) << "looking makes none";
    m_home.write("share/Corvane/nimblocal.db.damaged", "x");
    EXPECT_EQ(told(checks::database(profile())),
        u"failure|It was damaged and moved to %1.damaged; nothing has replaced it.|"
        "Start Corvane and choose what replaces it, or run corvane --recover save."_s.arg(path()));
    EXPECT_EQ(fixes::schema(profile()), std::nullopt);
    EXPECT_EQ(fixes::databaseSize(profile()), std::nullopt);
}

TEST_F(ProfileChecks, aDatabaseThatAnotherProgramHoldsIsNotCalledDamaged)
{
    open();
    EXPECT_EQ(told(checks::database(profile())), "good|It is intact.|");
    m_db.reset();
    OtherProcess other(path());
    other.exec("PRAGMA locking_mode=EXCLUSIVE; BEGIN IMMEDIATE; INSERT INTO contact(id) VALUES('x'); COMMIT;");
    EXPECT_EQ(
        told(checks::database(profile())), "warning|Not checked, because another program holds it.|Check again later.");
    EXPECT_EQ(told(checks::schema(profile())), "good|Not checked, because the database cannot be opened.|");
}

TEST_F(ProfileChecks, whatTheDatabaseLacksIsNamedAndAdded)
{
    open();
    EXPECT_EQ(told(checks::schema(profile())), "good|All of them exist.|");
    OtherProcess other(path());
    other.exec(
        "DROP TABLE contact_tag; ALTER TABLE crm_deal DROP COLUMN company; ALTER TABLE crm_deal DROP COLUMN value;");
    EXPECT_EQ(told(checks::schema(profile())),
        "warning|Missing: contact_tag, crm_deal.company, crm_deal.value.|"
        "Start Corvane once, or run corvane doctor --fix: both add them.");
    m_db.reset();
    EXPECT_EQ(fixes::schema(profile()), u"Added the tables and columns that were missing."_s);
    EXPECT_FALSE(checks::schema(profile()).words.contains("contact_tag"_L1));
}

TEST_F(ProfileChecks, aLargeLogIsMovedIntoTheDatabase)
{
    open();
    m_db.reset();
    QFile log(path() + u"-wal"_s);
    ASSERT_TRUE(log.open(QIODevice::WriteOnly));
    constexpr qint64 largest = 256LL * 1024 * 1024;
    ASSERT_TRUE(log.resize(largest));
    EXPECT_EQ(told(checks::databaseLog(profile())), "good|Its size is 256.0 MB.|");
    ASSERT_TRUE(log.resize(largest + 1));
    EXPECT_EQ(told(checks::databaseLog(profile())),
        "warning|It has grown to 256.0 MB.|Some program never stops reading. Quit Corvane and other programs that read "
        "it, "
        "then run corvane doctor --fix.");
    EXPECT_EQ(fixes::databaseLog(profile()), u"Moved the log into the database."_s);
    EXPECT_EQ(told(checks::databaseLog(profile())), "good|It is empty.|");
    m_home.write("share/Corvane/nimblocal.db-shm", "x");
    EXPECT_EQ(told(checks::databaseLog(profile())),
        u"failure|%1-wal is missing, although the database was not closed.|The latest changes may be lost. "
        "Quit Corvane, start it again, and compare with the latest backup."_s.arg(path()));
}

TEST_F(ProfileChecks, aChangedDecisionIsAFailure)
{
    open();
    {
        Transaction transaction(*m_db);
        EXPECT_TRUE(appendRecord(*m_db, u"draft"_s, u"d"_s, u"approve"_s, u"hash"_s));
        EXPECT_TRUE(transaction.commit());
    }
    EXPECT_EQ(checks::decisions(profile()).health, Health::Good);
    EXPECT_EQ(checks::decisions(profile()).words, checkRecords(*m_db).words);
    OtherProcess other(path());
    other.exec("DROP TRIGGER approval_record_keeps; UPDATE approval_record SET action='reject';");
    EXPECT_EQ(told(checks::decisions(profile())),
        u"failure|%1|A line was changed or removed by another program. Compare with a backup."_s.arg(
            checkRecords(*m_db).words));
    other.exec("DROP TABLE approval_record;");
    EXPECT_EQ(told(checks::decisions(profile())), "good|No decision has been recorded yet.|");
}

TEST_F(ProfileChecks, aFullDiskIsAFailure)
{
    CheckedProfile checked = profile();
    checked.paths.applicationSupport = m_home.path(u"none/yet"_s);
    EXPECT_TRUE(checks::disk(checked).words.endsWith(u" free on the disk of %1."_s.arg(m_home.path(u"."_s).chopped(2))))
        << qPrintable(checks::disk(checked).words);
    checked.paths.applicationSupport = u"/proc/none/yet"_s; // a disk without space
    EXPECT_EQ(told(checks::disk(checked)),
        "failure|0 bytes free on the disk of /proc.|"
        "Free some space on that disk: without any, nothing can be saved, and new messages wait.");
}

TEST_F(ProfileChecks, placesThatAreOpenOrUnusableAreNamed)
{
    open();
    m_home.write("share/Corvane/media/a.jpg", "picture");
    m_home.write("share/Corvane/mcp-token", "token");
    for (const QString& place :
        { data(u"."_s), path(), data(u"media"_s), data(u"mcp-token"_s), m_home.path(u"config/Corvane"_s) })
        EXPECT_TRUE(makePrivate(place));
    EXPECT_EQ(told(checks::folders(profile())),
        u"good|Only you can read them: %1.|"_s.arg(m_home.paths().applicationSupport));
    EXPECT_EQ(fixes::folders(profile()), std::nullopt);
    QFile::setPermissions(data(u"media"_s), QFile::Permissions(0x7750));
    QFile::setPermissions(data(u"mcp-token"_s), QFile::Permissions(0x6604));
    const QString open = data(u"mcp-token"_s) + u", "_s + data(u"media"_s);
    EXPECT_EQ(told(checks::folders(profile())),
        u"warning|Other users can read %1.|corvane doctor --fix makes it private."_s.arg(open));
    QFile::setPermissions(data(u"media"_s), QFile::Permissions(0x5500));
    EXPECT_EQ(told(checks::folders(profile())),
        u"failure|You do not have permission to read and write %1.|corvane doctor --fix sets the permissions."_s.arg(
            data(u"media"_s)));
    EXPECT_EQ(fixes::folders(profile()), u"Made private: %1."_s.arg(open));
    EXPECT_EQ(checks::folders(profile()).health, Health::Good);
}

TEST_F(ProfileChecks, pausedAccountsAreCounted)
{
    const Account shop = accountNamed(u"shop"_s);
    Account studio = accountNamed(u"studio"_s);
    const auto with = [&](std::optional<bool> paused) {
        studio.paused = paused;
        m_home.write("share/Corvane/accounts.json", encodeAccounts({ shop, studio }));
        return told(checks::accounts(profile()));
    };
    EXPECT_EQ(with({}), "good|2 accounts.|");
    EXPECT_EQ(with(false), "good|2 accounts.|");
    EXPECT_EQ(with(true),
        "good|2 accounts, 1 paused.|Paused accounts get no messages until you resume them in Settings > Accounts.");
    m_home.write("share/Corvane/accounts.json", "[{");
    EXPECT_EQ(told(checks::accounts(profile())),
        u"failure|%1 cannot be read.|Restore it from a backup, or connect the accounts again: a copy is kept before it is overwritten."_s
            .arg(data(u"accounts.json"_s)));
}

TEST_F(ProfileChecks, aBackupThatIsDueIsMissed)
{
    CheckedProfile checked = profile();
    const QString advice = u"Turn on daily backups in Settings > Care, or run corvane backup FILE."_s;
    EXPECT_EQ(told(checks::backups(checked)), u"good|There is none in %1.|%2"_s.arg(data(u"backups"_s), advice));
    checked.backsUpDaily = true;
    EXPECT_EQ(told(checks::backups(checked)), u"warning|There is none in %1.|%2"_s.arg(data(u"backups"_s), advice));
    m_home.write("share/Corvane/backups/corvane-2026-01-04-120000.tar", "x");
    m_home.write("share/Corvane/backups/corvane-2026-01-05-120000.tar", "x");
    checked.nowMs = QDateTime(QDate(2026, 1, 8), QTime(12, 0)).toMSecsSinceEpoch();
    EXPECT_EQ(told(checks::backups(checked)), "good|The last one was made 3 days ago.|");
    ++checked.nowMs;
    EXPECT_EQ(told(checks::backups(checked)),
        "warning|The last one was made 3 days ago.|Backups are on, but there is none. Settings > Care shows why.");
    checked.backsUpDaily = false;
    EXPECT_EQ(told(checks::backups(checked)), "good|The last one was made 3 days ago.|");
}

TEST_F(ProfileChecks, theChecksAreToldOneByOneAndStopWhenAsked)
{
    open();
    QStringList begun;
    std::atomic<bool> stopped = false;
    const CheckProgress progress { [&](const QString& title) {
                                      begun.append(title);
                                      stopped = begun.size() == 5;
                                  },
        &stopped };
    const QList<Finding> findings = runChecks(profile(), progress);
    EXPECT_EQ(begun, QStringList({ u"Disk"_s, u"Folders"_s, u"Database log"_s, u"Database"_s, u"Tables"_s }));
    QStringList found;
    for (const Finding& finding : findings)
        found.append(finding.id + u'|' + finding.title);
    EXPECT_EQ(found,
        QStringList({ u"disk|Disk"_s, u"folders|Folders"_s, u"log|Database log"_s, u"database|Database"_s,
            u"schema|Tables"_s }));
    EXPECT_EQ(runChecks(profile(), { [](const QString&) { }, &stopped }), QList<Finding>());

    Finding finding;
    EXPECT_EQ(finding.stateText(), "Good");
    EXPECT_EQ(worst({}), Health::Good);
    EXPECT_EQ(worst({ finding }), Health::Good);
    finding.health = Health::Warning;
    EXPECT_EQ(finding.stateText(), "Warning");
    EXPECT_EQ(worst({ {}, finding, {} }), Health::Warning);
    finding.health = Health::Failure;
    EXPECT_EQ(finding.stateText(), "Broken");
}
