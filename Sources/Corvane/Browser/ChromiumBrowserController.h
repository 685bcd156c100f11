#pragma once

#include "Browser/BrowserEvidence.h"
#include "Browser/BrowserMasking.h"
#include "Browser/BrowserPage.h"
#include "Browser/BrowserSurface.h"
#include "Browser/ChromiumLaunch.h"
#include "Foundation/Coalescer.h"

#include <qcoro/qcorotask.h>

namespace corvane {

class ChromiumStart;

/// A real, headless Chromium: its process, what it shows (`page`, `surface`), and evidence of that. Its own texts are
/// masked. Main thread only.
class ChromiumBrowserController : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString status READ status NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString lastError READ lastError NOTIFY changed)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY changed)
    Q_PROPERTY(bool isConnecting READ isConnecting NOTIFY changed)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
    Q_PROPERTY(double progress READ progress NOTIFY changed) ///< of loading, from 0 to 1
    Q_PROPERTY(bool canGoBack READ canGoBack NOTIFY changed)
    Q_PROPERTY(bool canGoForward READ canGoForward NOTIFY changed)
    Q_PROPERTY(corvane::BrowserSurface* surface READ surface CONSTANT)
public:
    explicit ChromiumBrowserController(const BrowserSurroundings& at, QObject* parent = nullptr);
    ~ChromiumBrowserController() override; ///< ends the browser, unless it was already running

    const QString& status() const { return m_status; }
    QString title() const { return masked(m_page, m_page.title()); } ///< "Chromium" before there is one
    QString currentURL() const { return masked(m_page, m_page.url()); }
    bool hasEvidence() const; ///< there is a frame or an event
    QString lastError() const { return masked(m_page, m_error); }
    bool isRunning() const { return m_connection != nullptr; }
    bool isConnecting() const { return m_isConnecting; }
    bool isHanging() const { return m_isHanging; } ///< it runs but does not answer
    bool isLoading() const { return m_page.isLoading(); }
    double progress() const { return m_page.progress(); }
    bool canGoBack() const { return m_page.canGo(-1); }
    bool canGoForward() const { return m_page.canGo(+1); }
    qint64 browserPid() const; ///< of the browser that was started here; else 0
    BrowserOptions& options() { return m_options; } ///< used at the next start
    const BrowserOptions& options() const { return m_options; }
    BrowserPage& page() { return m_page; }
    const BrowserPage& page() const { return m_page; }
    BrowserSurface* surface() { return &m_surface; }
    DevToolsConnection* connection() { return m_connection; } ///< null while the browser does not run

    void open(const QString& url); ///< starts the browser where it does not run
    void adopt(DevToolsConnection* connection); ///< of a blank page; takes ownership
    void end(); ///< of a browser that was started here
    void restart(); ///< and shows the page again
    Q_INVOKABLE void back() { m_page.step(-1); }
    Q_INVOKABLE void forward() { m_page.step(+1); }
    Q_INVOKABLE void reload();
    Q_INVOKABLE void stop();

    /// Everything known now; the content of the page's password fields is masked, too. `done` is called once, unless
    /// the controller is destroyed first.
    void gatherEvidence(
        const QString& requestedURL, const QString& note, std::function<void(const BrowserEvidencePayload&)> done);
    QString evidenceRoot() const; ///< the folder of all projects' evidence

Q_SIGNALS:
    void changed();
    void eventsChanged(); ///< of the page; at most every 50 ms

private:
    QCoro::Task<void> start();
    void lose(const QString& reason);
    void watch();
    void send(const QString& method);

    const BrowserSurroundings m_at;
    BrowserOptions m_options;
    BrowserPage m_page;
    BrowserSurface m_surface;
    QPointer<DevToolsConnection> m_connection;
    QString m_status;
    QString m_error;
    QString m_wanted; ///< the address to open once the browser runs
    QString m_browser; ///< its name and version
    bool m_isConnecting = false;
    bool m_isHanging = false;
    bool m_isAsked = false; ///< a check is pending
    std::unique_ptr<Timer> m_watch;
    std::unique_ptr<Timer> m_evidenceLimit;
    Coalescer m_tell;
    Coalescer m_tellEvents;
    std::unique_ptr<ChromiumStart> m_start;
};

}
