#pragma once

#include "Web/WebClient.h"

namespace corvane {

/// The long-lived token of this machine, and the name that the web gave it.
struct DeviceCredentials {
    QString token;
    QString deviceId;
};

// The calls by which this machine becomes a companion of the user's web account. A failure carries the words
// for the wall. The client is used before the first wait only.

/// E-mail and password for a short-lived access token.
QCoro::Task<Result<QString>> login(WebClient* client, QString base, QString email, QString password);

/// The access token for a one-time code.
QCoro::Task<Result<QString>> handshake(WebClient* client, QString base, QString accessToken, QString deviceName);

/// The one-time code for the credentials.
QCoro::Task<Result<DeviceCredentials>> exchange(WebClient* client, QString base, QString code, QString deviceName);

/// Where the browser signs in and the handshake goes; it ends in a redirect to the callback with a code.
QUrl companionLoginUrl(const QString& base, const QString& deviceName);

/// Why no call can be made to that base.
QString badUrlWords(const QString& base, const QString& kind);

/// The code that a callback or a redirect carries; empty where it has none.
QString oneTimeCode(const QUrl& url);

}
