#pragma once

#include "Foundation/Result.h"

#include <QJsonObject>
#include <QNetworkAccessManager>
#include <qcoro/qcorotask.h>

class QNetworkReply;
class QNetworkRequest;

namespace corvane {

class Scheduler;

/// What came back, whatever its status.
struct WebReply {
    int status = 0; ///< 0 where the answer is no HTTP response
    QByteArray body;
    QString location; ///< the header of a redirect that was not followed

    bool isSuccess() const { return status >= 200 && status <= 299; }
};

/// Requests to the web service. Each ends after 60 seconds or 4 MiB at the latest. No cookie is kept, and no
/// redirect leads what was sent to another origin. A failure carries the words for the user.
class WebClient {
public:
    explicit WebClient(Scheduler& scheduler);
    ~WebClient();

    /// A redirect to the same origin is followed.
    QCoro::Task<Result<WebReply>> post(QUrl url, QJsonObject body);

    /// A redirect is the answer.
    QCoro::Task<Result<WebReply>> getWithoutRedirect(QUrl url, QString bearerToken);

    /// Ends every request that runs, as a failure.
    void abortAll();

private:
    Scheduler& m_scheduler;
    QNetworkAccessManager m_network;
};

/// {base}{path}; an invalid URL unless the base is an absolute http or https one.
QUrl webUrl(const QString& base, const QString& path);

}
