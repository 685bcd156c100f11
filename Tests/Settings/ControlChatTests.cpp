#include "Foundation/Literals.h"
#include "Settings/ControlChatSettings.h"

#include "Support/EngineWorld.h"
#include "Support/Print.h"
#include "Support/Rows.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace corvane {

TEST(ControlChat, oneConversationIsFoundByItsNameAndChosen)
{
    EngineWorld world;
    LocalDB& db = world.engines.db();
    ControlChatSettings card(db);
    QAbstractItemModel& chats = *card.chats();
    const QAbstractItemModelTester tester(&chats, QAbstractItemModelTester::FailureReportingMode::Fatal);
    card.refresh();
    EXPECT_EQ(card.emptyText(), "No conversations in the local mirror yet.");

    db.exec(u"INSERT INTO unified_conversation(id, workspace_id, channel, account_id, external_id, title, last_ts) "
            "VALUES('c1','local','WHATSAPP','studio','1','André <b>',1),('c2','local','EMAIL','','2','Orders',2);"_s);
    card.refresh();
    EXPECT_EQ(column(chats, "title"), (QStringList { "Orders", "André <b>" }));
    EXPECT_EQ(column(chats, "detail"), (QStringList { "Email", "WhatsApp · studio" }));
    EXPECT_EQ(column(chats, "sentence"), (QStringList { "Orders, Email", "André <b>, WhatsApp · studio" }));
    QSignalSpy changed(&card, &ControlChatSettings::changed);
    card.setQuery("");
    EXPECT_EQ(changed.size(), 0);
    card.setQuery(" ANDRE");
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(column(chats, "id"), QStringList("c1"));
    EXPECT_EQ(card.stateText(), "");

    card.choose("c1");
    EXPECT_EQ(card.savedText(), "Control chat set");
    EXPECT_EQ(
        card.stateText(), "Approvals can be approved from André <b> — commands: approve <id>, deny <id> [reason]");
    EXPECT_EQ(column(chats, "chosen"), QStringList("true"));
    EXPECT_FALSE(card.failed());
    card.choose("none of these");
    EXPECT_EQ(approvalsControlChatId(db), "c1");
    card.setQuery("nobody");
    EXPECT_EQ(card.emptyText(), "No conversation matches “nobody”.");

    card.refresh();
    EXPECT_EQ(card.savedText(), "") << "said once";
    db.exec("UPDATE unified_conversation SET deleted_at=1;");
    card.refresh();
    EXPECT_TRUE(card.stateText().startsWith("Approvals can be approved from c1 "))
        << "a choice whose chat is gone still shows";
    card.turnOff();
    EXPECT_EQ(card.savedText(), "Control chat removed");
    EXPECT_FALSE(card.chosen());

    db.exec("UPDATE unified_conversation SET deleted_at=NULL; DROP TABLE engine_settings;");
    card.refresh();
    card.choose("c1");
    EXPECT_TRUE(card.failed());
    EXPECT_FALSE(card.chosen());
    EXPECT_EQ(card.savedText(), "Couldn't save it, try again.");
    card.refresh();
    EXPECT_FALSE(card.failed());
}

TEST(ControlChat, aHundredConversationsAreListedAndTheOthersFound)
{
    EngineWorld world;
    ControlChatSettings card(world.engines.db());
    world.engines.db().exec("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<101)"
                            "INSERT INTO unified_conversation(id, channel, external_id, title, last_ts)"
                            " SELECT 'c' || i, 'SMS', i, 'Chat ' || i, i FROM n;");
    card.refresh();
    EXPECT_EQ(card.chats()->rowCount(), 100);
    EXPECT_FALSE(column(*card.chats(), "id").contains("c1")) << "the newest come first";
    card.setQuery("chat 1");
    EXPECT_EQ(column(*card.chats(), "id").last(), "c1");
}

}
