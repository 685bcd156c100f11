#pragma once

#include "Foundation/Cancellation.h"

#include <QUrl>
#include <functional>
#include <qcoro/qcorotask.h>

namespace corvane {

/// How much of a file has come, in bytes.
struct DownloadProgress {
    qint64 received = 0;
    qint64 total = 0; ///< 0: the server does not say
};

/// Brings a large file from the web to `path`. What has come when it ends early stays beside it, and the next call for
/// the same address goes on from there, where the file has not changed since. From other machines only by https. A
/// failure carries words for the user, without a stop at their end.
QCoro::Task<Result<void>> downloadFile(
    QUrl url, QString path, std::function<void(DownloadProgress)> onProgress, CancelHandle cancel);

/// Removes what an earlier call left.
void forgetDownload(const QString& path);

}
