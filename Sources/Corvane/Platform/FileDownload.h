#pragma once

#include "Foundation/Cancellation.h"

#include <QUrl>
#include <functional>
#include <qcoro/qcorotask.h>

namespace corvane {

/// Progress of a download, in bytes.
struct DownloadProgress {
    qint64 received = 0;
    qint64 total = 0; ///< 0: unknown
};

/// Downloads a large file to `path`. If it is interrupted, the partial file is kept, and the next call for the same
/// address resumes unless the file changed since. Only https from other machines. The error is for the user, without a
/// final full stop.
QCoro::Task<Result<void>> downloadFile(
    QUrl url, QString path, std::function<void(DownloadProgress)> onProgress, CancelHandle cancel);

/// Deletes the partial file of an earlier call.
void forgetDownload(const QString& path);

}
