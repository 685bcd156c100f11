#include "Web/WebClient.h"

#include "Foundation/Json.h"
#include "Foundation/Scheduler.h"

#include <QNetworkReply>
#include <QPointer>
#include <memory>
#include <qcoro/qcoronetworkreply.h>

namespace corvane {

namespace {

constexpr auto timeLimit = std::chrono::seconds(60);
constexpr qint64 sizeLimit = 4 * 1024 * 1024;

QNetworkRequest request(const QUrl& url, QNetworkRequest::RedirectPolicy redirects)
{
    QNetworkRequest result(url);
    result.setAttribute(QNetworkRequest::RedirectPolicyAttribute, redirects);
    result.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    result.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Corvane"));
    return result;
}

/// Whether the service gave an answer of its own, as opposed to an answer that never came or broke off.
bool isAnswer(QNetworkReply::NetworkError error)
{
    return error == QNetworkReply::NoError || error == QNetworkReply::InsecureRedirectError
        || error == QNetworkReply::TooManyRedirectsError
        || (error >= QNetworkReply::ContentAccessDenied && error <= QNetworkReply::UnknownContentError)
        || error >= QNetworkReply::InternalServerError;
}

QCoro::Task<Result<WebReply>> answer(QNetworkReply* started, Scheduler* scheduler)
{
    const std::unique_ptr<QNetworkReply, QScopedPointerDeleteLater> reply(started);
    const auto endedBecause = std::make_shared<QString>();
    const auto end = [started, endedBecause](const QString& reason) {
        *endedBecause = reason;
        started->abort();
    };
    started->setReadBufferSize(sizeLimit + 1);
    QObject::connect(started, &QNetworkReply::readyRead, started, [started, end] {
        if (started->bytesAvailable() > sizeLimit)
            end(QStringLiteral("The reply is too large."));
    });
    const std::unique_ptr<Timer> timer
        = scheduler->after(timeLimit, [end] { end(QStringLiteral("The request timed out.")); });
    co_await started;

    if (!endedBecause->isEmpty())
        co_return failure(*endedBecause);
    if (!isAnswer(reply->error()))
        co_return failure(reply->errorString());
    WebReply result;
    result.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    result.body = reply->readAll();
    result.location = QString::fromUtf8(reply->rawHeader("Location"));
    co_return result;
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

QCoro::Task<Result<WebReply>> WebClient::post(QUrl url, QJsonObject body)
{
    QNetworkRequest sent = request(url, QNetworkRequest::SameOriginRedirectPolicy);
    sent.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    return answer(m_network.post(sent, compactJson(body)), &m_scheduler);
}

QCoro::Task<Result<WebReply>> WebClient::getWithoutRedirect(QUrl url, QString bearerToken)
{
    QNetworkRequest sent = request(url, QNetworkRequest::ManualRedirectPolicy);
    sent.setRawHeader("Authorization", "Bearer " + bearerToken.toUtf8());
    return answer(m_network.get(sent), &m_scheduler);
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
    const bool absolute = url.scheme() == QLatin1StringView("http") || url.scheme() == QLatin1StringView("https");
    return absolute && !url.host().isEmpty() ? url : QUrl();
}

}
