#include "Web/WebClient.h"

#include "Foundation/Literals.h"
#include "Foundation/Scheduler.h"
#include "Foundation/UserDefaults.h"

#include <QHostAddress>
#include <QNetworkReply>
#include <QPointer>

namespace corvane {

namespace {

constexpr HttpLimits limits { std::chrono::seconds(60), 4 * 1024 * 1024 };

QNetworkRequest request(const QUrl& url, const QString& bearerToken,
    QNetworkRequest::RedirectPolicy redirects = QNetworkRequest::SameOriginRedirectPolicy)
{
    QNetworkRequest result(url);
    result.setAttribute(QNetworkRequest::RedirectPolicyAttribute, redirects);
    if (!bearerToken.isEmpty())
        result.setRawHeader("Authorization", "Bearer " + bearerToken.toUtf8());
    makePlain(result);
    return result;
}

bool isLoopback(const QString& host)
{
    return host == "localhost"_L1 || QHostAddress(host).isLoopback();
}

}

WebClient::WebClient(Scheduler& scheduler)
    : m_scheduler(scheduler)
{
}

WebClient::~WebClient()
{
    abortAll();
}

QCoro::Task<Result<HttpReply>> WebClient::post(QUrl url, QByteArray body, QString bearerToken, CancelHandle cancel)
{
    QNetworkRequest sent = request(url, bearerToken);
    sent.setHeader(QNetworkRequest::ContentTypeHeader, u"application/json"_s);
    return awaitReply(m_network.post(sent, body), &m_scheduler, limits, cancel);
}

QCoro::Task<Result<HttpReply>> WebClient::get(QUrl url, QString bearerToken, CancelHandle cancel)
{
    QNetworkRequest sent = request(url, bearerToken);
    sent.setRawHeader("Accept", "application/json");
    return awaitReply(m_network.get(sent), &m_scheduler, limits, cancel);
}

QCoro::Task<Result<HttpReply>> WebClient::getWithoutRedirect(QUrl url, QString bearerToken)
{
    return awaitReply(
        m_network.get(request(url, bearerToken, QNetworkRequest::ManualRedirectPolicy)), &m_scheduler, limits);
}

void WebClient::abortAll()
{
    const auto replies = m_network.findChildren<QNetworkReply*>();
    for (const QPointer<QNetworkReply> reply : replies) {
        if (reply && reply->isRunning())
            reply->abort();
    }
}

QString webBase(const UserDefaults& defaults)
{
    return defaults.text(u"nimb.apiBaseUrl"_s).value_or(QStringLiteral(CORVANE_API_BASE_URL));
}

QUrl webUrl(const QString& base, const QString& path)
{
    QString stem = base;
    while (stem.endsWith(u'/'))
        stem.chop(1);
    const QUrl url(stem + path, QUrl::StrictMode);
    const bool safe = url.scheme() == "https"_L1 || (url.scheme() == "http"_L1 && isLoopback(url.host()));
    return safe && !url.host().isEmpty() ? url : QUrl();
}

}
