#include "Voice/SpeechModelStore.h"

#include "Foundation/Literals.h"
#include "Foundation/Scheduler.h"
#include "Foundation/UserDefaults.h"
#include "Platform/PrivateFile.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>

namespace corvane {

namespace {

const QString preferredKey = QString::fromLatin1(SpeechModelStore::preferredModelKey);

QString listPath(const QString& root)
{
    return root + u"/models.json"_s;
}

}

SpeechModelStore::SpeechModelStore(
    const QString& applicationSupport, UserDefaults& defaults, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_root(applicationSupport + u"/Models/Speech"_s)
    , m_defaults(defaults)
    , m_scheduler(scheduler)
{
    refresh();
}

void SpeechModelStore::refresh()
{
    QDir().mkpath(m_root);
    QList<SpeechInstalledModel> installed;
    QFile list(listPath(m_root));
    if (list.open(QIODevice::ReadOnly)) {
        const QJsonArray stored = QJsonDocument::fromJson(list.readAll()).array();
        for (const QJsonValue& value : stored) {
            auto model = decodedInstalledModel(value.toObject());
            if (model && QFile(model->localPath).size() == model->sizeBytes && model->sizeBytes > 0)
                installed.append(*model);
        }
    }
    if (m_installed == installed)
        return;
    m_installed = installed;
    Q_EMIT changed();
}

SpeechModelSpec SpeechModelStore::preferredModel() const
{
    const QString wanted = m_defaults.text(preferredKey).value_or(QString());
    const auto found = std::ranges::find(m_installed, wanted, [](const auto& model) { return model.spec.id(); });
    if (found != m_installed.end())
        return found->spec;
    return m_installed.isEmpty() || wanted == basicRecogniserSpec().id() ? basicRecogniserSpec()
                                                                         : m_installed.first().spec;
}

void SpeechModelStore::prefer(const SpeechModelSpec& spec)
{
    m_defaults.setText(preferredKey, spec.id());
    Q_EMIT changed();
}

std::optional<SpeechInstalledModel> SpeechModelStore::installedModel(const SpeechModelSpec& spec) const
{
    const auto found = std::ranges::find(m_installed, spec.id(), [](const auto& model) { return model.spec.id(); });
    return found == m_installed.end() ? std::nullopt : std::optional(*found);
}

void SpeechModelStore::markUsed(const SpeechModelSpec& spec)
{
    const auto found = std::ranges::find(m_installed, spec.id(), [](const auto& model) { return model.spec.id(); });
    if (found == m_installed.end())
        return;
    found->lastUsedAt = QDateTime::fromMSecsSinceEpoch(m_scheduler.nowMs());
    save();
    Q_EMIT changed();
}

void SpeechModelStore::add(const SpeechInstalledModel& model)
{
    m_installed.removeIf([&model](const auto& each) { return each.spec.id() == model.spec.id(); });
    m_installed.append(model);
    save();
    prefer(model.spec);
}

void SpeechModelStore::remove(const SpeechModelSpec& spec)
{
    const auto model = installedModel(spec);
    if (!model)
        return;
    QFile::remove(model->localPath);
    m_installed.removeIf([&spec](const auto& each) { return each.spec.id() == spec.id(); });
    save();
    Q_EMIT changed();
}

void SpeechModelStore::save()
{
    QJsonArray stored;
    for (const SpeechInstalledModel& model : std::as_const(m_installed))
        stored.append(encoded(model));
    writePrivateFile(listPath(m_root), QJsonDocument(stored).toJson(), Outlives::Program);
}

}
