#include "Work/WorkWords.h"

#include "Support/Print.h"

#include <gtest/gtest.h>

namespace corvane {

TEST(WorkWords, aKindIsKnownByWhatItContains)
{
    for (const char* kind : { "ticket", "Bugfix", "customer SUPPORT", "repro" })
        EXPECT_TRUE(isTicketKind(kind)) << kind;
    for (const char* kind : { "", "task", "reply", "Handoff to Ana" })
        EXPECT_FALSE(isTicketKind(kind)) << kind;
}

TEST(WorkWords, theRiskIsThatOfTheFirstGroupWithASign)
{
    struct Case {
        const char* kind;
        const char* title;
        const char* summary;
        const char* risk; ///< empty: no decision
    };
    for (const Case& each : {
             Case { "task", "Client update for payment", "", "money" },
             Case { "task", "Pay", "", "money" }, // matches the space between title and summary
             Case { "task", "Check payroll", "of May", "" },
             Case { "task", "Payroll", "vendor", "money" },
             Case { "reply", "Ana", "", "external" },
             Case { "task", "Send the secret", "", "external" },
             Case { "task", "Rotate API key", "", "credential" },
             Case { "task", "Tidy", "then Deploy", "high" },
             Case { "task", "Rename the api", "key", "credential" }, // matches across title and summary
             Case { "", "", "", "" },
         })
        EXPECT_EQ(riskForCreate(each.kind, each.title, each.summary).value_or(QString()), each.risk) << each.title;
}

TEST(WorkWords, aTitleTellsTheKindInAFixedOrder)
{
    for (const auto& [title, kind] : { std::pair("Repro of the invoice BUG", "bug"),
             std::pair("Handoff of a screen", "handoff"), std::pair("Candidate Screen", "screen"),
             std::pair("Invoice reply", "finance"), std::pair("Research a reply", "reply"),
             std::pair("Researching", "research"), std::pair("Call Ana", "task") })
        EXPECT_EQ(inferredKind(title), kind) << title;
}

TEST(WorkWords, aSlugHoldsLettersAndDigitsOfAnyScript)
{
    for (const auto& [text, slug] : { std::pair("  Q3 -- Büro & Café! ", "q3-büro-café"), std::pair("a/b\\c", "a-b-c"),
             std::pair("Ünïcode e\u0301", "ünïcode-é"), std::pair("请 求", "请-求"), std::pair("𝒳1", "𝒳1"),
             std::pair("--- \n", "context-1700000000"), std::pair("", "context-1700000000") })
        EXPECT_EQ(normalizedLocalSlug(QString::fromUtf8(text), 1'700'000'000'999), QString::fromUtf8(slug)) << text;
}

}
