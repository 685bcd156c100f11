#include "AI/AskLumo.h"
#include "Foundation/Literals.h"
#include "Support/FakeLanguageModel.h"
#include "Support/Outcome.h"

using namespace corvane;

TEST(LumoAI, theModelOfThePlatformAnswersAndItsFailureIsTheResult)
{
    FakeLumo lumo;
    EXPECT_EQ(lumo.ai.availableName(), "Fake Model");
    EXPECT_EQ(lumo.ai.modelSpec().displayName, "Fake Model");
    lumo.model.willAnswer(u" hello\n"_s);
    EXPECT_EQ((*outcome(lumo.ai.respond("Be kind.", "Greet.")))->value(), " hello\n");
    EXPECT_EQ(lumo.model.asked.last().instructions, "Be kind.");
    EXPECT_EQ(lumo.model.asked.last().prompt, "Greet.");
    lumo.model.willFail(u"out of words"_s);
    EXPECT_EQ((*outcome(lumo.ai.respond({}, {})))->error().message, "out of words");
}

TEST(LumoAI, withoutAnyBackendTheWordsNameBoth)
{
    const QString words = "There is no model on this computer — falling back requires the codex CLI.";
    FakeLumo lumo;
    lumo.model.setUnavailable(u"no server"_s);
    EXPECT_EQ(lumo.ai.availableName(), std::nullopt);
    EXPECT_EQ(lumo.ai.modelSpec().displayName, "LumoAI");
    EXPECT_EQ(lumo.onDevice.unavailableReason(), "no server");
    EXPECT_EQ((*outcome(lumo.ai.respond({}, {})))->error().message, words);
    EXPECT_EQ((*outcome(lumo.ai.respondGenerating({}, {}, {})))->error().message, words);

    lumo.model.setAvailable();
    lumo.machine.running = { 5, 9, 200 };
    EXPECT_EQ(lumo.ai.availableName(), std::nullopt);
    EXPECT_EQ(lumo.onDevice.unavailableReason(), "Requires a newer system.");
    EXPECT_EQ((*outcome(lumo.onDevice.respond({}, {})))->error().message, words);
    lumo.machine.running = { 5, 10, 0 };
    EXPECT_EQ(lumo.ai.availableName(), "Fake Model");
}

TEST(LumoAI, whatIsCancelledEndsAtOnceAndNeverTwice)
{
    FakeLumo lumo;
    const auto late = lumo.model.willAnswerLater();
    const CancelHandle cancel;
    const auto result = outcome(lumo.ai.respond({}, {}, cancel));
    EXPECT_FALSE(result->has_value());
    cancel.cancel();
    cancel.cancel();
    EXPECT_EQ((*result)->error().message, "Cancelled.");
    EXPECT_TRUE(late.hasArrived());
    EXPECT_EQ((*outcome(lumo.ai.respond({}, {}, cancel)))->error().message, "Cancelled.");
    EXPECT_EQ(lumo.model.asked.size(), 1) << "a question that was cancelled before is not asked";
}

TEST(LumoAI, aQuestionFromOutsideStandsAloneAndABlankOneIsNotAsked)
{
    FakeLumo lumo;
    EXPECT_EQ((*outcome(askLumo(lumo.ai, " \n")))->value(), "Ask Lumo needs a question.");
    EXPECT_TRUE(lumo.model.asked.isEmpty());
    QStringList replies;
    const auto note = [&](const Result<QString>& answer) {
        replies.append(answer ? *answer : answer.error().message);
    };
    {
        LumoQuestions questions(lumo.ai);
        lumo.model.willAnswer(u"Seven."_s);
        questions.ask(" How many? ", note);
        EXPECT_EQ(lumo.model.asked.last().prompt, "How many?");
        EXPECT_TRUE(lumo.model.asked.last().instructions.contains("Never send, schedule, purchase"));
        for (int i = 0; i < 4; ++i)
            lumo.model.willAnswerLater();
        for (int i = 0; i < 5; ++i)
            questions.ask("And?", note);
    }
    EXPECT_EQ(replies.join('|'),
        "Seven.|Lumo answers other questions now. Try again.|Cancelled.|Cancelled.|Cancelled.|Cancelled.");
}
