#pragma once

#include "Foundation/Cancellation.h"
#include "Foundation/Scheduler.h"

#include <QByteArray>
#include <QString>
#include <qcoro/qcorotask.h>

class QNetworkReply;
class QNetworkRequest;

namespace corvane {

/// A response, whatever its status.
struct HttpReply {
    int status = 0; ///< 0 if it is not an HTTP response
    QByteArray body;
    QString location; ///< the header of a redirect that was not followed

    bool isSuccess() const { return status >= 200 && status <= 299; }
};

struct HttpLimits {
    Milliseconds time;
    qint64 size; ///< of the body, in bytes
};

/// Neither sends nor stores cookies, and uses no cache.
void makePlain(QNetworkRequest& request);

/// Waits for a request that was just sent, and owns its reply. Fails, with an error for the user, if the limit is
/// exceeded, the request is cancelled, or the connection breaks. A complete response is a success, whatever its status.
QCoro::Task<Result<HttpReply>> awaitReply(
    QNetworkReply* started, Scheduler* scheduler, HttpLimits limits, CancelHandle cancel = {});

}
