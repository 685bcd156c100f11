#include "Browser/ChromiumStart.h"

#include "Browser/PipeConnection.h"
#include "Browser/WebSocketConnection.h"
#include "Foundation/Json.h"
#include "Platform/PortHolders.h"
#include "Platform/PrivateFile.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkReply>
#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {

namespace {

constexpr Milliseconds step(250);
constexpr Milliseconds lookLimit(2000);
constexpr Milliseconds pageLimit(60'000);
constexpr qint64 largestAnswer = 4 * 1024 * 1024;

/// The connection to a page, if the answer names one of this browser.
QString socketIn(const QJsonObject& target, quint16 port)
{
    const QUrl url(target["webSocketDebuggerUrl"_L1].toString());
    const bool isOurs = url.scheme() == "ws"_L1 && url.port() == port
        && (url.host() == "127.0.0.1"_L1 || url.host() == "localhost"_L1);
    return isOurs ? url.toString(QUrl::FullyEncoded) : QString();
}

/// A value that arrives once; `instead` when `end` is cancelled.
template <typename Value>
CancelHandle::Watch arriveAtEnd(const CancelHandle& end, Arrival<Value> arrival, Value instead)
{
    return end.onCancel([arrival, instead = std::move(instead)] {
        if (!arrival.hasArrived())
            arrival.arrive(instead);
    });
}

QCoro::Task<Result<QJsonObject>> asked(
    QPointer<DevToolsConnection> connection, QString method, QJsonObject parameters, CancelHandle end)
{
    const Arrival<Result<QJsonObject>> arrival;
    const Result<QJsonObject> gone = cancelled();
    const auto watch = arriveAtEnd(end, arrival, gone);
    connection->call(method, parameters, [arrival](const Result<QJsonObject>& result) {
        if (!arrival.hasArrived())
            arrival.arrive(result);
    });
    co_return co_await arrival;
}

}

ChromiumStart::ChromiumStart(const BrowserSurroundings& at, std::function<void(const QString& reason)> ended)
    : m_at(at)
    , m_options(at.options)
    , m_ended(std::move(ended))
{
}

ChromiumStart::~ChromiumStart()
{
    m_end.cancel();
    m_ended = {};
    if (m_child)
        m_child->terminate();
}

QString ChromiumStart::profile() const
{
    return m_at.paths.applicationSupport + u"/BrowserQA/InteractiveProfile"_s;
}

void ChromiumStart::end()
{
    if (!m_child)
        return;
    m_isEnding = true;
    m_child->terminate();
}

QCoro::Task<void> ChromiumStart::pause(Milliseconds time)
{
    const Arrival<bool> arrival;
    const auto watch = arriveAtEnd(m_end, arrival, false);
    m_pause = m_at.scheduler.after(time, [arrival] { arrival.arrive(true); });
    co_await arrival;
}

QCoro::Task<Result<HttpReply>> ChromiumStart::ask(QByteArray verb, QByteArray address, Milliseconds limit)
{
    QNetworkRequest request(QUrl::fromEncoded("http://127.0.0.1:" + QByteArray::number(m_options.port) + address));
    makePlain(request);
    const HttpLimits limits { limit, largestAnswer };
    return awaitReply(m_network.sendCustomRequest(request, verb), &m_at.scheduler, limits, m_end);
}

QCoro::Task<Result<OpenedPage>> ChromiumStart::open(BrowserOptions options, QObject* owner)
{
    const CancelHandle end = m_end;
    if (m_child && !m_isEnding && m_options.line == BrowserOptions::Line::Port) {
        // A browser that no longer answers has just exited, or hangs.
        const Result<HttpReply> answer = co_await ask("GET", "/json/version", lookLimit);
        if (end.isCancelled())
            co_return cancelled();
        if (!answer)
            this->end();
    }
    while (m_child && m_isEnding) {
        co_await pause(step);
        if (end.isCancelled())
            co_return cancelled();
    }
    if (!m_child)
        m_options = options;
    if (m_options.line == BrowserOptions::Line::Pipe)
        co_return co_await openOverPipe(owner);
    co_return co_await openOverPort(owner);
}

QCoro::Task<ChromiumStart::Listener> ChromiumStart::listener()
{
    const Arrival<Listener> arrival;
    const auto watch = arriveAtEnd(m_end, arrival, Listener::Other);
    PortHolders& holders = m_at.portHolders;
    const quint16 port = m_options.port;
    m_queue.run<Listener>(
        [&holders, port] {
            const QList<PortHolder> found = holders.listeningOn(port);
            const auto isOwn = [&](const PortHolder& holder) {
                return holder.userId == holders.ownUserId();
            };
            return found.isEmpty()                  ? Listener::None
                : std::ranges::all_of(found, isOwn) ? Listener::Own
                                                    : Listener::Other;
        },
        [arrival](Listener who) { arrival.arrive(who); });
    co_return co_await arrival;
}

/// On success, a browser of this user answers on the port.
QCoro::Task<Result<void>> ChromiumStart::findOrLaunch()
{
    const CancelHandle end = m_end;
    const auto look = [this] {
        return ask("GET", "/json/version", lookLimit);
    };
    if (m_child)
        co_return {};
    const Result<HttpReply> found = co_await look();
    if (end.isCancelled())
        co_return cancelled();
    const Listener who = co_await listener();
    if (end.isCancelled())
        co_return cancelled();
    if (found || who != Listener::None) {
        // A listener whose process is hidden belongs to another user, too.
        if (who != Listener::Own)
            co_return failure(browserWords::portOfAnother(m_options.port));
        const bool isBrowser
            = found && jsonObject(found->body).value_or(QJsonObject()).contains("webSocketDebuggerUrl"_L1);
        if (!isBrowser)
            co_return failure(browserWords::portOfNoBrowser(m_options.port));
        co_return {};
    }
    if (const auto launched = launch(nullptr); !launched)
        co_return launched;
    const qint64 deadline = m_at.scheduler.monotonicMs() + m_options.startLimit.count();
    while (m_at.scheduler.monotonicMs() < deadline) {
        const Result<HttpReply> answer = co_await look();
        if (end.isCancelled())
            co_return cancelled();
        if (answer && answer->isSuccess())
            co_return {};
        if (!m_child)
            co_return failure(m_endReason);
        co_await pause(step);
        if (end.isCancelled())
            co_return cancelled();
    }
    // A late one is dropped: the next attempt starts another.
    this->end();
    co_return failure(browserWords::notStarted(m_options.port));
}

Result<void> ChromiumStart::launch(PipeConnection* pipe)
{
    ProcessSpec spec;
    spec.executable = m_options.executable.isEmpty() ? chromiumPath() : m_options.executable;
    if (spec.executable.isEmpty())
        return failure(browserWords::notInstalled);
    if (m_options.hasSandbox && ::geteuid() == 0)
        return failure(browserWords::isRoot);
    if (!QDir().mkpath(profile()) || ::chmod(QFile::encodeName(profile()).constData(), 0700) != 0)
        return failure(u"The browser's folder could not be made: %1"_s.arg(profile()));
    spec.arguments = chromiumArguments(m_options, profile());
    spec.environment = QProcessEnvironment::systemEnvironment();
    spec.workingDirectory = m_at.paths.home;
    spec.pipes = pipe != nullptr;
    if (pipe) {
        spec.inputNumber = 3;
        spec.outputNumber = 4;
        spec.lineEnd = PipeConnection::messageEnd;
    }
    m_pipe = pipe;
    m_isEnding = false;
    const CancelHandle end = m_end;
    const auto started = m_at.launcher.start(spec,
        { [this, end](const OutputChunk& chunk) {
             if (!end.isCancelled() && m_pipe)
                 m_pipe->take(chunk);
         },
            [this, end](int code) {
                if (end.isCancelled())
                    return;
                m_child.reset();
                m_endReason = std::exchange(m_isEnding, false) ? QString() : browserWords::ended(code);
                if (m_pipe)
                    m_pipe->childEnded();
                if (!end.isCancelled() && m_ended)
                    m_ended(m_endReason);
            } });
    if (!started)
        return std::unexpected(started.error());
    m_child = *started;
    if (pipe)
        pipe->setChild(m_child);
    return {};
}

/// The address for connecting to a new page, or to the first existing one.
QCoro::Task<Result<QString>> ChromiumStart::newPage()
{
    const CancelHandle end = m_end;
    const Result<HttpReply> made = co_await ask("PUT", "/json/new?about:blank", pageLimit);
    if (end.isCancelled())
        co_return cancelled();
    if (made) {
        const QString socket = socketIn(jsonObject(made->body).value_or(QJsonObject()), m_options.port);
        if (!socket.isEmpty())
            co_return socket;
    }
    const Result<HttpReply> list = co_await ask("GET", "/json/list", lookLimit);
    if (end.isCancelled())
        co_return cancelled();
    if (list) {
        for (const QJsonValue& target : QJsonDocument::fromJson(list->body).array()) {
            const QString socket = socketIn(target.toObject(), m_options.port);
            if (!socket.isEmpty())
                co_return socket;
        }
    }
    co_return failure(browserWords::noPage);
}

QCoro::Task<Result<OpenedPage>> ChromiumStart::openOverPort(QObject* owner)
{
    const CancelHandle end = m_end;
    const Result<void> found = co_await findOrLaunch();
    if (!found)
        co_return std::unexpected(found.error());
    const Result<QString> socket = co_await newPage();
    if (end.isCancelled())
        co_return cancelled();
    if (!socket)
        co_return std::unexpected(socket.error());
    const Arrival<QString> opened;
    const QPointer<DevToolsConnection> connection
        = new WebSocketConnection(QUrl(*socket), [opened](const QString& reason) { opened.arrive(reason); }, owner);
    const QString reason = co_await opened;
    if (end.isCancelled() || !connection)
        co_return cancelled();
    if (reason.isEmpty())
        co_return OpenedPage { connection.data() };
    connection->deleteLater();
    co_return failure(reason);
}

QCoro::Task<Result<OpenedPage>> ChromiumStart::openOverPipe(QObject* owner)
{
    const CancelHandle end = m_end;
    const QPointer<PipeConnection> pipe = new PipeConnection(owner);
    if (m_child) {
        m_pipe = pipe;
        pipe->setChild(m_child);
    } else if (const auto launched = launch(pipe); !launched) {
        pipe->deleteLater();
        co_return std::unexpected(launched.error());
    }
    const QJsonObject page { { u"url"_s, u"about:blank"_s } };
    const auto made = co_await asked(pipe.data(), u"Target.createTarget"_s, page, end);
    if (end.isCancelled() || !pipe)
        co_return cancelled();
    if (made) {
        const QJsonObject target { { u"targetId"_s, made->value("targetId"_L1) }, { u"flatten"_s, true } };
        const auto attached = co_await asked(pipe.data(), u"Target.attachToTarget"_s, target, end);
        if (end.isCancelled() || !pipe)
            co_return cancelled();
        if (attached) {
            pipe->setSession(attached->value("sessionId"_L1).toString());
            co_return OpenedPage { pipe.data() };
        }
    }
    pipe->deleteLater();
    co_return failure(m_child ? browserWords::noPage : m_endReason);
}

}
