#include "Web/CompanionCalls.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"

#include <QJsonObject>
#include <QUrlQuery>

namespace corvane {

namespace {

std::optional<QString> nonEmptyText(const QJsonObject& object, QLatin1StringView key)
{
    const std::optional<QString> text = textValue(object, key);
    return text && !text->isEmpty() ? text : std::nullopt;
}

std::optional<DeviceCredentials> decodeCredentials(const QByteArray& body)
{
    const QJsonObject data = jsonObject(body).value_or(QJsonObject())["data"_L1].toObject();
    const auto token = nonEmptyText(data, "token"_L1);
    const auto deviceId = nonEmptyText(data, "deviceId"_L1);
    if (!token || !deviceId)
        return std::nullopt;
    return DeviceCredentials { *token, *deviceId };
}

}

QCoro::Task<Result<QString>> login(WebClient* client, QString base, QString email, QString password)
{
    const QUrl url = webUrl(base, u"/api/auth/login"_s);
    if (!url.isValid())
        co_return failure(badUrlWords(base, u"API"_s));
    const Result<HttpReply> reply
        = co_await client->post(url, compactJson({ { u"email"_s, email }, { u"password"_s, password } }));
    if (!reply)
        co_return failure(reply.error().message);
    if (reply->status == 0)
        co_return failure(u"No response from "_s + base);
    if (reply->status == 401 || reply->status == 403)
        co_return failure(u"Wrong email or password."_s);

    const QJsonObject answer = jsonObject(reply->body).value_or(QJsonObject());
    if (answer["requires2fa"_L1].toBool() || answer["requiresTwoFactor"_L1].toBool())
        co_return failure(u"This account uses two-factor — use “Sign in with browser” below."_s);
    const QJsonValue data = answer["data"_L1];
    const QJsonObject payload = data.isObject() ? data.toObject() : answer;
    auto accessToken = nonEmptyText(payload, "accessToken"_L1);
    if (!accessToken)
        accessToken = nonEmptyText(payload, "access_token"_L1);
    if (!reply->isSuccess() || !accessToken)
        co_return failure(u"Unexpected login response (HTTP %1)"_s.arg(reply->status));
    co_return *accessToken;
}

QCoro::Task<Result<QString>> handshake(WebClient* client, QString base, QString accessToken, QString deviceName)
{
    const QUrl url = companionLoginUrl(base, deviceName);
    if (!url.isValid())
        co_return failure(badUrlWords(base, u"companion"_s));
    const Result<HttpReply> reply = co_await client->getWithoutRedirect(url, accessToken);
    if (!reply)
        co_return failure(reply.error().message);
    const QString code = oneTimeCode(QUrl(reply->location));
    if ((reply->status != 301 && reply->status != 302) || code.isEmpty())
        co_return failure(u"Companion handshake failed (HTTP %1)"_s.arg(reply->status));
    co_return code;
}

QCoro::Task<Result<DeviceCredentials>> exchange(WebClient* client, QString base, QString code, QString deviceName)
{
    const QUrl url = webUrl(base, u"/api/auth/companion-exchange"_s);
    if (!url.isValid())
        co_return failure(badUrlWords(base, u"companion"_s));
    const Result<HttpReply> reply
        = co_await client->post(url, compactJson({ { u"code"_s, code }, { u"deviceName"_s, deviceName } }));
    if (!reply)
        co_return failure(reply.error().message);
    if (!reply->isSuccess())
        co_return failure(u"Sign-in failed (HTTP %1)"_s.arg(reply->status));
    const auto credentials = decodeCredentials(reply->body);
    if (!credentials)
        co_return failure(u"The data couldn’t be read because it isn’t in the correct format."_s);
    co_return *credentials;
}

QUrl companionLoginUrl(const QString& base, const QString& deviceName)
{
    // Encoded to the last character: QUrlQuery alone lets a "+" through, which a web service reads as a blank.
    const auto encoded = [](const QString& text) {
        return QString::fromLatin1(QUrl::toPercentEncoding(text));
    };
    QUrlQuery query;
    query.addQueryItem(u"callback"_s, encoded(u"nimb-companion://auth"_s));
    query.addQueryItem(u"deviceName"_s, encoded(deviceName));
    QUrl url = webUrl(base, u"/api/auth/companion-login"_s);
    if (url.isValid())
        url.setQuery(query);
    return url;
}

QString badUrlWords(const QString& base, const QString& kind)
{
    return QUrl(base).scheme() == "http"_L1
        ? u"The web address is not encrypted. Sign-in needs one that begins with https."_s
        : u"Bad %1 URL"_s.arg(kind);
}

QString oneTimeCode(const QUrl& url)
{
    return QUrlQuery(url).queryItemValue(u"code"_s, QUrl::FullyDecoded);
}

}
