#pragma once

#include "Browser/BrowserEvents.h"
#include "Browser/BrowserSteps.h"
#include "Browser/DevToolsConnection.h"
#include "Foundation/Literals.h"
#include "Foundation/Scheduler.h"

#include <QPointer>
#include <QSizeF>

namespace corvane {

/// The state of the page that is shown, as the protocol reports it. Texts are unmasked. Dialogs, downloads and file
/// choosers are refused here, since no frame shows them.
class BrowserPage : public QObject {
    Q_OBJECT
public:
    /// The scheduler outlives it.
    BrowserPage(Scheduler& scheduler, QObject* parent);

    void attach(DevToolsConnection* connection); ///< to a page without other listeners
    void setMetrics(QSize size, double zoom, bool isMobile); ///< size in pixels of the frame
    void open(const QString& url); ///< once the browser reports on the page
    void step(int by); ///< through the history
    void find(const QString& text, bool backwards);

    const QString& url() const { return m_url; }
    const QString& title() const { return m_title; }
    void setTitle(const QString& title) { m_title = title; }
    bool isLoading() const { return m_isLoading; }
    bool isLeaving() const { return m_isLeaving; } ///< another page was requested and has not replaced this one yet
    bool hasLoaded() const { return m_hasLoaded; } ///< since the last `open`
    double progress() const; ///< of loading, from 0 to 1
    bool canGo(int by) const;
    QString notice() const; ///< what was refused, for the user; empty for nothing
    void dismissNotice();
    const BrowserEvents& events() const { return m_events; }
    BrowserSteps& steps() { return m_steps; }
    const BrowserSteps& steps() const { return m_steps; }
    void forget(); ///< clears events and steps

Q_SIGNALS:
    void changed();
    void eventsChanged();
    void loaded();
    void frame(const QByteArray& base64Jpeg, QSizeF viewport);
    void crashed();
    void valueAsked(const QJsonObject& report, int context); ///< by a list or a field, see `pageScript`
    void cursorChanged(const QString& css); ///< under the pointer

private:
    void take(const QString& method, const QJsonObject& parameters);
    void takeFrame(const QJsonObject& parameters);
    void takeNavigation(const QJsonObject& frame);
    void takeLoading(const QString& method, const QJsonObject& parameters);
    bool refuse(const QString& method, const QJsonObject& parameters);
    void readTitle();
    void navigate();
    void takeReport(const QJsonObject& report, int context);
    void takeHistory(const QJsonObject& history);
    void readHistory();
    void askForHistory();
    void sendMetrics();

    Scheduler& m_scheduler;
    QPointer<DevToolsConnection> m_connection;
    BrowserEvents m_events;
    BrowserSteps m_steps;
    QString m_url = u"about:blank"_s;
    QString m_title = u"Chromium"_s;
    QString m_wanted; ///< the address opened last
    QString m_mainFrame;
    QSize m_size;
    double m_zoom = 1;
    bool m_isMobile = false;
    bool m_isLoading = false;
    bool m_isLeaving = false;
    bool m_hasLoaded = false;
    bool m_isReported = false; ///< the browser has confirmed everything that `attach` requests
    bool m_isOpening = false; ///< what is loaded still belongs to the previous page
    int m_requests = 0; ///< since loading started
    int m_answered = 0;
    QList<int> m_history; ///< the browser's ids of its entries
    int m_historyIndex = 0;
    int m_historyLooks = 0; ///< since the last navigation
    int m_step = 0; ///< pending until the history is known
    std::unique_ptr<Timer> m_historyLook;
    int m_dialogs = 0;
    int m_downloads = 0;
    int m_fileChoosers = 0;
    QString m_said; ///< another notice
};

}
