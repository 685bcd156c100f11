#pragma once

#include "Platform/HttpExchange.h"

#include <QNetworkAccessManager>

namespace corvane {

class Scheduler;
class UserDefaults;

/// Requests to the web service, limited to 60 seconds and 4 MiB. Cookies are not kept, and redirects to another origin
/// are not followed. Errors are for the user.
class WebClient {
public:
    explicit WebClient(Scheduler& scheduler);
    ~WebClient();

    /// Follows redirects to the same origin; one to another origin is returned. JSON in UTF-8, with the token if there
    /// is one.
    QCoro::Task<Result<HttpReply>> post(QUrl url, QByteArray body, QString bearerToken = {}, CancelHandle cancel = {});
    QCoro::Task<Result<HttpReply>> get(QUrl url, QString bearerToken, CancelHandle cancel = {});

    /// Returns redirects.
    QCoro::Task<Result<HttpReply>> getWithoutRedirect(QUrl url, QString bearerToken);

    /// Ends all running requests with a failure.
    void abortAll();

private:
    Scheduler& m_scheduler;
    QNetworkAccessManager m_network;
};

/// The service's address: the user default, else the built-in one.
QString webBase(const UserDefaults& defaults);

/// {base}{path}; invalid unless the base is an absolute https URL, or http on this machine.
QUrl webUrl(const QString& base, const QString& path);

}
