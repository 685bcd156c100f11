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

/// Starts a browser, or finds the one that listens on the port already, and opens a page in it.
class ChromiumStart {
public:
    /// `ended` is called when a browser that was started here ends, with the words for it.
    ChromiumStart(const BrowserSurroundings& at, std::function<void(const QString& reason)> ended);
    ~ChromiumStart(); ///< ends the browser that was started here

    /// The conversation with a new page, which is blank until somebody listens to what goes wrong in it. It belongs to
    /// `owner`. A failure carries words for the user. One call at a time.
    QCoro::Task<Result<OpenedPage>> open(BrowserOptions options, QObject* owner);

    qint64 pid() const { return m_child ? m_child->pid() : 0; }
    void end(); ///< of a browser that was started here; one that hangs is killed

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
    BrowserOptions m_options; ///< of the browser that runs, or is being started
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
