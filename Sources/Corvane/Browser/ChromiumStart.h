#pragma once

#include "Browser/ChromiumLaunch.h"
#include "Browser/DevToolsConnection.h"
#include "Foundation/Arrival.h"
#include "Foundation/BackgroundQueue.h"
#include "Foundation/Cancellation.h"
#include "Platform/HttpExchange.h"
#include "Platform/ProcessLauncher.h"

#include <QNetworkAccessManager>
#include <QPointer>

namespace corvane {

class PipeConnection;

struct OpenedPage {
    DevToolsConnection* connection = nullptr;
};

/// Starts a browser, or finds the one that already listens on the port, and opens a page in it.
class ChromiumStart {
public:
    /// `ended` is called with the reason when a browser that was started here exits.
    ChromiumStart(const BrowserSurroundings& at, std::function<void(const QString& reason)> ended);
    ~ChromiumStart(); ///< ends the browser that was started here

    /// A connection to a new page, which stays blank so that no event is missed. The connection belongs to `owner`.
    /// Errors are for the user. One call at a time.
    QCoro::Task<Result<OpenedPage>> open(BrowserOptions options, QObject* owner);

    qint64 pid() const { return m_child ? m_child->pid() : 0; }
    void end(); ///< the browser that was started here; kills it if it hangs

private:
    enum class Listener { None, Own, Other };

    QCoro::Task<Result<void>> findOrLaunch();
    QCoro::Task<Result<OpenedPage>> openOverPort(QObject* owner);
    QCoro::Task<Result<OpenedPage>> openOverPipe(QObject* owner);
    QCoro::Task<Result<QString>> newPage();
    QCoro::Task<Result<HttpReply>> ask(QByteArray verb, QByteArray address, Milliseconds limit);
    QCoro::Task<Listener> listener();
    Result<void> launch(PipeConnection* pipe);
    QCoro::Task<void> pause(Milliseconds time);
    QString profile() const;

    BrowserSurroundings m_at;
    BrowserOptions m_options; ///< of the running browser, or of the one being started
    std::function<void(const QString&)> m_ended;
    std::shared_ptr<ChildProcess> m_child;
    QPointer<PipeConnection> m_pipe;
    QString m_endReason; ///< of the last child
    QNetworkAccessManager m_network;
    CancelHandle m_end;
    std::unique_ptr<Timer> m_pause;
    bool m_isEnding = false;
    BackgroundQueue m_queue;
};

}
