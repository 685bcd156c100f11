#include "InboxViewTest.h"

#include "Support/LogCapture.h"

#include <QDir>
#include <QFile>

using namespace corvane;

namespace {

class UnsentTest : public InboxViewTest {
protected:
    UnsentTest()
    {
        receiveFromAnaAndBen();
        inbox.person()->select(ana);
    }

    QUrl file(const QString& name, qsizetype bytes)
    {
        home.write(name, QByteArray(bytes, 'x'));
        return QUrl::fromLocalFile(home.path(name));
    }

    Composer& composer = *inbox.reply()->composer();
};

}

TEST_F(UnsentTest, aMessageWithoutAnAnswerAtTheEndOfTheProgramMayHaveGoneOut)
{
    home.write("share/Corvane/messages.json",
        compactJson({ { "ds:1",
                          QJsonObject {
                              { "contact", ana }, { "platform", "WHATSAPP" }, { "text", "hello" }, { "reason", "" } } },
            { "ds:2", QJsonObject { { "contact", ben }, { "text", "hi" }, { "reason", "no such chat" } } } }));
    UnsentMessages later(engines, clock, home.path("share/Corvane/messages.json"));
    const auto shown = [&](const QString& contact) {
        later.show(contact);
        return column(later.rows(), "body").join(',') + '|' + column(later.rows(), "reason").join(',');
    };
    EXPECT_EQ(shown(ana), "hello|Not sent: Corvane ended before the engine answered. It may have gone out.");
    EXPECT_EQ(shown(ben), "hi|Not sent: no such chat");
    EXPECT_EQ(shown({}), "|");
    const QSignalSpy retried(&later, &UnsentMessages::retried);
    later.retry("none");
    EXPECT_EQ(retried.size(), 0);
    later.retry("ds:2");
    EXPECT_EQ(retried.size(), 1);
    later.discard("none");
    later.discard("ds:1");
    EXPECT_EQ(shown(ana), "|");
    EXPECT_FALSE(home.read("share/Corvane/messages.json").contains("hello"));
}

TEST_F(UnsentTest, aTextThatCannotBeWrittenIsWrittenLater)
{
    LogCapture logs;
    const QString place = home.path("share/Corvane/unsent.json");
    QFile::remove(place);
    ASSERT_TRUE(QDir().mkpath(place + "/in the way"));
    composer.setText("hello");
    clock.advance(Milliseconds(500));
    EXPECT_EQ(logs.lines(), QStringList("UnsentTexts: cannot write " + place));
    ASSERT_TRUE(QDir(place).removeRecursively());
    clock.advance(seconds(10));
    EXPECT_TRUE(home.read("share/Corvane/unsent.json").contains("hello"));
}

TEST_F(UnsentTest, whatAChannelNoLongerCarriesIsNotSent)
{
    const auto allow = [this](int bytes) {
        engine().printEvent({ { "type", "features" }, { "files", true }, { "maxBytes", bytes } });
        settle();
    };
    Attachments& attachments = *composer.attachments();
    allow(3000);
    EXPECT_EQ(attachments.summary() + attachments.problem(), "");
    attachments.add({ file("plan.pdf", 2000) });
    EXPECT_FALSE(composer.canSend()) << "while it is copied";
    ASSERT_TRUE(await([&] { return attachments.files().size() == 1; }));
    EXPECT_TRUE(composer.canSend());
    attachments.paste({ file("small.pdf", 1000) }, {});
    ASSERT_TRUE(await([&] { return attachments.files().size() == 2; })) << "just as much as fits";
    EXPECT_EQ(attachments.summary() + attachments.problem(), "3 kB of 3 kB");
    allow(2999);
    EXPECT_EQ(attachments.problem(), "WhatsApp carries at most 3 kB of files in one message.");
    EXPECT_FALSE(composer.canSend());
    attachments.add({ QUrl::fromLocalFile(home.path("gone.pdf")) });
    EXPECT_EQ(composer.sendError(), "gone.pdf can't be read.");
    attachments.remove("none");
    EXPECT_EQ(attachments.files().size(), 2);
    const QSignalSpy removed(&attachments, &Attachments::removed);
    attachments.remove(attachments.files().first().path);
    EXPECT_EQ(removed.size(), 1);
    EXPECT_EQ(column(attachments.rows(), "name"), QStringList("small.pdf"));
    EXPECT_TRUE(composer.canSend());
}

TEST_F(UnsentTest, aSubjectTypedToAMergedPersonIsFoundWithTheOther)
{
    inbox.person()->select(ben);
    composer.setSubject("Plans");
    composer.setText("to Ben");
    engines.db().run("INSERT INTO contact_merge(id, workspace_id, primary_contact_id, merged_contact_id, "
                     "conv_ids_json, created_at) VALUES('m','local',?,?,'[]',1);",
        { ana, ben });
    inbox.person()->select(ana);
    EXPECT_EQ(composer.subject() + '|' + composer.text(), "Plans|to Ben");
}

TEST_F(UnsentTest, olderMessagesCanBeAskedForOnlyWhereThereIsAConversation)
{
    engines.db().exec("UPDATE unified_conversation SET deleted_at=1 WHERE contact_id='" + ana + "';");
    inbox.person()->thread()->history()->loadMore();
    EXPECT_EQ(composer.sendError(), "No WhatsApp conversation for this contact");
    composer.dismissError();
    EXPECT_EQ(composer.sendError(), "");
}
