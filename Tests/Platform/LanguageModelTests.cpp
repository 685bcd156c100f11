#include "Foundation/Json.h"
#include "Platform/Linux/Models/LoopbackLanguageModel.h"
#include "Support/Await.h"
#include "Support/LoopbackWeb.h"
#include "Support/Outcome.h"
#include "Support/VirtualScheduler.h"

#include <QJsonArray>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

const QString version = "/api/version";
const QString tags = "/api/tags";
const QString chat = "/api/chat";
const QString list = "/v1/models";
const QString completions = "/v1/chat/completions";

const QJsonObject schema { { "type", "object" }, { "required", QJsonArray { "text" } },
    { "additionalProperties", false },
    { "properties",
        QJsonObject { { "text", QJsonObject { { "type", "string" }, { "minLength", 1 } } },
            { "facts",
                QJsonObject { { "type", "array" }, { "maxItems", 2 },
                    { "items", QJsonObject { { "type", "string" }, { "enum", QJsonArray { "M1", "M2" } } } } } },
            { "score", QJsonObject { { "type", "integer" }, { "minimum", 0 }, { "maximum", 10 } } } } } };

QJsonObject ollamaModels(const QStringList& names)
{
    QJsonArray models;
    for (const QString& name : names)
        models.append(QJsonObject { { "name", name } });
    return { { "models", models } };
}

QJsonObject ollamaAnswer(const QString& content, const QString& reason = "stop")
{
    return { { "message", QJsonObject { { "role", "assistant" }, { "content", content } } }, { "done", true },
        { "done_reason", reason } };
}

class LanguageModel : public testing::Test {
protected:
    void serveOllama(const QStringList& models)
    {
        web.answer(version, LoopbackWeb::json({ { "version", "0.5.7" } }));
        web.answer(tags, LoopbackWeb::json(ollamaModels(models)));
    }

    void serveLlama(const LoopbackWeb::Answer& models)
    {
        web.answer(version, LoopbackWeb::status(404));
        web.answer(list, models);
    }

    /// Refreshes the model and returns why it is unavailable; empty if it is available.
    QString look()
    {
        bool done = false;
        model.refresh().then([&] { done = true; });
        EXPECT_TRUE(await([&] { return done; }));
        return model.unavailableReason().value_or(QString());
    }

    /// Waits for the task and returns its result. With `waitSeconds`, the task must time out after exactly that long.
    template <typename Value> Result<Value> result(QCoro::Task<Result<Value>> task, qint64 waitSeconds = 0)
    {
        const qsizetype before = web.requests().size();
        const auto ended = outcome(std::move(task));
        if (waitSeconds > 0) {
            EXPECT_TRUE(await([&] { return web.requests().size() > before; }));
            clock.advance(seconds(waitSeconds - 1));
            EXPECT_FALSE(ended->has_value());
            clock.advance(seconds(1));
        }
        EXPECT_TRUE(await([&] { return ended->has_value(); }));
        return ended->value_or(failure("it never ended"));
    }

    QString at(QString words) const { return words.replace("%1", web.base()); }

    VirtualScheduler clock;
    LoopbackWeb web;
    LoopbackLanguageModel model { clock, { web.base() } };
};

}

TEST_F(LanguageModel, ollamaIsAskedInItsOwnWay)
{
    EXPECT_EQ(model.unavailableReason(), "The model server has not answered yet.");
    serveOllama({ "llama3.2:3b", "qwen3:8b" });
    QSignalSpy changes(&model, &SystemLanguageModel::availabilityChanged);
    EXPECT_EQ(look(), "");
    EXPECT_EQ(look(), "");
    EXPECT_EQ(changes.size(), 1) << "no news, no signal";
    EXPECT_EQ(model.displayName(), "llama3.2:3b (Ollama)");
    EXPECT_EQ(model.models(), QStringList({ "llama3.2:3b", "qwen3:8b" }));

    web.answer(chat, LoopbackWeb::json(ollamaAnswer(" Hello.\n")));
    EXPECT_EQ(result(model.respond("Be kind.", "Greet.", {})).value(), " Hello.\n");
    const QJsonObject body = web.requests().last().json();
    EXPECT_EQ(compactJson(body),
        R"({"messages":[{"content":"Be kind.","role":"system"},{"content":"Greet.","role":"user"}],)"
        R"("model":"llama3.2:3b","options":{"num_ctx":8192},"stream":false})");

    model.choose({ web.base() + u'/', "qwen3:8b" });
    web.answer(chat, LoopbackWeb::json(ollamaAnswer(R"({"text":"a","facts":["M1"],"score":10})")));
    EXPECT_EQ(look(), "");
    EXPECT_EQ(result(model.respondGenerating("i", QString(100'000, u'x'), schema, {})).value()["text"].toString(), "a");
    const QJsonObject asked = web.requests().last().json();
    EXPECT_EQ(asked["model"].toString(), "qwen3:8b");
    EXPECT_EQ(asked["format"].toObject(), schema);
    EXPECT_EQ(asked["options"]["num_ctx"].toInt(), 65536) << "a long prompt needs more room than the usual";
    const QByteArray told = asked["messages"][0]["content"].toString().toUtf8();
    EXPECT_EQ(jsonObject(told.sliced(told.indexOf('{'))), schema);
    for (const QByteArray& text : { told, web.requests().last().body })
        EXPECT_LT(text.indexOf("\"text\":{"), text.indexOf("\"facts\":{"))
            << "what is required comes first, in its order";
}

TEST_F(LanguageModel, aLlamaServerIsAskedInItsOwnWay)
{
    serveLlama(LoopbackWeb::json({ { "data", QJsonArray { QJsonObject { { "id", "/models/qwen.gguf" } } } } }));
    EXPECT_EQ(look(), "");
    EXPECT_EQ(model.displayName(), "qwen.gguf (llama.cpp)");
    const QJsonObject message { { "content", R"({"text":"b"})" } };
    web.answer(completions,
        LoopbackWeb::json(
            { { "choices", QJsonArray { QJsonObject { { "finish_reason", "stop" }, { "message", message } } } } }));
    EXPECT_EQ(result(model.respondGenerating("i", "p", schema, {})).value()["text"].toString(), "b");
    const QJsonObject format = web.requests().last().json()["response_format"].toObject();
    EXPECT_EQ(format["json_schema"]["schema"].toObject(), schema);
    EXPECT_EQ(result(model.respond("i", "p", {})).value(), R"({"text":"b"})");
    EXPECT_FALSE(web.requests().last().json().contains("response_format"));
}

TEST_F(LanguageModel, aModelThatRunsElsewhereAnswersOnlyOnceThatIsAllowed)
{
    QJsonObject models = ollamaModels({ "big:120b-cloud", "far", "near" });
    QJsonArray entries = models["models"].toArray();
    QJsonObject far = entries[1].toObject();
    far["remote_host"] = "https://models.example";
    entries[1] = far;
    web.answer(version, LoopbackWeb::json({ { "version", "0.12.0" } }));
    web.answer(tags, LoopbackWeb::json({ { "models", entries } }));
    EXPECT_EQ(look(), "");
    EXPECT_EQ(model.modelName(), "near") << "without a choice the texts stay here";
    EXPECT_FALSE(model.runsElsewhere());
    for (const QString& name : { "far", "big:120b-cloud" }) {
        model.choose({ {}, name });
        EXPECT_TRUE(look().startsWith("“" + name + "” runs elsewhere:"));
        EXPECT_TRUE(model.runsElsewhere());
        EXPECT_FALSE(result(model.respond("i", "p", {})).has_value());
        model.choose({ {}, name, name });
        EXPECT_EQ(look(), "");
    }
    EXPECT_FALSE(web.paths().contains(chat));
}

TEST_F(LanguageModel, aServerThatCannotAnswerIsUnavailableForAStatedReason)
{
    struct Case {
        LoopbackWeb::Answer models;
        QString words;
    };
    const QJsonObject loading { { "error", QJsonObject { { "message", "Loading\nmodel" } } } };
    const Case cases[] {
        { LoopbackWeb::json(loading, 503), "The model server at %1 refused: Loading model (HTTP 503)" },
        { LoopbackWeb::status(200, "<html>"), "The model server at %1 gave an unreadable answer." },
        { LoopbackWeb::json({ { "hello", 1 } }), "The model server at %1 is not a supported model server." },
        { LoopbackWeb::json({ { "data", QJsonArray() } }), "The model server at %1 has no model yet." },
        { LoopbackWeb::redirect("http://example.com/v1/models"), "The model server at %1 refused: (HTTP 302)" },
        { { "not HTTP at all\r\n\r\n" }, "No model server answers at %1." },
    };
    for (const Case& one : cases) {
        serveLlama(one.models);
        EXPECT_EQ(look(), at(one.words));
        EXPECT_EQ(result(model.respond("i", "p", {})).error().message, at(one.words));
    }

    for (const QString& elsewhere : { "http://example.com:11434", "https://127.0.0.1", "http://u:p@127.0.0.1",
             "http://0.0.0.0:8080", "http://127.0.0.1.example.com", "11434", "file:///etc/passwd", "http://[::2]/" }) {
        model.choose({ elsewhere, {} });
        EXPECT_EQ(
            look(), "“" + elsewhere + "” is no model server on this machine. Write http://127.0.0.1 and its port.");
    }
    serveOllama({ "a" });
    model.choose({ QString(web.base()).replace("127.0.0.1", "localhost"), "b" });
    EXPECT_EQ(look(), at("The model server at %1 has no model “b”."));

    LoopbackLanguageModel two(clock, { "http://127.0.0.1:1", web.base() });
    two.refresh();
    ASSERT_TRUE(await([&] { return !two.unavailableReason(); })) << "the second of the usual servers is found";

    // A server that accepts connections and never answers.
    web.answer(version, { {}, true });
    model.choose({});
    const qsizetype before = web.requests().size();
    ASSERT_TRUE(await([&] { return web.requests().size() > before; }));
    clock.advance(seconds(2));
    ASSERT_TRUE(await([&] { return model.unavailableReason() == at("No model server answers at %1."); }));
    serveOllama({ "a" });
    clock.advance(seconds(28));
    EXPECT_TRUE(await([&] { return !model.unavailableReason(); })) << "it is looked at again without being asked";
}

TEST_F(LanguageModel, aServerThatMisbehavesEndsInWords)
{
    serveOllama({ "a" });
    ASSERT_EQ(look(), "");
    struct Case {
        LoopbackWeb::Answer answer;
        QString words;
    };
    const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 400\r\n\r\n";
    const QString noAnswer = "The model server at %1 gave no answer: ";
    const QString unfit = "The model's answer does not match the request: answer";
    const Case cases[] {
        { { {}, true }, noAnswer + "The request timed out." },
        { { head + "{\"mess", true }, noAnswer + "The request timed out." },
        { { head + "{\"mess", true, true }, noAnswer + "The request timed out." },
        { { head + "{\"mess" }, noAnswer + "Connection closed" },
        { LoopbackWeb::status(200, QByteArray(5 * 1024 * 1024, ' ')), noAnswer + "The reply is too large." },
        { LoopbackWeb::redirect("http://example.com/"), "The model server at %1 refused: (HTTP 302)" },
        { LoopbackWeb::json({ { "error", "model 'a' not found" } }, 404),
            "The model server at %1 refused: model 'a' not found (HTTP 404)" },
        { LoopbackWeb::status(200, "{\"message\":"), "The model server at %1 gave an unreadable answer." },
        { LoopbackWeb::json({ { "message", "hello" } }), "The model server at %1 gave an answer without a text." },
        { LoopbackWeb::json(ollamaAnswer("{\"text\":\"a", "length")),
            "The model server at %1 ran out of room before the answer was complete." },
        { LoopbackWeb::json(ollamaAnswer("Sure! {\"text\":\"a\"}")), "The model's answer is not a JSON object." },
        { LoopbackWeb::json(ollamaAnswer("{}")), unfit + " has no “text”." },
        { LoopbackWeb::json(ollamaAnswer(R"({"text":7})")), unfit + ".text is of the type number." },
        { LoopbackWeb::json(ollamaAnswer(R"({"text":""})")), unfit + ".text breaks its minLength of 1." },
        { LoopbackWeb::json(ollamaAnswer(R"({"text":"a","send":true})")),
            unfit + " has “send”, which nobody asked for." },
        { LoopbackWeb::json(ollamaAnswer(R"({"text":"a","facts":["M1","M9"]})")),
            unfit + ".facts[1] is none of the values that it may have." },
        { LoopbackWeb::json(ollamaAnswer(R"({"text":"a","facts":["M1","M2","M1"]})")),
            unfit + ".facts breaks its maxItems of 2." },
        { LoopbackWeb::json(ollamaAnswer(R"({"text":"a","score":2.5})")), unfit + ".score is of the type number." },
        { LoopbackWeb::json(ollamaAnswer(R"({"text":"a","score":11})")), unfit + ".score breaks its maximum of 10." },
    };
    for (const Case& one : cases) {
        ASSERT_EQ(look(), "");
        web.answer(chat, one.answer);
        const auto end = result(model.respondGenerating("i", "p", schema, {}), one.answer.hang ? 600 : 0);
        EXPECT_EQ(end.error().message, at(one.words));
    }
    web.answer(chat, LoopbackWeb::json(ollamaAnswer(R"({"text":"a"})")));
    EXPECT_EQ(result(model.respondGenerating("i", "p", { { "pattern", "^a" } }, {})).error().message,
        unfit + " has the rule “pattern”, which is not checked here.");
}

TEST_F(LanguageModel, cancellingEndsTheRequestAndSoDoesTheEndOfTheProgram)
{
    serveOllama({ "a" });
    ASSERT_EQ(look(), "");
    web.answer(chat, { "HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n{", true, true });
    const CancelHandle cancel;
    const auto first = outcome(model.respond("i", "p", cancel));
    ASSERT_TRUE(await([&] { return web.paths().contains(chat) && web.openConnections() > 0; }));
    cancel.cancel();
    EXPECT_EQ((*first)->error().message, "Cancelled.");
    EXPECT_TRUE(await([&] { return web.openConnections() == 0; }));
    EXPECT_EQ(result(model.respond("i", "p", cancel)).error().message, "Cancelled.");

    auto other = std::make_unique<LoopbackLanguageModel>(clock, QStringList(web.base()));
    other->refresh();
    ASSERT_TRUE(await([&] { return !other->unavailableReason(); }));
    const auto second = outcome(other->respond("i", "p", {}));
    other->refresh();
    other.reset();
    EXPECT_EQ((*second)->error().message, "Cancelled.");
}
