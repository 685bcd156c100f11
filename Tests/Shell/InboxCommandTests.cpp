#include "Shell/InboxCommand.h"

#include "Foundation/Json.h"
#include "Platform/ProfileLock.h"
#include "Shell/CommandLine.h"
#include "Shell/TerminalText.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/CrmRecords.h"
#include "Support/Places.h"
#include "Support/StoreTest.h"

#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

using namespace corvane;

namespace {

class InboxAtTheTerminal : public StoreTest {
protected:
    InboxAtTheTerminal()
    {
        open();
        say(u"1@x"_s, u"Ana Ruiz"_s, u"Hello \x1b[31mred\u202e there"_s);
        say(u"2@x"_s, u"Ana Marti"_s, u"The kiln is hot"_s);
    }

    void say(const QString& who, const QString& name, const QString& body)
    {
        const auto stored = storeMessage(*m_db, u"WHATSAPP"_s, u"shop"_s,
            { who, who + u"-m"_s, body, false, m_clock.nowMs(), name, name, {}, {}, {} });
        raiseUnread(*m_db, stored->conversationId);
    }

    template <typename... More>
    QString run(int (*command)(const TextCall&, More...), const QStringList& given, std::type_identity_t<More>... more)
    {
        QString text;
        QTextStream stream(&text);
        const int code = command({ m_home.paths(), given, stream, stream }, more...);
        stream.flush();
        return QString::number(code) + u": "_s + text;
    }
};

}

TEST_F(InboxAtTheTerminal, peopleAndThreadsArePrintedWithoutWhatSteersATerminal)
{
    const QString list = run(listPeople, { u"--all"_s });
    EXPECT_TRUE(list.startsWith(u"0: "_s) && list.contains(u"Ana Ruiz (1)  Hello [31mred there\n"_s))
        << qPrintable(list);
    EXPECT_TRUE(run(showPerson, { u"ruiz"_s }).endsWith(u"Ana Ruiz: Hello [31mred there\n"_s));
    EXPECT_TRUE(run(showPerson, { u"ana"_s }).startsWith(u"1: Several people are called that: ana\n"_s));
    EXPECT_EQ(run(showPerson, { u"nobody"_s }), "1: Nobody is called that: nobody\n");
    EXPECT_TRUE(run(searchInbox, { u"kiln"_s }).contains(u"Ana Marti  The kiln is hot\n"_s));
    EXPECT_EQ(run(searchInbox, { u"absent"_s }), "1: ");
    addNote(*m_db, u"ct:WHATSAPP:2@x"_s, u"Fix the kiln door"_s);
    const QString both = run(searchInbox, { u"kiln"_s });
    EXPECT_TRUE(both.contains(u"\nNotes:\n"_s) && both.endsWith(u"Ana Marti  Fix the kiln door\n"_s))
        << qPrintable(both);
    EXPECT_FALSE(run(searchInbox, { u"kiln"_s, u"in:messages"_s, u"from:Ana Marti"_s }).contains(u"door"_s));
    EXPECT_EQ(run(searchInbox, { u"from:Ana Nobody"_s }), "1: ");
    EXPECT_TRUE(run(searchInbox, { u"before:long"_s }).startsWith(u"2: “long” is not understood: "_s));
    const auto json = jsonObject(run(searchInbox, { u"--json"_s, u"red"_s }).mid(4).chopped(2).toUtf8());
    ASSERT_TRUE(json);
    EXPECT_EQ((*json)[u"text"].toString().contains(u'\x1b'), true) << "what a program reads stays as it is";
    EXPECT_TRUE(run(listPeople, { u"--limit"_s, u"none"_s }).startsWith(u"2: Usage: "_s));
}

TEST_F(InboxAtTheTerminal, whatIsSentWaitsForAPerson)
{
    EXPECT_EQ(run(draftMessage, { u"Ana Ruiz"_s, u"See"_s, u"you"_s }, QString()),
        "0: It waits in Approvals: to Ana Ruiz.\n");
    EXPECT_EQ(run(draftMessage, { u"marti"_s }, u"From a pipe\n"_s), "0: It waits in Approvals: to Ana Marti.\n");
    EXPECT_EQ(run(draftMessage, { u"marti"_s }, QString()), "2: There is no text to send.\n");
    EXPECT_EQ(table(u"SELECT body, status FROM outbound_draft ORDER BY body"_s),
        QStringList({ u"From a pipe|pending"_s, u"See you|pending"_s }));
    EXPECT_TRUE(run(printStatus, {})
            .startsWith(u"0: Corvane does not run.\n2 unread messages.\n2 messages wait in Approvals.\n"_s));
}

TEST_F(InboxAtTheTerminal, whatCannotBeUsedIsSaidInPlainWords)
{
    m_db.reset();
    ASSERT_TRUE(QFile::resize(path(), 5000));
    const QString unusable = u"1: The database cannot be used. corvane doctor says why, and what to do.\n"_s;
    EXPECT_EQ(run(printStatus, {}), unusable);
    EXPECT_EQ(run(searchInbox, { u"kiln"_s }), unusable);
    ASSERT_TRUE(QFile::remove(path()));
    EXPECT_TRUE(run(printStatus, {}).startsWith(u"1: There is no database at "_s));
    const auto starting = ProfileLock::take(m_home.paths().applicationSupport);
    EXPECT_EQ(run(printStatus, {}), "1: Corvane is starting. Try again.\n");
    EXPECT_EQ(m_log.lines(), QStringList());
}

TEST_F(InboxAtTheTerminal, aProgramReadsTheSameAsJson)
{
    const auto read = [](const QString& answer) {
        EXPECT_EQ(answer.first(3), "0: ");
        return QJsonDocument::fromJson(answer.mid(3).toUtf8()).array();
    };
    const auto fields = [](const QJsonValue& row, const QStringList& names) {
        QStringList values;
        for (const QString& name : names)
            values.append(row[name].toVariant().toString());
        return values.join(u'|');
    };
    const QString at = QDateTime::fromMSecsSinceEpoch(m_clock.nowMs()).toUTC().toString(Qt::ISODateWithMs);
    const QJsonArray people = read(run(listPeople, { u"--json"_s }));
    ASSERT_EQ(people.size(), 2);
    EXPECT_EQ(read(run(listPeople, { u"--json"_s, u"--limit"_s, u"1"_s })).size(), 1);
    const QJsonValue marti = people[people[0][u"name"] == u"Ana Marti"_s ? 0 : 1];
    EXPECT_EQ(fields(marti, { u"id"_s, u"name"_s, u"unread"_s, u"lastMessageAt"_s, u"lastMessage"_s }),
        u"ct:WHATSAPP:2@x|Ana Marti|1|%1|The kiln is hot"_s.arg(at));
    EXPECT_EQ(marti[u"channels"].toArray(), QJsonArray({ u"WHATSAPP"_s }));
    m_db->exec("UPDATE unified_message SET subject='Kiln', media_type='image', media_path='/a.jpg' WHERE body LIKE "
               "'The kiln%';");
    const QJsonArray thread = read(run(showPerson, { u"--json"_s, u"ct:WHATSAPP:2@x"_s }));
    ASSERT_EQ(thread.size(), 1);
    EXPECT_EQ(
        fields(thread[0], { u"at"_s, u"channel"_s, u"direction"_s, u"sender"_s, u"subject"_s, u"body"_s, u"media"_s }),
        at + u"|WHATSAPP|IN|Ana Marti|Kiln|The kiln is hot|/a.jpg"_s);
    EXPECT_TRUE(run(showPerson, { u"marti"_s }).endsWith(u"Ana Marti: Kiln - The kiln is hot [image]\n"_s));
    m_db->exec("UPDATE unified_message SET direction='OUT';");
    EXPECT_TRUE(run(showPerson, { u"ANA MARTI"_s }).contains(u"You: Kiln - "_s));
    addNote(*m_db, u"ct:WHATSAPP:2@x"_s, u"Fix the kiln door"_s);
    const QJsonArray found = read(run(searchInbox, { u"--json"_s, u"kiln"_s }));
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(fields(found[0], { u"kind"_s, u"person"_s, u"personId"_s, u"channel"_s, u"direction"_s, u"at"_s }),
        u"message|Ana Marti|ct:WHATSAPP:2@x|WHATSAPP|OUT|"_s + at);
    EXPECT_EQ(fields(found[1], { u"kind"_s, u"personId"_s, u"title"_s, u"text"_s, u"at"_s }),
        u"note|ct:WHATSAPP:2@x|Ana Marti|Fix the kiln door|"_s + at);

    const auto status = [this] {
        return run(printStatus, { u"--json"_s });
    };
    EXPECT_EQ(status(), "0: {\"running\":false,\"unread\":2,\"waitingDrafts\":0}\n");
    EXPECT_TRUE(run(printStatus, {}).endsWith(u"There is no backup yet.\n"_s));
    m_home.write("share/Corvane/backups/corvane-2026-11-01-120000.tar", "x");
    const auto running = ProfileLock::take(m_home.paths().applicationSupport);
    EXPECT_TRUE(status().startsWith(u"0: {\"lastBackupAt\":\"2026-11-0"_s) && status().contains(u"\"running\":true"_s));
    EXPECT_TRUE(run(printStatus, {}).startsWith(u"0: Corvane runs.\n"_s));
    EXPECT_TRUE(run(printStatus, {}).contains(u"\nThe last backup was made "_s));
}

TEST_F(InboxAtTheTerminal, aWrongWordIsAnsweredWithTheUsage)
{
    EXPECT_EQ(run(printStatus, { u"all"_s }), "2: Usage: corvane status [--json]\n");
    EXPECT_EQ(run(showPerson, {}), "2: Usage: corvane show [--limit N] [--json] PERSON\n");
    EXPECT_EQ(run(searchInbox, {}), "2: Usage: corvane search [--limit N] [--json] WORDS\n");
    EXPECT_EQ(run(draftMessage, {}, u"hello"_s), "2: Usage: corvane send PERSON [WORDS]\n");
    EXPECT_EQ(run(draftMessage, { u"nobody"_s, u"hello"_s }, {}), "1: Nobody is called that: nobody\n");
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON outbound_draft BEGIN SELECT RAISE(ABORT, 'full'); END;");
    EXPECT_EQ(run(draftMessage, { u"marti"_s, u"hello"_s }, {}), "1: The database could not be written.\n");
}

TEST(CommandLine, everyCommandStandsInTheManualAndTheCompletions)
{
    for (const char* name :
        { "corvane.1", "completions/corvane.bash", "completions/_corvane", "completions/corvane.fish" }) {
        QFile file(QStringLiteral(CORVANE_SOURCE "/data/") + QString::fromLatin1(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        for (const QString& line : commandHelp().split(u'\n').mid(1)) {
            const QString word = line.section(u' ', 3, 3);
            EXPECT_TRUE(word.isEmpty() || text.contains(word)) << name << " lacks " << qPrintable(word);
        }
    }
}
