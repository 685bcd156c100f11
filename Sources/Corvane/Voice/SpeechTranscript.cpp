#include "Voice/SpeechTranscript.h"

#include "Platform/PrivateFile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

namespace corvane {

namespace {

constexpr qint64 largestFile = 64 * 1024 * 1024;

}

QString describe(const SpeechTranscriberError& error)
{
    using Kind = SpeechTranscriberError::Kind;
    const QString unavailable = QStringLiteral("Transcription unavailable.");
    switch (error.kind) {
    case Kind::Stopped: {
        LocalAIAvailabilitySnapshot snapshot;
        snapshot.stopCondition = error.condition;
        return snapshot.statusText();
    }
    case Kind::MissingModel:
        return unavailable;
    case Kind::Unavailable:
        return error.words.isEmpty() ? unavailable : error.words;
    case Kind::MissingPermission:
        return QStringLiteral("The microphone is not allowed. Allow Corvane to use it in the privacy settings of your "
                              "desktop.");
    case Kind::EmptyTranscript:
        return QStringLiteral("No speech was detected in that audio.");
    case Kind::Cancelled:
        break;
    }
    return QStringLiteral("The transcription was cancelled.");
}

QString segmentsPath(const QString& audioPath)
{
    return audioPath + QStringLiteral(".segments.json");
}

bool writeSegments(const QString& audioPath, const SpeechTranscriptResult& result)
{
    QJsonArray segments;
    for (const SpeechSegment& segment : result.segments) {
        segments.append(QJsonObject { { QStringLiteral("startMs"), segment.startMs },
            { QStringLiteral("endMs"), segment.endMs }, { QStringLiteral("text"), segment.text } });
    }
    const QJsonObject whole { { QStringLiteral("model"), encoded(result.model) },
        { QStringLiteral("segments"), segments } };
    return writePrivateFile(segmentsPath(audioPath), QJsonDocument(whole).toJson(QJsonDocument::Compact));
}

QList<SpeechSegment> readSegments(const QString& audioPath)
{
    QFile file(segmentsPath(audioPath));
    if (!file.open(QIODevice::ReadOnly) || file.size() > largestFile)
        return {};
    QList<SpeechSegment> segments;
    const QJsonObject whole = QJsonDocument::fromJson(file.readAll()).object();
    const QJsonArray stored = whole[QStringLiteral("segments")].toArray();
    for (const QJsonValue& value : stored) {
        const QJsonObject segment = value.toObject();
        segments.append({ segment[QStringLiteral("startMs")].toInteger(), segment[QStringLiteral("endMs")].toInteger(),
            segment[QStringLiteral("text")].toString() });
    }
    return segments;
}

}
