#include "Platform/FileDownload.h"

#include "Foundation/Literals.h"
#include "Platform/HttpExchange.h"
#include "Platform/PrivateFile.h"

#include <QFile>
#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <qcoro/qcoronetworkreply.h>
#include <unistd.h>

namespace corvane {

namespace {

constexpr int stalledAfterMs = 30'000;
constexpr qint64 keptInMemory = 1 << 20;
constexpr int rangeNotSatisfiable = 416;

QString partPath(const QString& path)
{
    return path + u".part"_s;
}

/// Stores the address, and what identifies the version of the file there.
QString originPath(const QString& path)
{
    return path + u".origin"_s;
}

bool isAllowed(const QUrl& url)
{
    const bool isHere = url.host() == "localhost"_L1 || QHostAddress(url.host()).isLoopback();
    return !url.host().isEmpty() && (url.scheme() == "https"_L1 || (url.scheme() == "http"_L1 && isHere));
}

/// Empty if the partial file is from another address.
QByteArray versionOf(const QString& path, const QUrl& url)
{
    QFile file(originPath(path));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QList<QByteArray> lines = file.readAll().split('\n');
    return lines.size() == 2 && lines[0] == url.toEncoded() ? lines[1] : QByteArray();
}

/// Appends to the existing partial file, or starts a new one.
class Incoming {
public:
    Incoming(QNetworkReply* reply, const QString& path, const QUrl& url)
        : m_reply(reply)
        , m_path(path)
        , m_url(url)
        , m_file(partPath(path))
    {
    }

    const QString& problem() const { return m_problem; }
    DownloadProgress progress() const { return { m_received, m_total }; }

    void take()
    {
        if (!m_problem.isEmpty() || (!m_file.isOpen() && !begin()))
            return;
        const QByteArray bytes = m_reply->readAll();
        // A disk that becomes full takes a part first; only the next write tells why.
        for (QByteArrayView rest = bytes; !rest.isEmpty();) {
            const qint64 count = m_file.write(rest.data(), rest.size());
            if (count <= 0)
                return giveUp();
            rest = rest.sliced(count);
        }
        m_received += bytes.size();
    }

    bool finish()
    {
        const bool isWhole = m_file.isOpen() && (m_total == 0 || m_received == m_total);
        if (!isWhole || ::fsync(m_file.handle()) != 0)
            return false;
        QFile::remove(m_path);
        QFile::remove(originPath(m_path));
        return QFile::rename(partPath(m_path), m_path);
    }

private:
    int status() const { return m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(); }

    bool begin()
    {
        const qint64 have = m_file.size();
        const QByteArray range = m_reply->rawHeader("Content-Range");
        const bool goesOn = status() == 206 && range.startsWith("bytes " + QByteArray::number(have) + '-');
        if (!goesOn && status() != 200)
            return false; // an error page
        m_received = goesOn ? have : 0;
        const qint64 length = m_reply->header(QNetworkRequest::ContentLengthHeader).toLongLong();
        m_total = length > 0 ? m_received + length : 0;
        QByteArray version = m_reply->rawHeader("ETag");
        if (version.isEmpty() || version.startsWith("W/"))
            version = m_reply->rawHeader("Last-Modified");
        const bool opened = m_file.open((goesOn ? QIODevice::Append : QIODevice::WriteOnly) | QIODevice::Unbuffered)
            && m_file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)
            && writePrivateFile(originPath(m_path), m_url.toEncoded() + '\n' + version, Outlives::Program);
        if (!opened)
            giveUp();
        return opened;
    }

    /// Ends the reply at the next turn of the event loop, since its end destroys this object.
    void giveUp()
    {
        m_problem = u"the file cannot be written (%1)"_s.arg(m_file.errorString());
        QMetaObject::invokeMethod(m_reply, &QNetworkReply::abort, Qt::QueuedConnection);
    }

    QNetworkReply* const m_reply;
    const QString m_path;
    const QUrl m_url;
    QFile m_file;
    qint64 m_received = 0;
    qint64 m_total = 0;
    QString m_problem;
};

}

QCoro::Task<Result<void>> downloadFile(
    QUrl url, QString path, std::function<void(DownloadProgress)> onProgress, CancelHandle cancel)
{
    if (!isAllowed(url))
        co_return failure(u"the address must begin with https://"_s);
    if (cancel.isCancelled())
        co_return cancelled();
    // These two outlive this flow until the next turn of the event loop, since it may go on inside the reply's abort.
    const std::unique_ptr<QNetworkAccessManager, QScopedPointerDeleteLater> manager(new QNetworkAccessManager);
    QNetworkRequest request(url);
    makePlain(request);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setRawHeader("Accept-Encoding", "identity");
    request.setTransferTimeout(stalledAfterMs);
    const QByteArray version = versionOf(path, url);
    const qint64 have = QFile(partPath(path)).size();
    const bool resumes = have > 0 && !version.isEmpty();
    if (resumes) {
        request.setRawHeader("Range", "bytes=" + QByteArray::number(have) + '-');
        request.setRawHeader("If-Range", version);
    }
    const std::unique_ptr<QNetworkReply, QScopedPointerDeleteLater> reply(manager->get(request));
    reply->setReadBufferSize(keptInMemory);
    Incoming incoming(reply.get(), path, url);
    const QObject here;
    QObject::connect(reply.get(), &QNetworkReply::readyRead, &here, [&incoming, &onProgress] {
        incoming.take();
        if (onProgress)
            onProgress(incoming.progress());
    });
    const auto watch = cancel.onCancel([&reply] { reply->abort(); });
    co_await reply.get();

    if (cancel.isCancelled())
        co_return cancelled();
    if (!incoming.problem().isEmpty())
        co_return failure(incoming.problem());
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (resumes && status == rangeNotSatisfiable) { // the file has changed since
        forgetDownload(path);
        co_return co_await downloadFile(url, path, onProgress, cancel);
    }
    if (status >= 300)
        co_return failure(u"the server answered %1"_s.arg(status));
    if (reply->error() != QNetworkReply::NoError)
        co_return failure(reply->errorString());
    incoming.take();
    if (!incoming.finish())
        co_return failure(incoming.problem().isEmpty() ? u"the file did not come whole"_s : incoming.problem());
    co_return {};
}

void forgetDownload(const QString& path)
{
    QFile::remove(partPath(path));
    QFile::remove(originPath(path));
}

}
