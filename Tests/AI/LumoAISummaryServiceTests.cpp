#include "AI/LumoAISummaryService.h"

#include "Foundation/Literals.h"
#include "Store/People/CrmRecords.h"
#include "Support/FakeLanguageModel.h"
#include "Support/Outcome.h"
#include "Support/Print.h"

using namespace corvane;

namespace {

class Summaries : public testing::Test {
protected:
    static UnifiedMsgRow message(const QString& id, const QString& body)
    {
        UnifiedMsgRow row;
        row.id = id;
        row.direction = u"IN"_s;
        row.platform = u"WHATSAPP"_s;
        row.body = body;
        row.ts = 1'772'357'400'000;
        return row;
    }

    /// What stands between two headings of the last question.
    QString asked(const QString& from, const QString& to) const
    {
        const QString prompt = lumo.model.asked.last().prompt;
        return prompt.section(from, 1).section(to, 0, 0);
    }

    VirtualScheduler clock;
    FakeLumo lumo { clock };
    std::unique_ptr<LumoAISummaryService> service = std::make_unique<LumoAISummaryService>(lumo.ai, clock);
};

}

TEST_F(Summaries, aThreadIsSummarisedFromItsTextsAlone)
{
    EXPECT_EQ((*outcome(service->summarize("Ana", { message("m0", " \n") })))->error().message,
        "There are no local text messages to summarize.");
    EXPECT_TRUE(lumo.model.asked.isEmpty());
    lumo.model.willAnswer(" Situation: [M1] ");
    const auto summary
        = *outcome(service->summarize("Ana\nRuiz", { message("m1", "14 panels please"), message("m2", "soon") }));
    ASSERT_TRUE(summary->has_value());
    EXPECT_EQ((*summary)->text, " Situation: [M1] ");
    EXPECT_EQ((*summary)->contactName, "Ana\nRuiz");
    EXPECT_EQ((*summary)->model.displayName, "Fake Model");
    EXPECT_EQ((*summary)->generatedAt, clock.nowMs());
    EXPECT_EQ(labels((*summary)->citations), QStringList({ "M1", "M2" }));
    EXPECT_FALSE((*summary)->id.isEmpty());
    const FakeLanguageModel::Question& question = lumo.model.asked.last();
    EXPECT_TRUE(question.instructions.contains("Do not invent facts"));
    EXPECT_TRUE(question.prompt.startsWith("Summarize this local thread with Ana Ruiz.\n\nReturn exactly:\n"));
    EXPECT_TRUE(question.prompt.endsWith("Local messages:\n[M1] IN WHATSAPP 2026-03-01T09:30:00Z: 14 panels please\n"
                                         "[M2] IN WHATSAPP 2026-03-01T09:30:00Z: soon"));
    lumo.model.willFail("out of words");
    EXPECT_EQ((*outcome(service->summarize("Ana", { message("m1", "x") })))->error().message, "out of words");

    const auto late = lumo.model.willAnswerLater();
    const auto orphan = outcome(service->summarize("Ana", { message("m1", "x") }));
    service.reset();
    late.arrive(FakeLanguageModel::text("y"));
    EXPECT_EQ((*orphan)->error().message, "Cancelled.");
}

TEST_F(Summaries, aQuestionCarriesTheNewestNotesAndMessagesThatFit)
{
    lumo.model.willAnswer("Nothing is known.");
    EXPECT_EQ((*outcome(service->ask("Ana", {}, {}, "What now?")))->value(), "Nothing is known.");
    EXPECT_TRUE(lumo.model.asked.last().instructions.startsWith("You are Lumo, "));
    EXPECT_EQ(lumo.model.asked.last().prompt,
        "Contact: Ana\nNotes:\n(none)\n\nRecent thread:\n(no messages)\n\nQuestion: What now?");

    lumo.model.willAnswer("14.");
    const auto few = outcome(service->ask("Ana", { { "n1", "likes\nlinen", 2 }, { "n2", "pays late", 1 } },
        { message("m1", "14 panels please") }, "How many?"));
    EXPECT_EQ((*few)->value(), "14.");
    EXPECT_EQ(asked("Notes:\n", "\n\nRecent"), "- likes linen\n- pays late");
    EXPECT_EQ(asked("thread:\n", "\n\nQuestion"), "[M1] IN WHATSAPP 2026-03-01T09:30:00Z: 14 panels please");

    QList<NoteRow> notes;
    QList<UnifiedMsgRow> messages;
    for (int i = 0; i < 80; ++i) {
        notes.append({ QString::number(i), QString(420, u'n'), 0 });
        messages.append(message(QString::number(i), QString(700, u'm')));
    }
    lumo.model.willAnswer("Much.");
    const auto much = outcome(service->ask("Ana", notes, messages, "What now?"));
    EXPECT_EQ((*much)->value(), "Much.");
    const QString known = asked("Notes:\n", "\n\nRecent");
    EXPECT_EQ(known.count(u'\n') + 1, 37) << "a third of 48,000 characters";
    const QString thread = asked("thread:\n", "\n\nQuestion");
    EXPECT_LE(known.size() + thread.size(), 48'000);
    EXPECT_GT(known.size() + thread.size(), 48'000 - thread.section(u'\n', 0, 0).size() - 1) << "as many as fit";
    EXPECT_FALSE(thread.contains("[M1] "));
    EXPECT_TRUE(thread.section(u'\n', -1).startsWith("[M80] ")) << "the newest stay";
}
