#pragma once

#include "Browser/BrowserSteps.h"
#include "Foundation/Cancellation.h"
#include "Foundation/Scheduler.h"

#include <QObject>
#include <qcoro/qcorotask.h>

namespace corvane {

class ChromiumBrowserController;

/// Replays the user's steps in a page, one after the other. Waits for elements that do not exist yet.
class BrowserPlayer : public QObject {
    Q_OBJECT
public:
    /// Both outlive it.
    BrowserPlayer(ChromiumBrowserController& browser, Scheduler& scheduler, QObject* parent);
    ~BrowserPlayer() override;

    void play(const QList<BrowserStep>& steps); ///< replaces what is being played
    void stop(); ///< and clears `words`

    bool isPlaying() const { return m_isPlaying; }
    const QString& words() const { return m_words; } ///< the progress or the result; empty before the first

Q_SIGNALS:
    void changed();

private:
    QCoro::Task<void> playAll(QList<BrowserStep> steps, CancelHandle end);
    QCoro::Task<QString> playOne(BrowserStep step, CancelHandle end);
    QCoro::Task<bool> openPage(QString url, CancelHandle end);
    QCoro::Task<void> settle(CancelHandle end);
    QCoro::Task<QJsonValue> evaluate(QString function, QJsonArray arguments, CancelHandle end);
    QCoro::Task<QJsonObject> call(QString method, QJsonObject parameters, CancelHandle end);
    QCoro::Task<void> pause(CancelHandle end);
    void say(const QString& words);
    void finish(const QString& words);

    ChromiumBrowserController& m_browser;
    Scheduler& m_scheduler;
    CancelHandle m_end;
    std::unique_ptr<Timer> m_pause;
    QString m_words;
    bool m_isPlaying = false;
};

}
