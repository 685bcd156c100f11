#pragma once

#include "Foundation/BackgroundQueue.h"
#include "Foundation/Cancellation.h"
#include "Foundation/Scheduler.h"
#include "Voice/SpeechModelSpec.h"

#include <QObject>
#include <QUrl>
#include <atomic>
#include <qcoro/qcorotask.h>

namespace corvane {

class SpeechModelStore;

/// Brings a model into the store, from the web or from a file that is there: one at a time. What is not a whole model
/// is refused, and the store is as it was.
class ModelInstaller : public QObject {
    Q_OBJECT
public:
    enum class Step { Idle, Downloading, Copying, Checking, Failed };

    /// Both outlive the installer. A model that an earlier run of the program brought and did not live to enter into
    /// the store is checked now.
    ModelInstaller(SpeechModelStore& store, Scheduler& scheduler, QObject* parent = nullptr);
    ~ModelInstaller() override; ///< ends what runs; a download can be taken up again

    Step step() const { return m_step; }
    bool isBusy() const { return m_step != Step::Idle && m_step != Step::Failed; }
    const QString& name() const { return m_name; } ///< of the model that is brought
    qint64 doneBytes() const { return m_doneBytes; }
    qint64 totalBytes() const { return m_totalBytes; } ///< 0: not known
    const QString& errorText() const { return m_errorText; } ///< of the latest failure

    // While one runs, another does nothing.
    void download(const QUrl& url); ///< goes on where an earlier one of the address ended
    void add(const QString& filePath); ///< a copy; the file stays as it is

    void cancel();
    void dismissError();

Q_SIGNALS:
    void changed(); ///< step or progress
    void installed(const QString& modelId);

private:
    struct Work; ///< shared with the thread that does it

    QCoro::Task<> bring(QUrl url, QString fileName);
    void takeUpLeftover();
    void check(const QString& fileName, const QString& source);
    void begin(Step step, const QString& name);
    void fail(const QString& words);

    SpeechModelStore& m_store;
    Scheduler& m_scheduler;
    Step m_step = Step::Idle;
    QString m_name;
    qint64 m_doneBytes = 0;
    qint64 m_totalBytes = 0;
    QString m_errorText;
    CancelHandle m_cancel;
    std::shared_ptr<Work> m_work;
    std::unique_ptr<Timer> m_ticks;
    std::unique_ptr<BackgroundQueue> m_background = std::make_unique<BackgroundQueue>();
};

}
