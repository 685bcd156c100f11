#pragma once

#include "Browser/BrowserSteps.h"
#include "Foundation/Cancellation.h"
#include "Foundation/Scheduler.h"

#include <QObject>
#include <qcoro/qcorotask.h>

namespace corvane {

class ChromiumBrowserController;

/// Does again what a person did in a page, one step after the other. An element that is not there yet is waited for.
class BrowserPlayer : public QObject {
    Q_OBJECT
public:
    /// Both outlive it.
    BrowserPlayer(ChromiumBrowserController& browser, Scheduler& scheduler, QObject* parent);
    ~BrowserPlayer() override;

    void play(const QList<BrowserStep>& steps); ///< in place of what is being played
    void stop(); ///< and forgets the words

    bool isPlaying() const { return m_isPlaying; }
    const QString& words() const { return m_words; } ///< what is being done, or how it ended; empty before

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
