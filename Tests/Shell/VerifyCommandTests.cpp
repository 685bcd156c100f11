#include "Shell/VerifyCommand.h"

#include "Store/Approvals/DraftApprovals.h"
#include "Support/EngineWorld.h"
#include "Support/Print.h"
#include "Support/WaitingItems.h"

#include <QTextStream>
#include <gtest/gtest.h>

using namespace corvane;

TEST(VerifyCommand, tellsWhetherTheRecordOfDecisionsIsWhole)
{
    EngineSurroundings world;
    const auto verify = [&] {
        QString words;
        QTextStream out(&words);
        const int code = verifyDecisions(world.home.paths(), out);
        out.flush();
        return QString::number(code) + ": " + words;
    };
    EXPECT_TRUE(verify().startsWith("1: There is no database at "));
    const auto db = world.openDatabase(world.clock);
    EXPECT_EQ(verify(), "0: No decision has been recorded yet.\n");
    writeDraft(*db, "d1", "Ana", "hello");
    ASSERT_EQ(rejectDraft(*db, "d1"), Decided::Taken);
    EXPECT_TRUE(verify().startsWith("0: The decision log is intact: 1 line, the last with the hash "));
    db->exec("DROP TRIGGER approval_record_keeps; UPDATE approval_record SET action='approve';");
    EXPECT_EQ(verify(), "1: The decision log is broken: line 1 was changed after it was written.\n");
}
