#pragma once

#include "Foundation/Cancellation.h"
#include "Foundation/Scheduler.h"

#include <QByteArray>
#include <QString>
#include <qcoro/qcorotask.h>

class QNetworkReply;
class QNetworkRequest;

namespace corvane {

/// What came back, whatever its status.
struct HttpReply {
    int status = 0; ///< 0 if the answer is no HTTP response
    QByteArray body;
    QString location; ///< the header of a redirect that was not followed

    bool isSuccess() const { return status >= 200 && status <= 299; }
};

struct HttpLimits {
    Milliseconds time;
    qint64 size; ///< of the body, in bytes
};

/// Neither sends nor keeps cookies, and takes nothing out of a cache.
void makePlain(QNetworkRequest& request);

/// Waits for a request that was just sent, and owns its reply. A failure carries the words for the user: of the
/// limit, of the cancelling, or of what broke on the way. An answer of the service is none, whatever its status.
QCoro::Task<Result<HttpReply>> awaitReply(
    QNetworkReply* started, Scheduler* scheduler, HttpLimits limits, CancelHandle cancel = {});

}
