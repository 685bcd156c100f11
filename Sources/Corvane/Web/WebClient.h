#pragma once

#include "Platform/HttpExchange.h"

#include <QNetworkAccessManager>

namespace corvane {

class Scheduler;
class UserDefaults;

/// Requests to the web service. Each ends after 60 seconds or 4 MiB at the latest. No cookie is kept, and no
/// redirect leads what was sent to another origin. A failure carries the words for the user.
class WebClient {
public:
    explicit WebClient(Scheduler& scheduler);
    ~WebClient();

    /// A redirect to the same origin is followed, one to another is the answer. JSON in UTF-8, and the token where
    /// there is one.
    QCoro::Task<Result<HttpReply>> post(QUrl url, QByteArray body, QString bearerToken = {}, CancelHandle cancel = {});
    QCoro::Task<Result<HttpReply>> get(QUrl url, QString bearerToken, CancelHandle cancel = {});

    /// A redirect is the answer.
    QCoro::Task<Result<HttpReply>> getWithoutRedirect(QUrl url, QString bearerToken);

    /// Ends every request that runs, as a failure.
    void abortAll();

private:
    Scheduler& m_scheduler;
    QNetworkAccessManager m_network;
};

/// Where the service is: what the user default says, else what the program was built with.
QString webBase(const UserDefaults& defaults);

/// {base}{path}; an invalid URL unless the base is an absolute https one, or http on this machine.
QUrl webUrl(const QString& base, const QString& path);

}
