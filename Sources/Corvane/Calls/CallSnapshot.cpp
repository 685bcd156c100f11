#include "Calls/CallSnapshot.h"

#include "Calls/CallRecorder.h"
#include "Calls/RecordedCalls.h"

#include <QFileInfo>

namespace corvane {

namespace {

QString existing(const QString& path)
{
    return !path.isEmpty() && QFileInfo(path).isFile() ? path : QString();
}

}

CallSnapshot readCall(CallRecorder& recorder, const QString& id)
{
    const auto found = fetchCall(recorder.recorded().db(), id);
    if (!found)
        return {};
    CallSnapshot call;
    call.details = *found;
    call.state = callState(found->processingStatus, found->processingError, recorder, id);
    call.isRecordedNow = recorder.records(id) || recorder.isSaving(id);
    call.isBusy = recorder.processor().isProcessing(id);
    call.folder = QFileInfo(found->micPath.isEmpty() ? found->systemPath : found->micPath).path();
    if (!call.isRecordedNow) {
        call.microphonePath = existing(found->micPath);
        call.systemPath = existing(found->systemPath);
    }
    call.turns = readTurns(call.folder);
    if (call.turns.isEmpty() && !found->transcript.isEmpty())
        call.turns
            = { { 0, found->durationMs, call.systemPath.isEmpty() ? meSpeaker : meetingSpeaker, found->transcript } };
    call.waveform = readWaveform(call.folder);
    call.notes = readCallNotes(call.folder);
    return call;
}

}
