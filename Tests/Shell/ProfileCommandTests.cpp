#include "Care/Backup/Backup.h"
#include "Engines/AccountStore.h"
#include "Foundation/Json.h"
#include "Platform/Probes.h"
#include "Presentation/SizeWords.h"
#include "Shell/BackupCommand.h"
#include "Shell/CaptureCommand.h"
#include "Shell/DoctorCommand.h"
#include "Shell/ExchangeCommand.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/AccountNamed.h"
#include "Support/StoreTest.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QTextStream>
#include <cstdio>

using namespace corvane;

namespace {

/// What the user would type on standard input.
class Typed {
public:
    explicit Typed(const QString& file) { EXPECT_TRUE(std::freopen(qPrintable(file), "r", stdin)); }
    ~Typed() { EXPECT_TRUE(std::freopen("/dev/null", "r", stdin)); }
    Typed(const Typed&) = delete;
    Typed& operator=(const Typed&) = delete;
};

class ProfileAtTheTerminal : public StoreTest {
protected:
    ProfileAtTheTerminal()
    {
        Account account = accountNamed(u"shop"_s);
        account.email = u"me@shop.example"_s;
        m_home.write("share/Corvane/accounts.json", encodeAccounts({ account }));
        m_home.write("share/Corvane/media/shop/a.jpg", "picture");
        open();
        m_db->run("INSERT INTO contact(id, display_name) VALUES('a','Ana'), ('b','Bo');");
    }

    QString run(int (*command)(const TextCall&), const QStringList& given)
    {
        QString text;
        QTextStream stream(&text);
        const int code = command({ m_home.paths(), given, stream, stream });
        stream.flush();
        return QString::number(code) + u": "_s + text;
    }

    static QString contentOf(const QString& file, const std::optional<QString>& passphrase = {})
    {
        const auto manifest = verifyBackup(file, passphrase, std::make_shared<BackupProgress>());
        EXPECT_TRUE(manifest.has_value());
        qint64 rows = 0;
        for (const qint64 count : manifest->rows)
            rows += count;
        return u"%1 rows in %2 tables, %3 files"_s.arg(rows).arg(manifest->rows.size()).arg(manifest->files.size());
    }

    const QString file = m_home.path(u"shop.tar"_s);
};

}

TEST_F(ProfileAtTheTerminal, aBackupIsMadeCheckedAndRestored)
{
    const QString made = run(runBackup, { file });
    const QString content = contentOf(file);
    EXPECT_EQ(made, u"0: %1: %2, %3.\n"_s.arg(file, content, sizeWords(QFileInfo(file).size())));
    const QString checked = run(runBackup, { u"--verify"_s, file });
    EXPECT_TRUE(checked.startsWith(u"0: The backup of "_s) && checked.endsWith(u" is sound: "_s + content + u".\n"_s))
        << qPrintable(checked);
    const QString small = m_home.path(u"small.tar"_s);
    EXPECT_TRUE(run(runBackup, { u"--no-media"_s, small }).startsWith(u"0: "_s));
    EXPECT_EQ(content.section(u' ', -2, -2).toInt() - contentOf(small).section(u' ', -2, -2).toInt(), 1);

    EXPECT_TRUE(run(runRestore, { file }).startsWith(u"1: Nothing was restored: "_s));
    EXPECT_TRUE(
        run(runRestore, { u"--into"_s, m_home.path(u"a/../b"_s), file }).startsWith(u"1: Nothing was restored: "_s));
    const QString into = m_home.path(u"other"_s);
    const QString restored = run(runRestore, { u"--into"_s, into, file });
    EXPECT_TRUE(restored.startsWith(u"0: Restored the backup of "_s)) << qPrintable(restored);
    EXPECT_TRUE(restored.contains(u": "_s + content + u".\nAccounts are paused: "_s));
    EXPECT_FALSE(restored.contains(u"The profile that was there"_s));
    EXPECT_TRUE(
        restored.endsWith(u"\nStart it with: XDG_DATA_HOME=%1/data XDG_CONFIG_HOME=%1/config corvane\n"_s.arg(into)));
    EXPECT_EQ(m_home.read("other/data/Corvane/media/shop/a.jpg"), "picture");

    m_db->run("DELETE FROM contact WHERE id='b';");
    m_db.reset();
    const QString back = run(runRestore, { u"--replace"_s, file });
    EXPECT_TRUE(back.endsWith(
        u"\nThe profile that was there lies in %1.before-restore.\n"_s.arg(m_home.paths().applicationSupport)))
        << qPrintable(back);
    open();
    EXPECT_EQ(cell(u"SELECT COUNT(*) FROM contact"_s), u"2"_s);
}

TEST_F(ProfileAtTheTerminal, anEncryptedBackupAsksForItsPassphrase)
{
    m_home.write("typed", "tiles\n");
    m_home.write("empty", "\n");
    const QString typed = m_home.path(u"typed"_s);
    const QString empty = m_home.path(u"empty"_s);
    const auto asked = [&](int (*command)(const TextCall&), const QStringList& given, const QString& words) {
        const Typed input(words);
        return run(command, given);
    };
    EXPECT_EQ(asked(runBackup, { u"--encrypt"_s, file }, empty), "1: ");
    EXPECT_FALSE(QFileInfo::exists(file));
    EXPECT_TRUE(asked(runBackup, { u"--encrypt"_s, file }, typed).startsWith(u"0: "_s));
    const QString content = contentOf(file, u"tiles"_s);
    EXPECT_TRUE(asked(runBackup, { u"--verify"_s, file }, typed).endsWith(u" is sound: "_s + content + u".\n"_s));
    EXPECT_EQ(asked(runBackup, { u"--verify"_s, file }, empty), "1: ");
    const QStringList into { u"--into"_s, m_home.path(u"other"_s), file };
    EXPECT_EQ(asked(runRestore, into, empty), "1: ");
    EXPECT_FALSE(QFileInfo::exists(into[1]));
    EXPECT_TRUE(asked(runRestore, into, typed).startsWith(u"0: "_s));
}

TEST_F(ProfileAtTheTerminal, whatIsTypedWrongChangesNothing)
{
    const QString backup = u"2: Usage: corvane backup [--encrypt] [--secrets] [--no-media] FILE, or --verify FILE\n"_s;
    EXPECT_EQ(run(runBackup, {}), backup);
    EXPECT_EQ(run(runBackup, { file, file }), backup);
    EXPECT_EQ(run(runBackup, { u"--all"_s, file }), backup);
    EXPECT_EQ(run(runBackup, { u"--secrets"_s, file }),
        "2: Passwords and tokens go only into an encrypted backup: give --encrypt, too.\n");
    EXPECT_TRUE(run(runBackup, { m_home.path(u"none/shop.tar"_s) }).startsWith(u"1: There is no backup: "_s));
    EXPECT_FALSE(QFileInfo::exists(file));
    m_home.write("shop.tar", "no archive");
    EXPECT_TRUE(run(runBackup, { u"--verify"_s, file }).startsWith(u"1: The backup is not sound: "_s));
    const QString restore = u"2: Usage: corvane restore [--into FOLDER] [--replace] FILE\n"_s;
    EXPECT_EQ(run(runRestore, {}), restore);
    EXPECT_EQ(run(runRestore, { u"--all"_s, file }), restore);
    EXPECT_TRUE(run(runRestore, { u"--replace"_s, file }).startsWith(u"1: Nothing was restored: "_s));
    EXPECT_EQ(run(runExport, {}), "2: Usage: corvane export FOLDER\n");
    EXPECT_EQ(run(runExport, { file, file }), "2: Usage: corvane export FOLDER\n");
    const QString import = u"2: Usage: corvane import [--account NAME] [--own-address ADDRESS] PATH\n"_s;
    EXPECT_EQ(run(runImport, {}), import);
    EXPECT_EQ(run(runImport, { u"--all"_s, file }), import);
    EXPECT_EQ(run(runImport, { u"/none.mbox"_s }), "1: There is no file /none.mbox.\n");
    EXPECT_EQ(run(runImport, { file }), "2: It is neither a folder nor an .mbox, .eml, .vcf or .ics file.\n");
    EXPECT_EQ(run(runDoctor, { u"--all"_s }), "2: Usage: corvane doctor [--fix] [--json]\n");
    EXPECT_EQ(cell(u"SELECT COUNT(*) FROM contact"_s), u"2"_s);
}

TEST_F(ProfileAtTheTerminal, whatIsExportedAndImportedIsCounted)
{
    const QString folder = m_home.path(u"export"_s);
    const QString exported = run(runExport, { folder });
    EXPECT_TRUE(exported.startsWith(u"0: Exported: "_s) && exported.endsWith(u".\n"_s)) << qPrintable(exported);
    EXPECT_FALSE(exported.contains(u" 0"_s)) << qPrintable(exported);
    EXPECT_TRUE(run(runExport, { folder }).startsWith(u"1: "_s)) << "nothing is written over";
    EXPECT_EQ(run(runImport, { folder }), "0: Imported: nothing new.\n");

    m_home.write("P.VCF", "BEGIN:VCARD\r\nVERSION:4.0\r\nFN:Cy\r\nEMAIL:cy@x.example\r\nTEL:+34 600\r\nEND:VCARD\r\n");
    EXPECT_EQ(run(runImport, { m_home.path(u"P.VCF"_s) }), "0: Imported: people 2.\n");
    const auto mail = [](const QByteArray& from, const QByteArray& to) {
        return "From: " + from + "\r\nTo: " + to + "\r\nMessage-ID: <" + from + ">\r\nDate: Mon, 2 Nov 2026 10:00:00 "
            + "+0100\r\n\r\nhello\r\n";
    };
    m_home.write("in.eml", mail("cy@x.example", "me@shop.example"));
    m_home.write("own.eml", mail("me@shop.example", "cy@x.example"));
    m_home.write("old.eml", mail("me@old.example", "cy@x.example"));
    EXPECT_EQ(run(runImport, { m_home.path(u"in.eml"_s) }), "0: Imported: messages 1.\n");
    EXPECT_EQ(run(runImport, { u"--account"_s, u"shop"_s, m_home.path(u"own.eml"_s) }), "0: Imported: messages 1.\n");
    EXPECT_EQ(run(runImport, { u"--own-address"_s, u"me@old.example"_s, m_home.path(u"old.eml"_s) }),
        "0: Imported: messages 1.\n");
    EXPECT_EQ(table(u"SELECT m.direction, c.account_id FROM unified_message m JOIN unified_conversation c ON "
                    u"c.id=m.conversation_id ORDER BY m.provider_msg_id"_s),
        QStringList({ u"IN|imported"_s, u"OUT|imported"_s, u"OUT|shop"_s }));
    EXPECT_TRUE(run(runImport, { m_home.path(u"none.ics"_s) }).startsWith(u"1: "_s));
}

TEST_F(ProfileAtTheTerminal, wordsAreCapturedAsATaskOrANote)
{
    QString text;
    QTextStream errors(&text);
    const AppPaths& paths = m_home.paths();
    EXPECT_EQ(captureWords(paths, { u"Call"_s, u"Ana"_s }, errors), 0);
    EXPECT_EQ(captureWords(paths, { u"The kiln"_s, u"--note"_s, u"is cold"_s }, errors), 0);
    EXPECT_EQ(table(u"SELECT kind, title FROM work_item ORDER BY kind"_s),
        QStringList({ u"note|The kiln is cold"_s, u"task|Call Ana"_s }));
    EXPECT_EQ(captureWords(paths, { u"--note"_s, u" "_s }, errors), 1);
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON work_item BEGIN SELECT RAISE(ABORT, 'full'); END;");
    EXPECT_EQ(captureWords(paths, { u"lost"_s }, errors), 1);
    errors.flush();
    EXPECT_EQ(text,
        "There is nothing to capture.\n"
        "The database could not be written. Is the program's data folder writable?\n");
}

TEST_F(ProfileAtTheTerminal, theDoctorSaysWhatIsWrongAndPutsItRight)
{
    for (const QString& place : { m_home.paths().applicationSupport, path(), m_home.path(u"config/Corvane"_s) })
        makePrivate(place);
    m_db->exec("DROP TABLE contact_tag;");
    const QString report = run(runDoctor, {});
    EXPECT_TRUE(report.contains(u"\n!! Tables               Missing: contact_tag.\n"_s + QString(24, u' ')
        + u"Start Corvane once, or run corvane doctor --fix: both add them.\n"_s))
        << qPrintable(report);
    EXPECT_TRUE(report.contains(u"\nok Folders              "_s)) << qPrintable(report);

    const auto told = [&](const QStringList& options) {
        const QString answer = run(runDoctor, options);
        const auto json = jsonObject(answer.section(u": "_s, 1).toUtf8()).value_or(QJsonObject());
        int worst = 0;
        for (const auto& each : json[u"findings"].toArray())
            worst = std::max(worst,
                int(QStringList({ u"good"_s, u"warning"_s, u"failure"_s })
                        .indexOf(each.toObject()[u"state"].toString())));
        EXPECT_EQ(answer.section(u':', 0, 0), QString::number(worst));
        return json;
    };
    const auto tables = [](const QJsonObject& json) {
        const QJsonObject found = json[u"findings"].toArray()[4].toObject();
        return QStringList { found[u"id"].toString(), found[u"title"].toString(), found[u"state"].toString(),
            found[u"found"].toString(), found[u"advice"].toString().section(u',', 0, 0),
            found[u"canFix"].toBool() ? u"can be fixed"_s : QString() }
            .join(u'|');
    };
    const QJsonObject before = told({ u"--json"_s });
    EXPECT_EQ(tables(before), "schema|Tables|warning|Missing: contact_tag.|Start Corvane once|can be fixed");
    EXPECT_EQ(before[u"fixed"].toArray().size(), 0);
    const QJsonObject after = told({ u"--fix"_s, u"--json"_s });
    EXPECT_EQ(tables(after), "schema|Tables|good|All of them exist.||");
    EXPECT_EQ(after[u"fixed"].toArray(), QJsonArray({ u"Added the tables and columns that were missing."_s }));
    EXPECT_TRUE(
        run(runDoctor, { u"--fix"_s }).section(u": "_s, 1).startsWith(u"There was nothing to put right.\nok "_s));
}
