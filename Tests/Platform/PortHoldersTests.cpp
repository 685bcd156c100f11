#include "Platform/Linux/Processes/ProcPortHolders.h"
#include "Platform/Linux/Services.h"
#include "Support/TemporaryHome.h"

#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace corvane;

namespace {

QList<qint64> pids(const QList<PortHolder>& holders)
{
    QList<qint64> list;
    for (const PortHolder& holder : holders)
        list.append(holder.pid);
    std::sort(list.begin(), list.end());
    return list;
}

}

TEST(PortHolders, onlyTheProcessesBehindAListeningSocketOfThatPortAreFound)
{
    const TemporaryHome home;
    const QByteArray head
        = "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout "
          "inode\n";
    const auto line = [](const QByteArray& local, const QByteArray& state, const QByteArray& inode) {
        return "   0: " + local + " 00000000:0000 " + state + " 00000000:00000000 00:00000000 00000000  1000        0 "
            + inode + " 1 0000000000000000 100 0 0 10 0\n";
    };
    home.write("proc/net/tcp",
        head + line("0100007F:223D", "0A", "501") + line("0100007F:223D", "01", "502")
            + line("0100007F:223E", "0A", "503") + "torn line\n");
    home.write("proc/net/tcp6", head + line("00000000000000000000000001000000:223D", "0A", "504"));
    const auto process = [&](const QString& pid, const QByteArray& user, const QByteArray& inode) {
        const QString folder = "proc/" + pid;
        home.write(folder + "/status", "Name:\tUid: 7\nUid:\t1\t" + user + "\t1\t1\nGid:\t9\t9\t9\t9\n");
        home.write(folder + "/fd/.keep", {});
        ASSERT_EQ(::symlink("/dev/null", qPrintable(home.path(folder + "/fd/0"))), 0);
        ASSERT_EQ(::symlink(("socket:[" + inode + "]").constData(), qPrintable(home.path(folder + "/fd/3"))), 0);
    };
    process("11", "1000", "501");
    process("12", "0", "504");
    process("13", "1000", "502"); // connected, not listening
    process("14", "1000", "503"); // another port
    process("15", "1000", "50"); // a prefix of an inode
    process("self", "1000", "501"); // not a process ID
    process("16", "1000", "501"); // exits during the scan
    ASSERT_TRUE(QFile::remove(home.path("proc/16/status")));

    process("17", "nobody", "501");
    ProcPortHolders holders(home.path("proc"));
    const QList<PortHolder> found = holders.listeningOn(8765);
    EXPECT_EQ(pids(found), QList<qint64>({ 11, 12 }));
    for (const PortHolder& holder : found)
        EXPECT_EQ(holder.userId, holder.pid == 11 ? 1000U : 0U);
    EXPECT_TRUE(holders.listeningOn(80).isEmpty());
    EXPECT_TRUE(ProcPortHolders(home.path("nothing")).listeningOn(8765).isEmpty());
}

TEST(PortHolders, aRealSocketLeadsToItsProcess)
{
    const auto holders = makePortHolders();
    for (const QHostAddress& address :
        { QHostAddress(QHostAddress::LocalHost), QHostAddress(QHostAddress::LocalHostIPv6) }) {
        QTcpServer server;
        if (!server.listen(address))
            GTEST_SKIP() << "no " << qPrintable(address.toString()) << " here";
        const quint16 port = server.serverPort();
        QTcpSocket client;
        client.connectToHost(address, port);
        ASSERT_TRUE(client.waitForConnected(5000));
        const QList<PortHolder> found = holders->listeningOn(port);
        ASSERT_EQ(pids(found), QList<qint64>({ holders->ownProcessId() }));
        EXPECT_EQ(found.first().userId, holders->ownUserId());
        server.close();
        EXPECT_TRUE(holders->listeningOn(port).isEmpty()) << "a connection is no listener";
    }
}

TEST(PortHolders, terminatingReachesOneProcessAndNeverAGroup)
{
    const auto holders = makePortHolders();
    QProcess child;
    child.start("sleep", { "60" });
    ASSERT_TRUE(child.waitForStarted());
    holders->terminate(0); // would signal this test's own process group
    holders->terminate(-1);
    holders->terminate(child.processId());
    EXPECT_TRUE(child.waitForFinished());
    EXPECT_EQ(child.exitStatus(), QProcess::CrashExit);
}
