#pragma once

#include "Calls/CallNotes.h"
#include "Calls/CallRows.h"
#include "Calls/CallWaveform.h"

namespace corvane {

/// A recorded call with its files, as last read. Without an id, none.
struct CallSnapshot {
    CallDetails details;
    CallState state;
    QString folder; ///< of its files
    QString microphonePath; ///< only if the file exists and is finalised, as the next
    QString systemPath;
    QList<CallTurn> turns;
    CallWaveform waveform;
    CallNotes notes;
    bool isRecordedNow = false; ///< or its files are being finalised
    bool isBusy = false; ///< transcribed or summarized

    bool exists() const { return !details.id.isEmpty(); }
    bool hasSound() const { return !microphonePath.isEmpty() || !systemPath.isEmpty(); }
};

CallSnapshot readCall(CallRecorder& recorder, const QString& id);

}
