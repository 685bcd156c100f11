#include "AI/AISchemaValidator.h"
#include "Foundation/Literals.h"

#include "AI/DraftAnswer.h"
#include "Support/Print.h"

#include <gtest/gtest.h>

using namespace corvane;

namespace {

const DraftExpectation expected { "draft_reply", "warm", { "M1", "M2" }, {} };

/// A valid model response.
QString answer(const QString& draft, const QString& metadata = {})
{
    return u"{\"draft\":\"%1\",\"metadata\":{\"intent\":\"i\",\"tone\":\"t\",\"language\":\"en\","
           "\"confidence\":0.5,\"used_message_labels\":[\"M2\"],\"used_note_ids\":[\"n\"],"
           "\"warnings\":[\"w\"],\"send_side_effect\":false%2}}"_s.arg(draft, metadata);
}

QString problem(const Result<AIStructuredDraftResponse>& result)
{
    return result ? u"passed: "_s + result->draft : result.error().message;
}

}

TEST(AISchemaValidator, readsTheJsonWhereverItStands)
{
    const AIStructuredDraftResponse whole { "See {you}", { "i", "t", "en", 0.5, { "M2" }, { "n" }, { "w" }, false } };
    const QString json = answer("  See {you}\\n ");
    for (const QString& text : { json, "Here it is:\n```json\n" + json + "\n```\nAnything else? {}", json + json })
        EXPECT_EQ(parseDraftAnswer(text, expected).value(), whole) << qPrintable(text);
    EXPECT_EQ(parseDraftAnswer(answer("a \\\"}\\\" b"), expected)->draft, "a \"}\" b");
    const QString half = parseDraftAnswer(answer("\\ud83d \\\"Ana\\\""), expected)->draft;
    EXPECT_EQ(quotedFacts(half), QStringList("Ana")) << "half of a character hides nothing from those who read it";
    EXPECT_EQ(half.size(), 7);
}

TEST(AISchemaValidator, whatIsNoDraftShapeIsTakenAsTheDraft)
{
    const QStringList almost { QString(answer("x")).replace("\"tone\":\"t\",", ""),
        QString(answer("x")).replace("0.5", "\"0.5\""), QString(answer("x")).replace("[\"n\"]", "[1]"),
        QString(answer("x")).replace("false", "0"), QString(answer("x")).replace("\"draft\"", "\"Draft\""),
        "{\"draft\":\"x\"}", "{ open \"{\" forever", "}{", QString(3999, u'x') };
    for (const QString& text : almost) {
        const auto repaired = parseDraftAnswer(" " + text + "\n", expected);
        ASSERT_TRUE(repaired) << qPrintable(text);
        EXPECT_EQ(repaired->draft, text);
        EXPECT_EQ(repaired->metadata,
            (AIDraftResponseMetadata { "draft_reply", "warm", "unknown", 0.35, { "M1", "M2" }, {},
                { "Model returned plain text; Corvane repaired it into a draft schema." }, false }));
    }
    EXPECT_EQ(parseDraftAnswer("```\nHello there\n```\nDone.", expected)->draft, "Hello there");
    EXPECT_EQ(parseDraftAnswer("```Hello```", expected)->draft, "```Hello");
    for (const QString& text : { QString(4000, u'x'), QString(), u" \n"_s, u"```\n```"_s })
        EXPECT_EQ(problem(parseDraftAnswer(text, expected)), "LumoAI response was not a valid draft shape.");
}

TEST(AISchemaValidator, aDraftThatClaimsASendOrSaysNothingIsRefused)
{
    const QString sends = QString(answer("x")).replace("false", "true");
    EXPECT_EQ(problem(parseDraftAnswer(sends, expected)),
        "LumoAI tried to mark the draft as sent. Drafts cannot send themselves.");
    EXPECT_EQ(problem(parseDraftAnswer(answer(" \\n"), expected)), "LumoAI returned an empty draft.");
    AIStructuredDraftResponse both { " ", {} };
    both.metadata.sendSideEffect = true;
    EXPECT_EQ(problem(validateDraftResponse(both, expected)), "LumoAI returned an empty draft.");
}

TEST(AISchemaValidator, fillsBlanksAndBoundsTheConfidence)
{
    AIStructuredDraftResponse response { " x ", { " ", "", "\n", 7, {}, {}, {}, false } };
    EXPECT_EQ(validateDraftResponse(response, expected).value(),
        (AIStructuredDraftResponse { "x", { "draft_reply", "warm", "unknown", 1, { "M1", "M2" }, {}, {}, false } }));
    response.metadata.confidence = -0.1;
    EXPECT_EQ(validateDraftResponse(response, expected)->metadata.confidence, 0);
}

TEST(AISchemaValidator, whatWasQuotedMustSurvive)
{
    EXPECT_EQ(quotedFacts("\"b\" and \u201C A \u201D, 'c' it's 'b' \"\" \" \" \u201Copen"),
        (QStringList { "A", "b", "c", "s" }));
    EXPECT_EQ(quotedFacts("It's Bob's \"two\nlines\""), (QStringList { "s Bob", "two\nlines" }));
    DraftExpectation rewrite = expected;
    rewrite.requiredQuotedFacts = { " ", "Ana", "1.250 €" };
    EXPECT_EQ(problem(parseDraftAnswer("Ana pays 1.250 €", rewrite)), "passed: Ana pays 1.250 €");
    EXPECT_EQ(
        problem(parseDraftAnswer("ana pays 1.250 €", rewrite)), "The rewrite changed quoted client text: \"Ana\".");
}
