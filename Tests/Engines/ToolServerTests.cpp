#include "EngineTest.h"
#include "Engines/ToolServer.h"
#include "Foundation/Literals.h"

#include "Support/Await.h"

using namespace corvane;

namespace {

class ToolServerTest : public EngineTest {
protected:
    /// Waits until the port has been checked and the result is back.
    void startAndLook(int port = 8765)
    {
        const auto looks = world.ports.askedPorts().size();
        world.engines.startUnifiedMCP(port);
        EXPECT_TRUE(await([&] { return world.ports.askedPorts().size() > looks; }));
        bool home = false;
        world.background.run<bool>([] { return true; }, [&](bool) { home = true; });
        EXPECT_TRUE(await([&] { return home; }));
    }

    qsizetype launches() const { return world.launcher.children.size(); }
    void advance(qint64 milliseconds) { world.clock.advance(Milliseconds(milliseconds)); }
};

}

TEST_F(ToolServerTest, aFreePortIsTakenAtOnceAndASecondStartIsNone)
{
    int changes = 0;
    QObject::connect(&world.engines, &EngineManager::mcpRunningChanged, &world.engines, [&] { ++changes; });
    world.launcher.expect(FakeLauncher::stays());
    world.engines.startUnifiedMCP(8801);
    world.engines.startUnifiedMCP(8801);
    EXPECT_TRUE(await([&] { return world.engines.mcpRunning(); }));
    world.engines.startUnifiedMCP(8801);
    EXPECT_EQ(world.ports.askedPorts(), QList<quint16> { 8801 });
    EXPECT_EQ(world.engines.mcpURL(), u"http://127.0.0.1:8801/mcp"_s);
    EXPECT_EQ(world.launcher.last().spec.environment.value(u"NIMB_MCP_PORT"_s), u"8801"_s);
    EXPECT_EQ(changes, 1);
}

TEST_F(ToolServerTest, anOrphanIsClearedOffThePortButNeitherThisProgramNorAnotherUsers)
{
    world.ports.setHolders({ { 42, 500 }, { 77, 0 } });
    world.launcher.expect(FakeLauncher::stays());
    startAndLook();
    EXPECT_TRUE(world.ports.terminated().isEmpty());
    EXPECT_EQ(launches(), 1) << "nobody was asked to end, nothing is waited for";
    world.engines.stopUnifiedMCP();

    world.ports.setHolders({ { 42, 500 }, { 77, 0 }, { 99, 500 } });
    startAndLook();
    EXPECT_EQ(world.ports.terminated(), QList<qint64> { 99 });
    advance(299);
    EXPECT_EQ(launches(), 1);
    EXPECT_FALSE(world.engines.mcpRunning());
    world.launcher.expect(FakeLauncher::stays());
    advance(1);
    EXPECT_TRUE(world.engines.mcpRunning());
}

TEST_F(ToolServerTest, aServerThatDiesComesBackEveryTwoSecondsWithoutEnd)
{
    world.launcher.expect(FakeLauncher::stays(), 9);
    startAndLook();
    for (int i = 1; i < 9; ++i) {
        world.launcher.last().exit(1);
        EXPECT_FALSE(world.engines.mcpRunning());
        EXPECT_TRUE(world.engines.mcpProblem().startsWith(u"The engine's program is missing: "_s));
        advance(1999);
        EXPECT_EQ(world.ports.askedPorts().size(), i);
        advance(1);
        EXPECT_TRUE(await([&] { return launches() == i + 1; }));
    }
    EXPECT_NE(world.engines.mcpProblem(), u""_s) << "a start proves nothing yet";
    advance(10'000);
    EXPECT_EQ(world.engines.mcpProblem(), u""_s);
}

TEST_F(ToolServerTest, aStoppedServerStaysDownAndItsLateExitTouchesNoSuccessor)
{
    world.launcher.expect(FakeLauncher::stays(), 2);
    startAndLook();
    FakeChild& first = world.launcher.last();
    world.engines.stopUnifiedMCP();
    EXPECT_TRUE(first.terminated);
    EXPECT_FALSE(world.engines.mcpRunning());
    startAndLook();
    first.exit(-15);
    EXPECT_TRUE(world.engines.mcpRunning());
    advance(3'600'000);

    world.engines.stopAll();
    world.launcher.last().exit(-15);
    advance(3'600'000);
    EXPECT_EQ(launches(), 2);
    EXPECT_FALSE(world.engines.mcpRunning());
}

TEST_F(ToolServerTest, anotherPortComesFromTheEnvironmentAndMustBeOne)
{
    for (const auto& [text, port] : { std::pair("8799", 8799), std::pair("70000", 8765), std::pair("", 8765) }) {
        qputenv("NIMB_MCP_PORT", text);
        EXPECT_EQ(toolServerPort(), port) << text;
    }
    qunsetenv("NIMB_MCP_PORT");
}

TEST_F(ToolServerTest, aStopDuringTheLookAtThePortStartsNothingUnlessAStartFollows)
{
    world.ports.setHolders({ { 99, 500 } });
    startAndLook();
    world.engines.stopUnifiedMCP();
    advance(1000);
    EXPECT_EQ(launches(), 0);

    startAndLook();
    world.engines.stopUnifiedMCP();
    world.engines.startUnifiedMCP(8765);
    world.launcher.expect(FakeLauncher::stays());
    advance(1000);
    EXPECT_EQ(launches(), 1);
    EXPECT_TRUE(world.engines.mcpRunning());
}

TEST_F(ToolServerTest, aFailedLaunchIsLoggedAndNotRetried)
{
    world.launcher.expect(FakeLauncher::fails(u"no node"_s));
    startAndLook();
    EXPECT_TRUE(logs.contains(u"unified MCP failed: no node"_s));
    EXPECT_EQ(world.engines.mcpProblem(), u"no node"_s);
    advance(3'600'000);
    EXPECT_FALSE(world.engines.mcpRunning());

    world.launcher.expect(FakeLauncher::stays());
    startAndLook();
    EXPECT_TRUE(world.engines.mcpRunning());
}
