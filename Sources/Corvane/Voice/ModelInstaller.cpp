#include "Voice/ModelInstaller.h"

#include "Foundation/Literals.h"
#include "Platform/FileDownload.h"
#include "Voice/KnownModels.h"
#include "Voice/ModelFile.h"
#include "Voice/SpeechModelStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <algorithm>
#include <unistd.h>

namespace corvane {

namespace {

constexpr Milliseconds tick { 200 };
constexpr qint64 copiedAtOnce = 1 << 20;
const QString uncheckedSuffix = u".unchecked"_s;

QString inRoot(const SpeechModelStore& store, const QString& fileName)
{
    return store.modelsRoot() + QLatin1Char('/') + fileName;
}

/// Where a model is stored until it has been checked.
QString uncheckedPath(const SpeechModelStore& store, const QString& fileName)
{
    return inRoot(store, fileName) + uncheckedSuffix;
}

Result<void> copyFile(const QString& from, const QString& to, std::atomic<qint64>& done, const std::atomic_bool& stop)
{
    QFile source(from);
    if (!QFileInfo(from).isFile() || !source.open(QIODevice::ReadOnly))
        return failure(u"The file cannot be read."_s);
    QFile target(to);
    if (!target.open(QIODevice::WriteOnly) || !target.setPermissions(QFile::ReadOwner | QFile::WriteOwner))
        return failure(u"The file cannot be copied: %1."_s.arg(target.errorString()));
    while (!source.atEnd()) {
        if (stop)
            return cancelled();
        const QByteArray bytes = source.read(copiedAtOnce);
        if (bytes.isEmpty() || target.write(bytes) != bytes.size())
            return failure(u"The file cannot be copied: %1."_s.arg(target.errorString()));
        done += bytes.size();
    }
    if (!target.flush() || ::fsync(target.handle()) != 0)
        return failure(u"The file cannot be copied: %1."_s.arg(target.errorString()));
    return {};
}

}

struct ModelInstaller::Work {
    std::atomic<qint64> done = 0;
    std::atomic_bool stop = false;
};

ModelInstaller::ModelInstaller(SpeechModelStore& store, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_scheduler(scheduler)
{
    takeUpLeftover();
}

ModelInstaller::~ModelInstaller()
{
    cancel();
    m_background.reset();
}

void ModelInstaller::takeUpLeftover()
{
    QDir root(m_store.modelsRoot());
    for (const QString& fileName : root.entryList({ u"*.bin"_s }, QDir::Files)) {
        const bool isKnown = std::ranges::any_of(
            m_store.installed(), [&](const auto& model) { return model.spec.variant == fileName; });
        if (!isKnown)
            root.rename(fileName, fileName + uncheckedSuffix);
    }
    const QStringList left = root.entryList({ QLatin1Char('*') + uncheckedSuffix }, QDir::Files);
    if (left.isEmpty())
        return;
    const QString fileName = left.first().chopped(uncheckedSuffix.size());
    begin(Step::Checking, modelName(fileName));
    check(fileName, {});
}

void ModelInstaller::download(const QUrl& url)
{
    if (isBusy())
        return;
    const QString fileName = url.fileName();
    begin(Step::Downloading, modelName(fileName));
    if (!fileName.endsWith(".bin"_L1) || fileName.startsWith(QLatin1Char('.')))
        return fail(u"The address must name a model's file, such as .../ggml-base.bin."_s);
    bring(url, fileName);
}

QCoro::Task<> ModelInstaller::bring(QUrl url, QString fileName)
{
    const QPointer<ModelInstaller> self(this);
    const QString path = uncheckedPath(m_store, fileName);
    const QString name = m_name;
    const auto onProgress = [self](DownloadProgress progress) {
        if (!self)
            return;
        self->m_doneBytes = progress.received;
        self->m_totalBytes = progress.total;
    };
    const Result<void> brought = co_await downloadFile(url, path, onProgress, m_cancel);
    if (!self || m_step != Step::Downloading)
        co_return;
    if (!brought) {
        fail(u"Preparing %1 failed: %2. Check the network and try again."_s.arg(name, brought.error().message));
        co_return;
    }
    check(fileName, {});
}

void ModelInstaller::add(const QString& filePath)
{
    if (isBusy())
        return;
    const QFileInfo file(filePath);
    begin(Step::Copying, modelName(file.fileName()));
    m_totalBytes = file.size();
    check(file.fileName(), filePath);
}

/// Reads the whole model on another thread, after copying `source` if there is one.
void ModelInstaller::check(const QString& fileName, const QString& source)
{
    const QString unchecked = uncheckedPath(m_store, fileName);
    if (source.isEmpty()) {
        m_step = Step::Checking;
        m_totalBytes = QFileInfo(unchecked).size();
        m_doneBytes = 0;
        Q_EMIT changed();
    }
    m_work = std::make_shared<Work>();
    const auto inspect
        = [work = m_work, unchecked, source, path = inRoot(m_store, fileName)]() -> Result<ModelFileFacts> {
        // A file that is not a model is not copied at all.
        if (!source.isEmpty()) {
            if (const auto facts = inspectModelFile(source, {}, work->stop); !facts)
                return facts;
            if (const auto copied = copyFile(source, unchecked, work->done, work->stop); !copied) {
                QFile::remove(unchecked);
                return std::unexpected(copied.error());
            }
        }
        auto facts = inspectModelFile(unchecked, [&work](qint64 bytes) { work->done = bytes; }, work->stop);
        if (!facts || (QFile::remove(path), !QFile::rename(unchecked, path))) {
            QFile::remove(unchecked);
            if (facts)
                return failure(u"The model cannot be moved into its folder."_s);
        }
        return facts;
    };
    m_background->run<Result<ModelFileFacts>>(
        inspect, [this, work = m_work, fileName](const Result<ModelFileFacts>& facts) {
            if (work != m_work || work->stop)
                return;
            if (!facts)
                return fail(facts.error().message);
            SpeechInstalledModel model;
            model.spec.repository = u"whisper.cpp"_s;
            model.spec.variant = fileName;
            model.spec.revision = facts->sha256;
            model.spec.displayName = modelName(fileName);
            model.spec.approximateSizeGB = double(facts->sizeBytes) / 1e9;
            model.cachePath = m_store.modelsRoot();
            model.localPath = inRoot(m_store, fileName);
            model.installedAt = QDateTime::fromMSecsSinceEpoch(m_scheduler.nowMs());
            model.sizeBytes = facts->sizeBytes;
            m_store.add(model);
            begin(Step::Idle, {});
            Q_EMIT installed(model.spec.id());
        });
}

void ModelInstaller::begin(Step step, const QString& name)
{
    m_step = step;
    m_name = name;
    m_doneBytes = 0;
    m_totalBytes = 0;
    m_errorText.clear();
    m_cancel = {};
    m_work.reset();
    m_ticks = isBusy() ? m_scheduler.every(tick,
                             [this] {
                                 if (m_work)
                                     m_doneBytes = m_work->done;
                                 Q_EMIT changed();
                             })
                       : nullptr;
    Q_EMIT changed();
}

void ModelInstaller::fail(const QString& words)
{
    begin(Step::Failed, m_name);
    m_errorText = words;
    Q_EMIT changed();
}

void ModelInstaller::cancel()
{
    if (!isBusy())
        return;
    const CancelHandle running = m_cancel;
    if (m_work)
        m_work->stop = true;
    begin(Step::Idle, {});
    running.cancel();
}

void ModelInstaller::dismissError()
{
    if (m_step == Step::Failed)
        begin(Step::Idle, {});
}

}
