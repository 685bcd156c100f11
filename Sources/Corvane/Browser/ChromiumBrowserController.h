#pragma once

#include "Browser/BrowserEvidence.h"
#include "Browser/BrowserInput.h"
#include "Browser/BrowserPage.h"
#include "Browser/ChromiumLaunch.h"
#include "Browser/FrameDecoder.h"
#include "Foundation/Coalescer.h"

#include <qcoro/qcorotask.h>

namespace corvane {

class ChromiumStart;

/// A real Chromium without a window of its own: its page comes as pictures, and what a person does goes there as input.
/// Console problems and failed requests are gathered as they happen. Every text that it hands out is masked. Main
/// thread only.
class ChromiumBrowserController : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString status READ status NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString currentURL READ currentURL NOTIFY changed)
    Q_PROPERTY(QString lastError READ lastError NOTIFY changed)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY changed)
    Q_PROPERTY(bool isConnecting READ isConnecting NOTIFY changed)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
    Q_PROPERTY(double progress READ progress NOTIFY changed) ///< of the loading, 0 to 1
    Q_PROPERTY(bool canGoBack READ canGoBack NOTIFY changed)
    Q_PROPERTY(bool canGoForward READ canGoForward NOTIFY changed)
    Q_PROPERTY(bool hasFrame READ hasFrame NOTIFY changed)
public:
    explicit ChromiumBrowserController(const BrowserSurroundings& at, QObject* parent = nullptr);
    ~ChromiumBrowserController() override; ///< ends the browser, unless it was there before

    const QImage& frameImage() const { return m_frame; } ///< null before the first
    bool hasFrame() const { return !m_frame.isNull(); }
    const QString& status() const { return m_status; }
    QString title() const { return masked(m_page.title()); } ///< "Chromium" before there is one
    QString currentURL() const { return masked(m_page.url()); }
    QString lastError() const { return masked(m_error); }
    bool isRunning() const { return m_connection != nullptr; }
    bool isConnecting() const { return m_isConnecting; }
    bool isHanging() const { return m_isHanging; } ///< it runs, and does not answer
    bool isLoading() const { return m_page.isLoading(); }
    double progress() const { return m_page.progress(); }
    bool canGoBack() const { return m_page.canGo(-1); }
    bool canGoForward() const { return m_page.canGo(+1); }
    QString notice() const { return masked(m_page.notice()); } ///< what was refused, in words; empty for none
    QSizeF viewportSize() const { return m_viewport; } ///< in pixels of the page; empty before the first frame
    QList<BrowserConsoleEvent> consoleEvents() const;
    QList<BrowserNetworkEvent> networkEvents() const;
    QList<BrowserStep> steps() const; ///< since a page was opened by its address
    qsizetype issueCount() const { return m_page.events().console().size() + m_page.events().network().size(); }
    bool hasEvidence() const { return hasFrame() || issueCount() > 0; }
    qint64 browserPid() const; ///< of the browser that was started here; else 0
    BrowserOptions& options() { return m_options; } ///< they count at the next start
    const BrowserOptions& options() const { return m_options; }

    void open(const QString& url); ///< starts the browser where it does not run
    void adopt(DevToolsConnection* connection); ///< a page that shows nothing yet; the controller's own from now on
    void end(); ///< of a browser that was started here
    void restart(); ///< and shows the page again
    Q_INVOKABLE void back() { m_page.step(-1); }
    Q_INVOKABLE void forward() { m_page.step(+1); }
    Q_INVOKABLE void reload();
    Q_INVOKABLE void stop();
    void setMetrics(QSize size, double zoom, bool isMobile) { m_page.setMetrics(size, zoom, isMobile); }
    void find(const QString& text, bool backwards) { m_page.find(text, backwards); }
    void dismissNotice() { m_page.dismissNotice(); }

    // Input. Points are in a view of the given size, in which the frame is shown at its ratio.
    void clickBrowser(QPointF point, QSizeF view);
    void pointer(const BrowserPointer& pointer, QSizeF view);
    void key(const BrowserKey& key);
    void insertText(const QString& text); ///< as an input method commits it
    void compose(const QString& text, int cursor); ///< as an input method shows it meanwhile
    void takeSelection(bool andCut, std::function<void(const QString&)> done);

    /// All that is known now, with what stands in the page's password fields masked, too. `done` is called once, unless
    /// the controller goes before.
    void gatherEvidence(
        const QString& requestedURL, const QString& note, std::function<void(const BrowserEvidencePayload&)> done);
    QString evidenceRoot() const; ///< the folder of all projects' evidence

    /// For who plays steps. Null while the browser does not run.
    DevToolsConnection* connection() { return m_connection; }
    const BrowserPage& page() const { return m_page; }

    /// Without any secret that is known.
    QString masked(const QString& text) const;

Q_SIGNALS:
    void changed();
    void frameChanged();
    void eventsChanged();

private:
    QCoro::Task<void> start();
    void lose(const QString& reason);
    void watch();
    void send(const QString& method, const QJsonObject& parameters = {});

    const BrowserSurroundings m_at;
    BrowserOptions m_options;
    BrowserPage m_page;
    QPointer<DevToolsConnection> m_connection;
    QImage m_frame;
    QSizeF m_viewport;
    QString m_status;
    QString m_error;
    QString m_wanted; ///< to be opened once the browser runs
    QString m_browser; ///< its name and version
    bool m_isConnecting = false;
    bool m_isHanging = false;
    bool m_isAsked = false; ///< whether it is alive, and has not answered
    std::unique_ptr<Timer> m_watch;
    std::unique_ptr<Timer> m_evidenceLimit;
    Coalescer m_tell;
    Coalescer m_tellEvents;
    FrameDecoder m_decoder;
    std::unique_ptr<ChromiumStart> m_start;
};

}
