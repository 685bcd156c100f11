#include "Support/DemoWeb.h"

#include "Foundation/Literals.h"
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
        { u"--experimental-strip-types"_s, u"--no-warnings"_s,
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
    ask("PUT", u"/demo/faults"_s, faults);
}

QString DemoWeb::counts()
{
    const QJsonObject counts = QJsonDocument::fromJson(ask("GET", u"/demo/counts"_s)).object();
    return u"%1 %2 %3"_s.arg(counts["accounts"_L1].toInt())
        .arg(counts["chats"_L1].toInt())
        .arg(counts["messages"_L1].toInt());
}

int DemoWeb::requests(const QString& part)
{
    const QString mark = u"/demo/mark"_s;
    const qsizetype before = m_log.count(mark);
    ask("GET", mark); // logged after all earlier requests
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
