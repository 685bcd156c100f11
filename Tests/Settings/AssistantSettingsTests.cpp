#include "Settings/AssistantSettings.h"

#include "Support/EngineWorld.h"
#include "Support/FakeLanguageModel.h"
#include "Support/Print.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

class Assistant : public testing::Test {
protected:
    QStringList states() const
    {
        QStringList words;
        for (const auto& backend : view.backends())
            words.append(backend.stateText + ": " + backend.detail);
        return words;
    }
    QStringList remembered() const
    {
        QStringList words;
        for (const auto& entry : view.memory())
            words.append(entry.scope + ": " + entry.body);
        return words;
    }

    EngineWorld world;
    FakeLumo lumo;
    AssistantSettings view { lumo, world.defaults, world.engines.db(), world.clock };
};

}

TEST_F(Assistant, whoAnswersIsNamedAndWhyTheOtherDoesNot)
{
    const QString missing
        = "Not found: Codex CLI not found — install the codex CLI or choose a model on this computer.";
    EXPECT_EQ(view.answersText(), "Fake Model answers now.");
    EXPECT_EQ(states(), QStringList({ "Answers: Fake Model", missing }));
    QSignalSpy changes(&view, &AssistantSettings::changed);
    lumo.model.setUnavailable("No model server answers at http://127.0.0.1:11434.");
    EXPECT_GT(changes.size(), 0);
    EXPECT_EQ(view.answersText(), "No LumoAI backend available.");
    EXPECT_EQ(states(), QStringList({ "Not available: No model server answers at http://127.0.0.1:11434.", missing }));
    EXPECT_FALSE(view.available());
    lumo.model.setAvailable();
    EXPECT_TRUE(view.available());
    EXPECT_EQ(view.backends()[0].kind + u' ' + view.backends()[1].kind, "good idle");
}

TEST_F(Assistant, theCodexToolStandsByUntilTheModelOfThisMachineIsGone)
{
    world.home.write("codex", "#!/bin/sh\n");
    const QString codex = world.home.path("codex");
    QFile::setPermissions(codex, QFile::ReadOwner | QFile::ExeOwner);
    AIServices services(lumo.model, lumo.machine, lumo.tools, { codex }, world.clock);
    const AssistantSettings card(services, world.defaults, world.engines.db(), world.clock);
    const auto tool = [&] {
        const AssistantBackend backend = card.backends().last();
        return QStringList { backend.name, backend.stateText, backend.kind, backend.detail };
    };
    EXPECT_EQ(tool(), QStringList({ "Codex CLI", "Stands by", "idle", codex }));
    lumo.model.setUnavailable("No model server answers.");
    EXPECT_EQ(tool(), QStringList({ "Codex CLI", "Answers", "good", codex }));
}

TEST_F(Assistant, theChoiceOfModelAndServerIsKeptAndTakesEffectAtOnce)
{
    EXPECT_EQ(view.modelText(), "First available");
    EXPECT_EQ(view.models(), QStringList("fake:1b"));
    QSignalSpy choices(&view, &AssistantSettings::choiceChanged);
    view.setModel("fake:1b");
    EXPECT_EQ(choices.size(), 1);
    EXPECT_EQ(view.modelText(), "fake:1b");
    view.setServerUrl(" http://127.0.0.1:9999 ");
    EXPECT_EQ(lumo.model.chosen, (SystemLanguageModel::Choice { "http://127.0.0.1:9999", {} }))
        << "another server has other models";
    view.setModel("fake:7b");
    EXPECT_EQ(lumo.model.chosen, (SystemLanguageModel::Choice { "http://127.0.0.1:9999", "fake:7b" }));
    EXPECT_EQ(choices.size(), 3);
    view.setServerUrl(" http://127.0.0.1:9999 ");
    EXPECT_EQ(view.model(), "fake:7b") << "it is the same server";
    EXPECT_EQ(world.defaults.text("nimb.localModelUrl"), "http://127.0.0.1:9999");
    EXPECT_EQ(world.defaults.text("nimb.localModel"), "fake:7b");
    view.setServerUrl({});
    EXPECT_EQ(lumo.model.chosen, SystemLanguageModel::Choice());
    EXPECT_EQ(world.defaults.text("nimb.localModelUrl"), std::nullopt);
}

TEST_F(Assistant, aModelThatRunsElsewhereIsSaidAndUsedOnceAllowed)
{
    EXPECT_EQ(view.elsewhereText(), "");
    lumo.model.elsewhere = true;
    EXPECT_EQ(view.elsewhereText(),
        "This model runs elsewhere: the messages and notes that fake:1b reads leave this machine.");
    EXPECT_FALSE(view.elsewhereAllowed());
    QSignalSpy changes(&view, &AssistantSettings::changed);
    view.allowElsewhere(true);
    EXPECT_EQ(changes.size(), 1);
    EXPECT_EQ(lumo.model.chosen.allowedElsewhere, "fake:1b");
    EXPECT_TRUE(view.elsewhereAllowed());
    view.allowElsewhere(false);
    EXPECT_EQ(lumo.model.chosen, SystemLanguageModel::Choice());
}

TEST_F(Assistant, theGateIsReadAgainWhileSomeoneLooks)
{
    lumo.machine.now.physicalMemoryBytes = Q_UINT64_C(1) << 34;
    view.setVisible(true);
    EXPECT_TRUE(view.gateIsOpen());
    EXPECT_EQ(view.gateText(), "Speech recognition on this computer is supported.");
    const auto facts = [this] {
        QStringList values;
        for (const MachineFact& fact : view.gateFacts())
            values.append(fact.value);
        return values.join('|');
    };
    EXPECT_EQ(facts().section('|', 1), "Off|Normal|16.0 GiB|Not known|6.1.0");
    lumo.machine.now.lowPowerMode = true;
    lumo.machine.now.thermal = ThermalState::Serious;
    lumo.machine.now.freeDiskBytes = 1 << 20;
    world.clock.advance(seconds(5));
    EXPECT_EQ(facts().section('|', 1), "On|Hot|16.0 GiB|1.0 MiB|6.1.0");
    lumo.machine.now.lowPowerMode = false;
    lumo.machine.now.thermal = ThermalState::Nominal;
    lumo.machine.now.powerSourceStates = { "Battery Power" };
    world.clock.advance(seconds(5));
    EXPECT_EQ(view.gateText(), "This computer is on battery. Connect power before running local transcription.");
    EXPECT_EQ(view.gateFacts()[0].value, "Battery");
    lumo.machine.now.powerSourceStates = { "AC Power" };
    lumo.machine.now.thermal = ThermalState::Fair;
    world.clock.advance(seconds(5));
    EXPECT_EQ(facts().section('|', 0, 2), "Mains|Off|Warm");
    lumo.machine.now.thermal = ThermalState::Critical;
    QSignalSpy memories(&view, &AssistantSettings::memoryChanged);
    view.setVisible(true);
    EXPECT_EQ(memories.size(), 0) << "it is visible already";
    world.clock.advance(seconds(5));
    EXPECT_EQ(facts().section('|', 2, 2), "Too hot");
    EXPECT_FALSE(view.gateIsOpen());
    lumo.machine.now.thermal = ThermalState::Nominal;
    lumo.machine.now.powerSourceStates = { "Battery Power" };
    world.clock.advance(seconds(5));
    view.setVisible(false);
    lumo.machine.now.powerSourceStates.clear();
    world.clock.advance(seconds(60));
    EXPECT_FALSE(view.gateIsOpen());
}

TEST_F(Assistant, tryingShowsHowFarItIsAndCanBeCancelled)
{
    const auto first = lumo.model.willAnswerLater();
    view.tryIt();
    view.tryIt();
    EXPECT_TRUE(view.trying());
    EXPECT_EQ(view.tryText(), "Asking Fake Model… 0 s");
    world.clock.advance(seconds(12));
    EXPECT_EQ(view.tryText(), "Asking Fake Model… 12 s");
    first.arrive(FakeLanguageModel::text(" Hello,\nI write drafts. "));
    EXPECT_EQ(view.tryKind(), "good");
    EXPECT_EQ(view.tryText(), "Hello, I write drafts.");

    lumo.model.willFail("The model server at http://127.0.0.1:1 gave no answer: Connection closed");
    view.tryIt();
    EXPECT_EQ(view.tryKind(), "bad");
    EXPECT_EQ(view.tryText(), "The model server at http://127.0.0.1:1 gave no answer: Connection closed");
    EXPECT_FALSE(view.trying());
    QSignalSpy tries(&view, &AssistantSettings::tryChanged);
    view.cancelTry();
    world.clock.advance(seconds(2));
    EXPECT_EQ(tries.size(), 0) << "nothing runs any more";
    EXPECT_EQ(view.tryKind(), "bad");

    const auto third = lumo.model.willAnswerLater();
    view.tryIt();
    EXPECT_EQ(view.tryKind(), "busy");
    view.cancelTry();
    EXPECT_TRUE(third.hasArrived()) << "the request has ended";
    EXPECT_EQ(view.tryKind(), "idle");
    EXPECT_EQ(view.tryText(), "Cancelled.");
    world.clock.advance(seconds(5));
    EXPECT_EQ(view.tryText(), "Cancelled.");
}

TEST_F(Assistant, whatIsRememberedStandsByScopeAndCanBeForgottenAndKept)
{
    LocalDB& db = world.engines.db();
    ASSERT_TRUE(db.run("INSERT INTO contact(id, display_name) VALUES('c1','Marta Vidal');", {}));
    const QStringList rows[] { { "m1", "contact:c1", "likes\nlinen" }, { "m2", "owner", "signs as Ana" },
        { "m3", "business", "closed on Mondays" }, { "m4", "contact:gone", "?" } };
    for (const QStringList& row : rows)
        ASSERT_TRUE(db.run("INSERT INTO work_memory_entries(id, scope, body, created_at) VALUES(?,?,?,'2026');",
            { row[0], row[1], row[2] }));
    EXPECT_EQ(view.memoryEmptyText(), "Nothing yet — agents save durable facts here as you work.");
    view.setVisible(true);
    const QStringList all { "Business: closed on Mondays", "Owner: signs as Ana", "contact:gone: ?",
        "Marta Vidal: likes linen" };
    EXPECT_EQ(remembered(), all);
    view.forget("m3");
    EXPECT_EQ(remembered(), all.sliced(1));
    EXPECT_EQ(view.forgottenText(), "Forgotten: closed on Mondays");
    EXPECT_EQ(view.memory().first().heading, "Owner");
    view.keepForgotten();
    EXPECT_EQ(remembered(), all);
    EXPECT_EQ(view.forgottenText(), "");
    view.forget("m3");
    view.setVisible(false);
    view.setVisible(true);
    EXPECT_EQ(view.forgottenText(), "") << "whoever comes back has meant it";
    view.keepForgotten();
    EXPECT_EQ(remembered(), all.sliced(1));
    db.exec("INSERT INTO work_memory_entries(id, scope, body, created_at) VALUES('m5','owner','has a cat','2027');");
    QSignalSpy memories(&view, &AssistantSettings::memoryChanged);
    view.forget("no such");
    EXPECT_EQ(memories.size(), 1);
    EXPECT_EQ(view.forgottenText(), "");
    EXPECT_EQ(remembered().at(1), "Owner: has a cat");
    EXPECT_EQ(view.memory().at(1).heading, "") << "a scope is named once";
}
