#include "Shell/InboxCommand.h"

#include "Foundation/Json.h"
#include "Platform/ProfileLock.h"
#include "Shell/CommandLine.h"
#include "Shell/TerminalText.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/CrmRecords.h"
#include "Support/Places.h"
#include "Support/StoreTest.h"

#include <QFile>
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
