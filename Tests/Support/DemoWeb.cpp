#include "Support/DemoWeb.h"

#include "Support/Await.h"
#include "Support/EnginesNode.h"
#include "Support/Places.h"

#include <QJsonDocument>
#include <QNetworkReply>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/prctl.h>

namespace corvane {

DemoWeb::DemoWeb()
{
    m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    m_process.start(enginesNode(),
        { QStringLiteral("--experimental-strip-types"), QStringLiteral("--no-warnings"),
            QStringLiteral(CORVANE_SOURCE "/demo/web/src/main.ts") });
    EXPECT_TRUE(await([this] { return m_process.canReadLine(); }));
    m_base = QString::fromUtf8(m_process.readLine()).trimmed();
}

DemoWeb::~DemoWeb()
{
    m_process.kill();
    m_process.waitForFinished();
}

void DemoWeb::plan(const QByteArray& faults)
{
    ask("PUT", QStringLiteral("/demo/faults"), faults);
}

QString DemoWeb::counts()
{
    const QJsonObject counts = QJsonDocument::fromJson(ask("GET", QStringLiteral("/demo/counts"))).object();
    return QStringLiteral("%1 %2 %3")
        .arg(counts[QLatin1String("accounts")].toInt())
        .arg(counts[QLatin1String("chats")].toInt())
        .arg(counts[QLatin1String("messages")].toInt());
}

int DemoWeb::requests(const QString& part)
{
    const QString mark = QStringLiteral("/demo/mark");
    const qsizetype before = m_log.count(mark);
    ask("GET", mark); // its line comes behind all others
    EXPECT_TRUE(await([&] {
        m_log += QString::fromUtf8(m_process.readAllStandardError());
        return m_log.count(mark) > before;
    }));
    return int(m_log.split(u'\n').filter(part).size());
}

QByteArray DemoWeb::ask(const QByteArray& method, const QString& path, const QByteArray& body)
{
    const std::unique_ptr<QNetworkReply> reply(
        m_network.sendCustomRequest(QNetworkRequest(QUrl(m_base + path)), method, body));
    EXPECT_TRUE(await([&] { return reply->isFinished(); }));
    return reply->readAll();
}

}
