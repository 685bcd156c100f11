#pragma once

#include "Web/WebClient.h"

namespace corvane {

/// The long-lived token of this device, and the id that the web assigned.
struct DeviceCredentials {
    QString token;
    QString deviceId;
};

// The calls that register this machine as a companion device of the user's web account. Errors are for the login wall.
// The client is used only before the first suspension.

/// E-mail and password for a short-lived access token.
QCoro::Task<Result<QString>> login(WebClient* client, QString base, QString email, QString password);

/// The access token for a one-time code.
QCoro::Task<Result<QString>> handshake(WebClient* client, QString base, QString accessToken, QString deviceName);

/// The one-time code for the credentials.
QCoro::Task<Result<DeviceCredentials>> exchange(WebClient* client, QString base, QString code, QString deviceName);

/// The page where the browser signs in; it ends in a redirect to the callback with a code.
QUrl companionLoginUrl(const QString& base, const QString& deviceName);

/// Why the base address is unusable.
QString badUrlWords(const QString& base, const QString& kind);

/// The code in a callback or redirect; empty if there is none.
QString oneTimeCode(const QUrl& url);

}
