#include "Care/Doctor/Doctor.h"

#include "Care/Doctor/DoctorView.h"
#include "Foundation/BackgroundQueue.h"
#include "Platform/Probes.h"
#include "Support/Await.h"
#include "Support/StoreTest.h"

#include <QTcpServer>
#include <algorithm>
#include <csignal>
#include <sys/resource.h>

using namespace corvane;

namespace {

class Doctor : public StoreTest {
protected:
    Doctor()
    {
        open();
        for (const QString& place : { m_home.paths().applicationSupport, path(), m_home.path(u"config/Corvane"_s) })
            makePrivate(place);
    }

    CheckedProfile profile() const { return checkedProfile(m_home.paths(), m_defaults, m_clock.nowMs()); }

    Finding finding(const QString& id) const
    {
        const QList<Finding> findings = runChecks(profile());
        const auto found = std::ranges::find(findings, id, &Finding::id);
        return found == findings.end() ? Finding {} : *found;
    }
    QString state(const QString& id) const { return finding(id).state(); }
    QStringList mended() const { return fixFindings(profile(), runChecks(profile())); }
};

}

TEST_F(Doctor, aSoundProfileIsCalledSoundAndNothingIsChanged)
{
    m_db.reset();
    const QByteArray before = m_home.read("share/Corvane/nimblocal.db");
    for (const QString& id :
        { u"database"_s, u"schema"_s, u"size"_s, u"log"_s, u"decisions"_s, u"folders"_s, u"accounts"_s, u"backups"_s })
        EXPECT_EQ(state(id), u"good"_s) << qPrintable(id);
    EXPECT_EQ(mended(), QStringList());
    EXPECT_EQ(m_home.read("share/Corvane/nimblocal.db"), before);
}

TEST_F(Doctor, whatIsBrokenIsNamedAndPutRightOnlyWhenAsked)
{
    OtherProcess other(path());
    other.exec("DROP TABLE contact_tag; CREATE TABLE ballast(x);");
    for (int row = 0; row < 80; ++row)
        other.exec("INSERT INTO ballast VALUES(zeroblob(1048576));");
    other.exec("DROP TABLE ballast;");
    QFile::setPermissions(m_home.paths().applicationSupport, QFile::Permissions(0x7755));
    EXPECT_EQ(finding(u"schema"_s).words, "Missing: contact_tag.");
    EXPECT_EQ(state(u"size"_s), u"warning"_s);
    EXPECT_TRUE(finding(u"folders"_s).words.startsWith(u"Other users can read "_s));
    EXPECT_EQ(mended().size(), 3);
    for (const QString& id : { u"schema"_s, u"size"_s, u"folders"_s })
        EXPECT_EQ(state(id), u"good"_s) << qPrintable(id);
    m_home.write("share/Corvane/accounts.json", "[{");
    EXPECT_EQ(state(u"accounts"_s), u"failure"_s);
}

TEST_F(Doctor, aDeletedLogAndADamagedDatabaseAreFailures)
{
    ASSERT_TRUE(QFile::remove(path() + u"-wal"_s));
    EXPECT_EQ(state(u"log"_s), u"failure"_s);
    m_db.reset();
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.seek(4096 * 5);
    file.write(QByteArray(4096 * 3, '\x5a'));
    file.close();
    EXPECT_EQ(state(u"database"_s), u"failure"_s);
    EXPECT_EQ(worst(runChecks(profile())), Health::Failure);
}

TEST_F(Doctor, aDiskThatTakesNoWritesDamagesNothing)
{
    m_db.reset();
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before {};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit none { 0, before.rlim_max };
    setrlimit(RLIMIT_FSIZE, &none);
    const QList<Finding> findings = runChecks(profile());
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_TRUE(std::ranges::find(findings, u"database"_s, &Finding::id)->words.startsWith(u"It cannot be opened: "_s));
    EXPECT_EQ(state(u"database"_s), u"good"_s);
}

TEST_F(Doctor, aMailServerThatDoesNotAnswerIsNamed)
{
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    CheckedProfile sick = profile();
    Account account;
    account.name = account.slug = u"shop"_s;
    account.channelRaw = u"EMAIL"_s;
    sick.accounts = { account };
    const auto secretFor = [](int port) {
        return u"{\"password\":\"p\",\"imap\":{\"host\":\"127.0.0.1\",\"port\":%1,\"security\":\"tls\"}}"_s.arg(port);
    };
    const auto mail = [&] {
        const QList<Finding> findings = runChecks(sick);
        return std::ranges::find(findings, u"mail"_s, &Finding::id)->words;
    };
    sick.secrets.insert(u"shop"_s, secretFor(server.serverPort()));
    EXPECT_EQ(mail(), "All of them answer.");
    server.close();
    EXPECT_EQ(mail(),
        u"No answer from 127.0.0.1:%1 of shop."_s.arg(
            sick.secrets.value(u"shop"_s).section(u"\"port\":"_s, 1).section(u',', 0, 0)));
}

TEST_F(Doctor, theViewShowsWarningsFirst)
{
    m_home.write("share/Corvane/accounts.json", "[{");
    BackgroundQueue background;
    DoctorView view({ [this] { return profile(); }, background, m_clock });
    view.check();
    EXPECT_TRUE(view.busy());
    ASSERT_TRUE(await([&] { return !view.busy(); }));
    EXPECT_EQ(view.findings().first().health, Health::Failure);
    EXPECT_TRUE(view.hint().contains(u" attention."_s));
    view.check();
    view.cancel();
    ASSERT_TRUE(await([&] { return !view.busy(); }));
    EXPECT_FALSE(view.findings().isEmpty());
}

TEST_F(Doctor, theViewPutsRightWhatCanBeAndSaysWhatItDid)
{
    BackgroundQueue background;
    DoctorView view({ [this] { return profile(); }, background, m_clock });
    EXPECT_TRUE(view.hint().startsWith("Checks the database"));
    EXPECT_FALSE(view.canFix());
    const auto attention = [&] {
        EXPECT_TRUE(view.hint().startsWith("Checking: "));
        EXPECT_FALSE(view.canFix()) << "while it checks";
        EXPECT_TRUE(await([&] { return !view.busy(); }));
        return std::ranges::count_if(
            view.findings(), [](const Finding& finding) { return finding.health != Health::Good; });
    };
    view.check();
    const auto usual = attention(); // of this machine
    m_db->exec("DROP TABLE contact_tag;");
    view.check();
    EXPECT_EQ(attention(), usual + 1);
    EXPECT_TRUE(view.hint().startsWith(usual == 0 ? u"One check"_s : QString::number(usual + 1)));
    EXPECT_TRUE(view.canFix());
    EXPECT_EQ(view.fixed(), "");
    view.fix();
    EXPECT_EQ(attention(), usual);
    EXPECT_NE(view.fixed(), "");
    view.check();
    EXPECT_EQ(view.fixed(), "") << "of the last repair";
    attention();
}
