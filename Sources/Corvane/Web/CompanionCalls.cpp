#include "Web/CompanionCalls.h"

#include "Foundation/Json.h"

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
    const QJsonObject data = jsonObject(body).value_or(QJsonObject())[QLatin1StringView("data")].toObject();
    const auto token = nonEmptyText(data, QLatin1StringView("token"));
    const auto deviceId = nonEmptyText(data, QLatin1StringView("deviceId"));
    if (!token || !deviceId)
        return std::nullopt;
    return DeviceCredentials { *token, *deviceId };
}

}

QCoro::Task<Result<QString>> login(WebClient* client, QString base, QString email, QString password)
{
    const QUrl url = webUrl(base, QStringLiteral("/api/auth/login"));
    if (!url.isValid())
        co_return failure(badUrlWords(base, QStringLiteral("API")));
    const Result<HttpReply> reply = co_await client->post(
        url, compactJson({ { QStringLiteral("email"), email }, { QStringLiteral("password"), password } }));
    if (!reply)
        co_return failure(reply.error().message);
    if (reply->status == 0)
        co_return failure(QStringLiteral("No response from ") + base);
    if (reply->status == 401 || reply->status == 403)
        co_return failure(QStringLiteral("Wrong email or password."));

    const QJsonObject answer = jsonObject(reply->body).value_or(QJsonObject());
    if (answer[QLatin1StringView("requires2fa")].toBool() || answer[QLatin1StringView("requiresTwoFactor")].toBool())
        co_return failure(QStringLiteral("This account uses two-factor — use “Sign in with browser” below."));
    const QJsonValue data = answer[QLatin1StringView("data")];
    const QJsonObject payload = data.isObject() ? data.toObject() : answer;
    auto accessToken = nonEmptyText(payload, QLatin1StringView("accessToken"));
    if (!accessToken)
        accessToken = nonEmptyText(payload, QLatin1StringView("access_token"));
    if (!reply->isSuccess() || !accessToken)
        co_return failure(QStringLiteral("Unexpected login response (HTTP %1)").arg(reply->status));
    co_return *accessToken;
}

QCoro::Task<Result<QString>> handshake(WebClient* client, QString base, QString accessToken, QString deviceName)
{
    const QUrl url = companionLoginUrl(base, deviceName);
    if (!url.isValid())
        co_return failure(badUrlWords(base, QStringLiteral("companion")));
    const Result<HttpReply> reply = co_await client->getWithoutRedirect(url, accessToken);
    if (!reply)
        co_return failure(reply.error().message);
    const QString code = oneTimeCode(QUrl(reply->location));
    if ((reply->status != 301 && reply->status != 302) || code.isEmpty())
        co_return failure(QStringLiteral("Companion handshake failed (HTTP %1)").arg(reply->status));
    co_return code;
}

QCoro::Task<Result<DeviceCredentials>> exchange(WebClient* client, QString base, QString code, QString deviceName)
{
    const QUrl url = webUrl(base, QStringLiteral("/api/auth/companion-exchange"));
    if (!url.isValid())
        co_return failure(badUrlWords(base, QStringLiteral("companion")));
    const Result<HttpReply> reply = co_await client->post(
        url, compactJson({ { QStringLiteral("code"), code }, { QStringLiteral("deviceName"), deviceName } }));
    if (!reply)
        co_return failure(reply.error().message);
    if (!reply->isSuccess())
        co_return failure(QStringLiteral("Sign-in failed (HTTP %1)").arg(reply->status));
    const auto credentials = decodeCredentials(reply->body);
    if (!credentials)
        co_return failure(QStringLiteral("The data couldn’t be read because it isn’t in the correct format."));
    co_return *credentials;
}

QUrl companionLoginUrl(const QString& base, const QString& deviceName)
{
    // Encoded to the last character: QUrlQuery alone lets a "+" through, which a web service reads as a blank.
    const auto encoded = [](const QString& text) {
        return QString::fromLatin1(QUrl::toPercentEncoding(text));
    };
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("callback"), encoded(QStringLiteral("nimb-companion://auth")));
    query.addQueryItem(QStringLiteral("deviceName"), encoded(deviceName));
    QUrl url = webUrl(base, QStringLiteral("/api/auth/companion-login"));
    if (url.isValid())
        url.setQuery(query);
    return url;
}

QString badUrlWords(const QString& base, const QString& kind)
{
    return QUrl(base).scheme() == QLatin1StringView("http")
        ? QStringLiteral("The web address is not encrypted. Sign-in needs one that begins with https.")
        : QStringLiteral("Bad %1 URL").arg(kind);
}

QString oneTimeCode(const QUrl& url)
{
    return QUrlQuery(url).queryItemValue(QStringLiteral("code"), QUrl::FullyDecoded);
}

}
