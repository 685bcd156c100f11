#include "Engines/EngineManager.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Inbox/OpenPerson.h"
#include "Inbox/Reply.h"
#include "Platform/Linux/Models/LoopbackLanguageModel.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "Support/Await.h"
#include "Support/LoopbackWeb.h"
#include "UI/WindowTest.h"

#include <QJsonArray>

namespace corvane {

namespace {

/// The platform's real model client, connected to a server that the test plays.
struct ModelServerDouble {
    ModelServerDouble() { web.answer(u"/api/version"_s, LoopbackWeb::json({ { "version", "0.5.1" } })); }

    void start() { lists({ QJsonObject { { "name", "small:1b" } } }); }
    void stop() { lists({}); }
    void lists(const QJsonArray& models)
    {
        web.answer(u"/api/tags"_s, LoopbackWeb::json({ { "models", models } }));
        server.refresh();
        EXPECT_TRUE(await([&] { return server.unavailableReason().has_value() == models.isEmpty(); }));
    }

    void says(const QString& text)
    {
        web.answer(u"/api/chat"_s,
            LoopbackWeb::json({ { "done", true }, { "message", QJsonObject { { "content", text } } } }));
    }
    void says(const QJsonObject& object) { says(QString::fromUtf8(compactJson(object))); }
    void saysNothing() { web.answer(u"/api/chat"_s, { {}, true }); }
    void rewrites(const QString& text)
    {
        says(QJsonObject { { "draft", text },
            { "metadata",
                QJsonObject { { "intent", "rewrite_text" }, { "tone", "" }, { "language", "en" }, { "confidence", 1 },
                    { "used_message_labels", QJsonArray() }, { "used_note_ids", QJsonArray() },
                    { "warnings", QJsonArray() }, { "send_side_effect", false } } } });
    }

    LoopbackWeb web;
    VirtualScheduler standing;
    std::unique_ptr<LoopbackLanguageModel> made
        = std::make_unique<LoopbackLanguageModel>(standing, QStringList { web.base() });
    LoopbackLanguageModel& server = *made;
};

class AssistantWindow : protected ModelServerDouble, public WindowTest {
protected:
    AssistantWindow()
        : WindowTest(std::move(made))
    {
        start();
        showInbox();
        person.select(u"ct:WHATSAPP:49171@s.whatsapp.net"_s);
        rest();
    }

    /// Opens the assistant's menu with its shortcut and chooses an entry, or an entry of its submenu.
    void choose(int line, int lineOfSubmenu = 0)
    {
        press(Qt::Key_J, Qt::ControlModifier);
        for (int i = 0; i < line; ++i)
            press(Qt::Key_Down);
        if (lineOfSubmenu > 0)
            press(Qt::Key_Right);
        for (int i = 1; i < lineOfSubmenu; ++i)
            press(Qt::Key_Down);
        press(Qt::Key_Return);
    }

    void waitFor(const QString& objectName)
    {
        EXPECT_TRUE(await([&] { return findItem(objectName) != nullptr; })) << qPrintable(objectName);
        rest();
    }

    QString words(const QString& objectName)
    {
        const QQuickItem* found = item(objectName);
        return found ? found->property("text").toString() : QString();
    }

    bool shows(const QString& text)
    {
        return std::ranges::any_of(
            visibleItems(), [&](const QQuickItem* candidate) { return candidate->property("text") == text; });
    }

    /// Presses F6 until the focus is within the item of that name.
    void walkTo(const QString& objectName)
    {
        for (int pane = 0; pane < 7 && !focusWithin(objectName); ++pane)
            press(Qt::Key_F6);
        EXPECT_TRUE(focusWithin(objectName)) << qPrintable(objectName);
    }

    const QJsonObject answer { { "body", "Yes, the whole morning. Petra Lindqvist comes along." },
        { "intent", "draft_reply" }, { "citations", QJsonArray { "M1" } }, { "warnings", QJsonArray() },
        { "send_side_effect", false } };
};

}

TEST_F(AssistantWindow, aReplyIsDraftedShortenedTranslatedAndTakenWithKeysAlone)
{
    says(answer);
    choose(1);
    waitFor(u"draftPreview.accept"_s);
    EXPECT_EQ(words(u"draftPreview.text"_s), u"Yes, the whole morning. Petra Lindqvist comes along."_s);
    EXPECT_TRUE(shows(u"Composer draft only · small:1b (Ollama)"_s));
    EXPECT_TRUE(shows(u"Not in the local context: Petra Lindqvist"_s));
    EXPECT_EQ(reply.composer()->text(), u""_s) << "a draft is a proposal";
    walkTo(u"draftPreview.accept"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(reply.composer()->text(), answer.value(u"body"_s).toString());
    EXPECT_TRUE(focusWithin(u"composer"_s));
    item(u"draftTaken"_s);

    rewrites(u"Yes, all morning."_s);
    choose(4, 1);
    waitFor(u"draftPreview.replace"_s);
    EXPECT_TRUE(shows(u"Shorten"_s));
    click(u"draftPreview.replace"_s);
    EXPECT_EQ(reply.composer()->text(), u"Yes, all morning."_s);

    rewrites(u"Ja, den ganzen Morgen."_s);
    choose(5, 3);
    waitFor(u"draftPreview.replace"_s);
    EXPECT_TRUE(web.requests()
            .last()
            .json()
            .value(u"messages"_s)
            .toArray()
            .last()[u"content"_s]
            .toString()
            .contains(u"Translate the draft to German"_s));
    click(u"draftPreview.undo"_s);
    EXPECT_EQ(reply.composer()->text(), answer.value(u"body"_s).toString()) << "as before the last one taken";
    EXPECT_TRUE(focusWithin(u"composer"_s));
    click(u"draftPreview.accept"_s);
    EXPECT_EQ(reply.composer()->text(), answer.value(u"body"_s).toString() + u"\n\nJa, den ganzen Morgen."_s);
}

TEST_F(AssistantWindow, aServerThatStallsHoldsNothingUpAndCancelEndsItsWork)
{
    saysNothing();
    choose(1);
    EXPECT_TRUE(await([&] { return web.openConnections() == 1; }));
    rest();
    EXPECT_TRUE(shows(u"Drafting with small:1b (Ollama)"_s));
    press(Qt::Key_R);
    type(u"meanwhile"_s);
    EXPECT_EQ(reply.composer()->text(), u"meanwhile"_s);
    walkTo(u"draftPreview.dismiss"_s);
    EXPECT_EQ(focused()->property("text"), u"Cancel"_s);
    press(Qt::Key_Return);
    EXPECT_TRUE(await([&] { return web.openConnections() == 0; })) << "the request is over";
    rest();
    EXPECT_EQ(findItem(u"draftPreview.dismiss"_s), nullptr);
    EXPECT_TRUE(focusWithin(u"composer"_s));

    choose(2);
    EXPECT_TRUE(await([&] { return web.openConnections() == 1; }));
    rest();
    walkTo(u"summary.dismiss"_s);
    press(Qt::Key_Escape);
    EXPECT_TRUE(await([&] { return web.openConnections() == 0; }));
    EXPECT_EQ(person.selectedId(), u"ct:WHATSAPP:49171@s.whatsapp.net"_s) << "one level, not two";
}

TEST_F(AssistantWindow, aCitationLeadsToItsMessageAndLongTextsLeaveRoomForTheThread)
{
    window.window()->resize(1040, 660);
    says(u"- Situation: **Ana** had a long morning [M1, M2].\n"_s + u"- Key point: it went on [M3].\n"_s.repeated(40));
    choose(2);
    waitFor(u"citation.M1"_s);
    says(QJsonObject(answer));
    choose(1);
    waitFor(u"draftPreview.accept"_s);
    EXPECT_GT(item(u"thread.list"_s)->height(), 80);
    EXPECT_TRUE(words(u"summary.text"_s).startsWith(u"• Situation: <b>Ana</b> had a long morning [<a href=\""_s));

    reply.assistant()->dismiss();
    rest();
    walkTo(u"summary.dismiss"_s);
    while (!focusWithin(u"citation.M1"_s) && focusWithin(u"summary"_s))
        press(Qt::Key_Tab);
    press(Qt::Key_Return);
    EXPECT_EQ(person.thread()->highlightId(), u"wa:msg:m6"_s) << "the oldest of the thread";
}

TEST_F(AssistantWindow, withoutAServerEachPlaceSaysSoAndShowsTheWayOn)
{
    stop();
    choose(1);
    waitFor(u"draftPreview.again"_s);
    EXPECT_TRUE(shows(u"No model and no Codex CLI"_s));
    EXPECT_TRUE(shows(u"Start a model on this computer or install Codex CLI. Current backend: none"_s));
    choose(3);
    EXPECT_EQ(words(u"askLumo.ask"_s), u"no AI backend"_s);
    EXPECT_FALSE(item(u"askLumo.ask"_s)->isEnabled());
    EXPECT_TRUE(shows(u"Grounded in the local thread + notes · no AI backend"_s));

    start();
    rest();
    EXPECT_EQ(words(u"askLumo.ask"_s), u"Ask"_s) << "who came meanwhile is seen at once";
    type(u"What was it about?"_s);
    says(u"A long morning."_s);
    press(Qt::Key_Return, Qt::ControlModifier);
    waitFor(u"askLumo.text"_s);
    EXPECT_EQ(words(u"askLumo.text"_s), u"A long morning."_s);
    press(Qt::Key_Escape);

    says(answer);
    walkTo(u"draftPreview.again"_s);
    press(Qt::Key_Return);
    waitFor(u"draftPreview.accept"_s);
    stop();
    choose(2);
    waitFor(u"summary.settings"_s);
    click(u"summary.settings"_s);
    EXPECT_EQ(words(u"assistant.answers"_s), u"No LumoAI backend available."_s);
}

TEST_F(AssistantWindow, whatIsForgottenInTheSettingsCanBeTakenBack)
{
    engines.db().run(u"INSERT INTO work_memory_entries VALUES "
                     "('e1','business','Closed in August','1'),('e2','business','Ships on Mondays','2'),"
                     "('e3','owner','Signs with Ana','3');"_s);
    settings.setSection(u"assistant"_s);
    shell.openSettings();
    rest();
    EXPECT_EQ(words(u"assistant.answers"_s), u"small:1b (Ollama) answers now."_s);
    EXPECT_TRUE(shows(u"Business"_s) && shows(u"Owner"_s));
    item(u"assistant.forget.e2"_s)->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Return);
    EXPECT_FALSE(shows(u"Ships on Mondays"_s));
    EXPECT_TRUE(focusWithin(u"assistant.keep"_s));
    press(Qt::Key_Return);
    EXPECT_TRUE(shows(u"Ships on Mondays"_s));
}

}
