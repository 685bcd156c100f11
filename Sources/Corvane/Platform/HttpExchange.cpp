#include "Platform/HttpExchange.h"

#include "Foundation/Literals.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <memory>
#include <qcoro/qcoronetworkreply.h>

namespace corvane {

namespace {

/// Whether the service answered completely, with whatever status.
bool isAnswer(QNetworkReply::NetworkError error)
{
    return error == QNetworkReply::NoError || error == QNetworkReply::InsecureRedirectError
        || error == QNetworkReply::TooManyRedirectsError
        || error == QNetworkReply::ProtocolInvalidOperationError // the status 400
        || (error >= QNetworkReply::ContentAccessDenied && error <= QNetworkReply::UnknownContentError)
        || error >= QNetworkReply::InternalServerError;
}

}

void makePlain(QNetworkRequest& request)
{
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setHeader(QNetworkRequest::UserAgentHeader, u"Corvane"_s);
}

QCoro::Task<Result<HttpReply>> awaitReply(
    QNetworkReply* started, Scheduler* scheduler, HttpLimits limits, CancelHandle cancel)
{
    const std::unique_ptr<QNetworkReply, QScopedPointerDeleteLater> reply(started);
    const auto endedBecause = std::make_shared<QString>();
    const auto end = [started, endedBecause](const QString& reason) {
        if (endedBecause->isEmpty())
            *endedBecause = reason;
        started->abort();
    };
    started->setReadBufferSize(limits.size + 1);
    QObject::connect(started, &QNetworkReply::readyRead, started, [started, end, limits] {
        if (started->bytesAvailable() > limits.size)
            end(u"The reply is too large."_s);
    });
    const std::unique_ptr<Timer> timer = scheduler->after(limits.time, [end] { end(u"The request timed out."_s); });
    const auto watch = cancel.onCancel([end] { end(cancelled().error().message); });
    if (cancel.isCancelled())
        end(cancelled().error().message);
    co_await started;

    if (!endedBecause->isEmpty())
        co_return failure(*endedBecause);
    if (!isAnswer(reply->error()))
        co_return failure(reply->errorString());
    HttpReply result;
    result.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    result.body = reply->readAll();
    // Qt does not always report that the server closed the connection in the middle of the body.
    if (result.body.size() < reply->header(QNetworkRequest::ContentLengthHeader).toLongLong())
        co_return failure(u"Connection closed"_s);
    result.location = QString::fromUtf8(reply->rawHeader("Location"));
    co_return result;
}

}
