#include "Approvals/RiskQuestion.h"

#include "Support/Print.h"

#include <gtest/gtest.h>

using namespace corvane;

TEST(RiskQuestion, amountAndRecipientAreNamedAsTheDecisionNamesThem)
{
    struct Case {
        const char* text;
        const char* amounts;
        const char* recipient;
    };
    for (const auto& [text, amounts, recipient] : {
             Case { "Transfer 412.80 EUR to Arcillas del Sur for invoice 2025-311.", "412.80 EUR", "Arcillas del Sur" },
             Case { "Pay the invoice of 340 euros for the clay of Okafor's plates.", "340 euros", "" },
             Case { "Pay Okafor & Sons €1.234,50, then $2 million more", "€1.234,50|$2 million", "Okafor & Sons" },
             Case { "Send 1 200 € to ana@example.com.", "1 200 €", "ana@example.com" },
             Case { "Wire 12k USD to ES91 2100 0418 4502 0005 1332", "12k USD", "ES91 2100 0418 4502 0005 1332" },
             Case {
                 "Recipient: Ünal Çelik, DE89370400440532013000, 80 €", "80 €", "Ünal Çelik (DE89370400440532013000)" },
             Case { "Send the catalogue to the three galleries of 2025", "", "" },
         }) {
        const PaymentFacts facts = paymentFacts(QString::fromUtf8(text));
        EXPECT_EQ(facts.amounts.join('|'), QString::fromUtf8(amounts)) << text;
        EXPECT_EQ(facts.recipient, QString::fromUtf8(recipient)) << text;
    }
    WorkDecisionRecord decision;
    decision.risk = "credential";
    EXPECT_EQ(riskQuestion(decision), "Approve this? It is marked as credential risk.");
    decision.risk = " Money";
    EXPECT_EQ(riskQuestion(decision), "Approve this payment?");
}
