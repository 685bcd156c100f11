#include "Inbox/List/WebStaleness.h"

#include "Presentation/DateWords.h"
#include "Support/Print.h"

#include <gtest/gtest.h>

using namespace corvane;

TEST(WebStaleness, aChannelIsStaleOnlyWhileTheWebIsInTrouble)
{
    constexpr qint64 now = 1'760'000'000'000;
    const auto health = [](const QString& source, const QString& status) {
        SyncHealthRow row;
        row.source = source;
        row.status = status;
        return QList<SyncHealthRow> { row };
    };
    const QHash<QString, qint64> newest { { "LINKEDIN", now - 7'200'001 }, { "EMAIL", now - 7'200'000 } };
    const QList<WebStaleness> linkedIn { { "LINKEDIN", now - 7'200'001 } };
    EXPECT_EQ(activeWebStaleness({}, health("inbox", "Error"), newest, now), linkedIn);
    EXPECT_EQ(activeWebStaleness("LINKEDIN", health("bootstrap", "waiting_for_web"), newest, now), linkedIn);
    EXPECT_TRUE(activeWebStaleness("EMAIL", health("inbox", "error"), newest, now).isEmpty());
    EXPECT_TRUE(activeWebStaleness("WHATSAPP", health("inbox", "error"), newest, now).isEmpty());
    EXPECT_TRUE(activeWebStaleness({}, health("crm", "error"), newest, now).isEmpty());
    EXPECT_TRUE(activeWebStaleness({}, health("inbox", "ok"), newest, now).isEmpty());
    EXPECT_TRUE(activeWebStaleness({}, health("inbox", "error"), { { "EMAIL", 0 } }, now).isEmpty());

    const DateWords words(now);
    const auto text = [&](qint64 newestMs) {
        return stalenessText({ "LINKEDIN", newestMs }, words);
    };
    EXPECT_EQ(text(now - 7'200'001), "LinkedIn last synced 2 hours ago — web connection degraded");
    EXPECT_EQ(text(now - 5 * 86'400'000LL), "LinkedIn last synced 5 days ago — web connection degraded");
}
