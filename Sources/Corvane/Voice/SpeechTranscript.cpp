#include "Voice/SpeechTranscript.h"

#include "Foundation/Literals.h"
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
    const QString unavailable = u"Transcription unavailable."_s;
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
        return u"The microphone is not allowed. Allow Corvane to use it in the privacy settings of your "
               "desktop."_s;
    case Kind::EmptyTranscript:
        return u"No speech was detected in that audio."_s;
    case Kind::Cancelled:
        break;
    }
    return u"The transcription was cancelled."_s;
}

QString segmentsPath(const QString& audioPath)
{
    return audioPath + u".segments.json"_s;
}

bool writeSegments(const QString& audioPath, const SpeechTranscriptResult& result)
{
    QJsonArray segments;
    for (const SpeechSegment& segment : result.segments) {
        segments.append(QJsonObject {
            { u"startMs"_s, segment.startMs }, { u"endMs"_s, segment.endMs }, { u"text"_s, segment.text } });
    }
    const QJsonObject whole { { u"model"_s, encoded(result.model) }, { u"segments"_s, segments } };
    return writePrivateFile(
        segmentsPath(audioPath), QJsonDocument(whole).toJson(QJsonDocument::Compact), Outlives::Program);
}

QList<SpeechSegment> readSegments(const QString& audioPath)
{
    QFile file(segmentsPath(audioPath));
    if (!file.open(QIODevice::ReadOnly) || file.size() > largestFile)
        return {};
    QList<SpeechSegment> segments;
    const QJsonObject whole = QJsonDocument::fromJson(file.readAll()).object();
    const QJsonArray stored = whole[u"segments"_s].toArray();
    for (const QJsonValue& value : stored) {
        const QJsonObject segment = value.toObject();
        segments.append(
            { segment[u"startMs"_s].toInteger(), segment[u"endMs"_s].toInteger(), segment[u"text"_s].toString() });
    }
    return segments;
}

}
