#include "Foundation/Literals.h"
#include "Shell/ToolCommand.h"

#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Services.h"
#include "Platform/ProcessLauncher.h"
#include "Support/Await.h"
#include "Support/EngineWorld.h"
#include "Support/EnginesNode.h"
#include "Support/Environment.h"
#include "Support/LoopbackWeb.h"
#include "Support/Places.h"
#include "Support/Print.h"

#include <QDir>
#include <QFile>
#include <QTcpServer>
#include <QTextStream>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

int freePort()
{
    QTcpServer probe;
    EXPECT_TRUE(probe.listen(QHostAddress::LocalHost));
    return probe.serverPort();
}

class ToolCommand : public testing::Test {
protected:
    /// "{exit code}: {output}"
    QString tool(const QString& name, const QByteArray& arguments = {})
    {
        QString words;
        QTextStream out(&words);
        QTextStream errors(&words);
        const auto outcome = callTool(
            world.home.paths(), scheduler, { .name = name, .arguments = arguments, .port = port }, out, errors);
        return u"%1: %2"_s.arg(int(outcome)).arg(words);
    }

    EngineSurroundings world;
    SystemScheduler scheduler;
    int port = freePort();
};

}

TEST_F(ToolCommand, reachesTheServerThatTheProgramStarts)
{
    const auto db = world.openDatabase(scheduler);
    const QString engine = world.home.paths().resources + "/engine";
    ASSERT_TRUE(QDir(engine).removeRecursively() && QFile::link(QStringLiteral(CORVANE_SOURCE "/mac/engine"), engine));
    const corvane::Environment environment { { "CORVANE_NODE", enginesNode().toLocal8Bit() },
        { "XDG_DATA_HOME", world.home.path("share").toLocal8Bit() } };
    const auto launcher = makeProcessLauncher(scheduler);
    EngineManager engines(world.on(scheduler, *launcher), world.openDatabase(scheduler));
    engines.startUnifiedMCP(port);
    QString list;
    ASSERT_TRUE(await([&] { return (list = tool({})).startsWith("0: "); }));
    EXPECT_TRUE(list.contains("\ndev_work_list: "));
    EXPECT_EQ(tool("dev_work_list"), "0: {\"rows\":[],\"more\":false}\n");
    EXPECT_TRUE(tool("ops_ask", R"({"question":"Which one?"})").startsWith("0: {\"id\":\"ask:mcp:"));
    EXPECT_EQ(db->scalar("SELECT question FROM ask;"), "Which one?");
    EXPECT_EQ(
        tool("inbox_thread", R"({"conversation":"none"})"), "1: There is no conversation none in this workspace.\n");
    EXPECT_EQ(tool("inbox_list", "[]"), "2: The arguments are not a JSON object.\n");
}

TEST_F(ToolCommand, tellsThatNoServerAnswers)
{
    EXPECT_TRUE(tool("inbox_list").startsWith(u"3: The tool server doesn't answer on port %1 ("_s.arg(port)));
    LoopbackWeb other;
    other.answer("/mcp", LoopbackWeb::json({}, 401));
    port = QUrl(other.base()).port();
    EXPECT_EQ(tool("inbox_list"),
        u"3: The tool server on port %1 doesn't accept the token: it may belong to another profile.\n"_s.arg(port));
    other.answer("/mcp", LoopbackWeb::status(200, "hello"));
    EXPECT_TRUE(
        tool("inbox_list").startsWith(u"3: The program on port %1 is not the tool server (HTTP 200)"_s.arg(port)));
}
