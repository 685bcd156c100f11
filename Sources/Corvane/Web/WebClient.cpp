#include "Web/WebClient.h"

#include "Foundation/Json.h"
#include "Foundation/Scheduler.h"

#include <QHostAddress>
#include <QNetworkReply>
#include <QPointer>

namespace corvane {

namespace {

constexpr HttpLimits limits { std::chrono::seconds(60), 4 * 1024 * 1024 };

QNetworkRequest request(const QUrl& url, QNetworkRequest::RedirectPolicy redirects)
{
    QNetworkRequest result(url);
    result.setAttribute(QNetworkRequest::RedirectPolicyAttribute, redirects);
    makePlain(result);
    return result;
}

bool isLoopback(const QString& host)
{
    return host == QLatin1StringView("localhost") || QHostAddress(host).isLoopback();
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

QCoro::Task<Result<HttpReply>> WebClient::post(QUrl url, QJsonObject body)
{
    QNetworkRequest sent = request(url, QNetworkRequest::SameOriginRedirectPolicy);
    sent.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    return awaitReply(m_network.post(sent, compactJson(body)), &m_scheduler, limits);
}

QCoro::Task<Result<HttpReply>> WebClient::getWithoutRedirect(QUrl url, QString bearerToken)
{
    QNetworkRequest sent = request(url, QNetworkRequest::ManualRedirectPolicy);
    sent.setRawHeader("Authorization", "Bearer " + bearerToken.toUtf8());
    return awaitReply(m_network.get(sent), &m_scheduler, limits);
}

void WebClient::abortAll()
{
    const auto replies = m_network.findChildren<QNetworkReply*>();
    for (const QPointer<QNetworkReply> reply : replies) {
        if (reply && reply->isRunning())
            reply->abort();
    }
}

QUrl webUrl(const QString& base, const QString& path)
{
    QString stem = base;
    while (stem.endsWith(u'/'))
        stem.chop(1);
    const QUrl url(stem + path, QUrl::StrictMode);
    const bool safe = url.scheme() == QLatin1StringView("https")
        || (url.scheme() == QLatin1StringView("http") && isLoopback(url.host()));
    return safe && !url.host().isEmpty() ? url : QUrl();
}

}
