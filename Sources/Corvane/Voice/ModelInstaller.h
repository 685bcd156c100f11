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

/// Installs a model from the web or from a local file, one at a time. Incomplete models are refused, and the store
/// stays unchanged.
class ModelInstaller : public QObject {
    Q_OBJECT
public:
    enum class Step { Idle, Downloading, Copying, Checking, Failed };

    /// Both outlive the installer. A model that an earlier run downloaded but could not register is checked now.
    ModelInstaller(SpeechModelStore& store, Scheduler& scheduler, QObject* parent = nullptr);
    ~ModelInstaller() override; ///< cancels; a download can be resumed later

    Step step() const { return m_step; }
    bool isBusy() const { return m_step != Step::Idle && m_step != Step::Failed; }
    const QString& name() const { return m_name; } ///< of the model being installed
    qint64 doneBytes() const { return m_doneBytes; }
    qint64 totalBytes() const { return m_totalBytes; } ///< 0: unknown
    const QString& errorText() const { return m_errorText; } ///< of the latest failure

    // While one runs, other calls do nothing.
    void download(const QUrl& url); ///< resumes an earlier download of the address
    void add(const QString& filePath); ///< copies it; the file is not changed

    void cancel();
    void dismissError();

Q_SIGNALS:
    void changed(); ///< step or progress
    void installed(const QString& modelId);

private:
    struct Work; ///< shared with its thread

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
