#pragma once

#include "Foundation/Literals.h"
#include "Voice/SpeechTranscript.h"

namespace corvane {

/// A stretch of a call that one side speaks, in milliseconds since its start.
struct CallTurn {
    qint64 startMs = 0;
    qint64 endMs = 0;
    QString speaker; ///< "Me" or "Meeting audio"
    QString text;

    bool operator==(const CallTurn&) const = default;
};

/// Both sides on one time line. What the microphone heard of the loudspeakers is left out of what "Me" says.
QList<CallTurn> mergedTurns(const QList<SpeechSegment>& microphone, const QList<SpeechSegment>& meeting);

/// The stretches of one side, each a turn.
QList<CallTurn> turnsOf(const QList<SpeechSegment>& segments, const QString& speaker);

/// A line a turn: "Me: ..." or "Meeting audio: ...".
QString textOf(const QList<CallTurn>& turns);

inline const QString meSpeaker = u"Me"_s;
inline const QString meetingSpeaker = u"Meeting audio"_s;

/// In "segments.json" beside the sound of a call. False where it can't be written.
bool writeTurns(const QString& callFolder, const QList<CallTurn>& turns);
QList<CallTurn> readTurns(const QString& callFolder); ///< empty where there are none

/// As subtitles: WebVTT.
QString webVtt(const QList<CallTurn>& turns);

}
