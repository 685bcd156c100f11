#pragma once

#include "Foundation/Literals.h"
#include "Voice/SpeechTranscript.h"

namespace corvane {

/// A contiguous stretch of a call spoken by one side, in milliseconds since its start.
struct CallTurn {
    qint64 startMs = 0;
    qint64 endMs = 0;
    QString speaker; ///< "Me" or "Meeting audio"
    QString text;

    bool operator==(const CallTurn&) const = default;
};

/// Both sides merged in time order. Echo of the loudspeakers in the microphone is removed from "Me".
QList<CallTurn> mergedTurns(const QList<SpeechSegment>& microphone, const QList<SpeechSegment>& meeting);

/// One turn per segment of one side.
QList<CallTurn> turnsOf(const QList<SpeechSegment>& segments, const QString& speaker);

/// One line per turn: "Me: ..." or "Meeting audio: ...".
QString textOf(const QList<CallTurn>& turns);

inline const QString meSpeaker = u"Me"_s;
inline const QString meetingSpeaker = u"Meeting audio"_s;

/// In "segments.json" beside the sound of a call. False if it can't be written.
bool writeTurns(const QString& callFolder, const QList<CallTurn>& turns);
QList<CallTurn> readTurns(const QString& callFolder); ///< empty if there are none

/// As subtitles: WebVTT.
QString webVtt(const QList<CallTurn>& turns);

}
