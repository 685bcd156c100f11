#include "Voice/SpeechModelSpec.h"

namespace corvane {

QJsonObject encoded(const SpeechModelSpec& spec)
{
    return {
        { QStringLiteral("repository"), spec.repository },
        { QStringLiteral("revision"), spec.revision },
        { QStringLiteral("variant"), spec.variant },
        { QStringLiteral("displayName"), spec.displayName },
        { QStringLiteral("role"), spec.role },
        { QStringLiteral("approximateSizeGB"), spec.approximateSizeGB },
        { QStringLiteral("isDefault"), spec.isDefault },
        { QStringLiteral("isSmoke"), spec.isSmoke },
    };
}

std::optional<SpeechModelSpec> decodedSpeechModelSpec(const QJsonObject& object)
{
    SpeechModelSpec spec;
    spec.repository = object[QStringLiteral("repository")].toString();
    spec.revision = object[QStringLiteral("revision")].toString();
    spec.variant = object[QStringLiteral("variant")].toString();
    spec.displayName = object[QStringLiteral("displayName")].toString(spec.variant);
    spec.role = object[QStringLiteral("role")].toString(spec.role);
    spec.approximateSizeGB = object[QStringLiteral("approximateSizeGB")].toDouble();
    spec.isDefault = object[QStringLiteral("isDefault")].toBool(true);
    spec.isSmoke = object[QStringLiteral("isSmoke")].toBool();
    if (spec.repository.isEmpty() || spec.variant.isEmpty())
        return std::nullopt;
    return spec;
}

QString transcriptModel(const SpeechModelSpec& spec)
{
    return spec.id() + QLatin1Char('@') + spec.revision.left(10);
}

SpeechModelSpec basicRecogniserSpec()
{
    SpeechModelSpec spec;
    spec.repository = QStringLiteral("pocketsphinx");
    spec.revision = QStringLiteral("5prealpha");
    spec.variant = QStringLiteral("en-us");
    spec.displayName = QStringLiteral("Basic English recogniser");
    return spec;
}

QJsonObject encoded(const SpeechInstalledModel& model)
{
    QJsonObject object {
        { QStringLiteral("spec"), encoded(model.spec) },
        { QStringLiteral("cachePath"), model.cachePath },
        { QStringLiteral("localPath"), model.localPath },
        { QStringLiteral("installedAt"), model.installedAt.toString(Qt::ISODateWithMs) },
        { QStringLiteral("sizeBytes"), model.sizeBytes },
    };
    if (model.lastUsedAt)
        object.insert(QStringLiteral("lastUsedAt"), model.lastUsedAt->toString(Qt::ISODateWithMs));
    return object;
}

std::optional<SpeechInstalledModel> decodedInstalledModel(const QJsonObject& object)
{
    const auto spec = decodedSpeechModelSpec(object[QStringLiteral("spec")].toObject());
    if (!spec)
        return std::nullopt;
    const auto date = [&object](const QString& key) {
        return QDateTime::fromString(object[key].toString(), Qt::ISODateWithMs);
    };
    SpeechInstalledModel model { .spec = *spec,
        .cachePath = object[QStringLiteral("cachePath")].toString(),
        .localPath = object[QStringLiteral("localPath")].toString(),
        .installedAt = date(QStringLiteral("installedAt")),
        .sizeBytes = object[QStringLiteral("sizeBytes")].toInteger(),
        .lastUsedAt = std::nullopt };
    if (const QDateTime used = date(QStringLiteral("lastUsedAt")); used.isValid())
        model.lastUsedAt = used;
    return model;
}

}
