#include "Voice/SpeechModelSpec.h"

#include "Foundation/Literals.h"

namespace corvane {

QJsonObject encoded(const SpeechModelSpec& spec)
{
    return {
        { u"repository"_s, spec.repository },
        { u"revision"_s, spec.revision },
        { u"variant"_s, spec.variant },
        { u"displayName"_s, spec.displayName },
        { u"role"_s, spec.role },
        { u"approximateSizeGB"_s, spec.approximateSizeGB },
        { u"isDefault"_s, spec.isDefault },
        { u"isSmoke"_s, spec.isSmoke },
    };
}

std::optional<SpeechModelSpec> decodedSpeechModelSpec(const QJsonObject& object)
{
    SpeechModelSpec spec;
    spec.repository = object[u"repository"_s].toString();
    spec.revision = object[u"revision"_s].toString();
    spec.variant = object[u"variant"_s].toString();
    spec.displayName = object[u"displayName"_s].toString(spec.variant);
    spec.role = object[u"role"_s].toString(spec.role);
    spec.approximateSizeGB = object[u"approximateSizeGB"_s].toDouble();
    spec.isDefault = object[u"isDefault"_s].toBool(true);
    spec.isSmoke = object[u"isSmoke"_s].toBool();
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
    spec.repository = u"pocketsphinx"_s;
    spec.revision = u"5prealpha"_s;
    spec.variant = u"en-us"_s;
    spec.displayName = u"Basic English recogniser"_s;
    return spec;
}

QJsonObject encoded(const SpeechInstalledModel& model)
{
    QJsonObject object {
        { u"spec"_s, encoded(model.spec) },
        { u"cachePath"_s, model.cachePath },
        { u"localPath"_s, model.localPath },
        { u"installedAt"_s, model.installedAt.toString(Qt::ISODateWithMs) },
        { u"sizeBytes"_s, model.sizeBytes },
    };
    if (model.lastUsedAt)
        object.insert(u"lastUsedAt"_s, model.lastUsedAt->toString(Qt::ISODateWithMs));
    return object;
}

std::optional<SpeechInstalledModel> decodedInstalledModel(const QJsonObject& object)
{
    const auto spec = decodedSpeechModelSpec(object[u"spec"_s].toObject());
    if (!spec)
        return std::nullopt;
    const auto date = [&object](const QString& key) {
        return QDateTime::fromString(object[key].toString(), Qt::ISODateWithMs);
    };
    SpeechInstalledModel model { .spec = *spec,
        .cachePath = object[u"cachePath"_s].toString(),
        .localPath = object[u"localPath"_s].toString(),
        .installedAt = date(u"installedAt"_s),
        .sizeBytes = object[u"sizeBytes"_s].toInteger(),
        .lastUsedAt = std::nullopt };
    if (const QDateTime used = date(u"lastUsedAt"_s); used.isValid())
        model.lastUsedAt = used;
    return model;
}

}
