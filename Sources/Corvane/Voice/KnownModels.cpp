#include "Voice/KnownModels.h"

#include "Foundation/Literals.h"

#include <algorithm>

namespace corvane {

const QList<KnownModel>& knownModels()
{
    const auto named = [](const char* id, const char* name, qint64 sizeMiB, const char* note) {
        const QString text = QString::fromLatin1(id);
        return KnownModel { QString::fromLatin1(name), u"ggml-%1.bin"_s.arg(text), sizeMiB, text.endsWith(".en"_L1),
            QString::fromLatin1(note) };
    };
    static const QList<KnownModel> models {
        named("tiny", "Tiny", 75, "Fastest"),
        named("tiny.en", "Tiny, English", 75, "Fastest"),
        named("base", "Base", 142, "A good start"),
        named("base.en", "Base, English", 142, "A good start"),
        named("small", "Small", 466, "Better, about three times slower than Base"),
        named("small.en", "Small, English", 466, "Better, about three times slower than Base"),
        named("medium", "Medium", 1533, "Needs a fast computer"),
        named("large-v3-turbo-q5_0", "Large turbo, compressed", 547, "Close to the best, needs a fast computer"),
        named("large-v3-turbo", "Large turbo", 1620, "Close to the best, needs a fast computer"),
        named("large-v3", "Large", 3095, "Best and slowest"),
    };
    return models;
}

QUrl publishedAt(const KnownModel& model)
{
    return QUrl(u"https://huggingface.co/ggerganov/whisper.cpp/resolve/main/"_s + model.fileName);
}

QString modelName(const QString& fileName)
{
    const auto known = std::ranges::find(knownModels(), fileName, &KnownModel::fileName);
    return known == knownModels().end() ? fileName : u"Whisper %1"_s.arg(known->name);
}

}
