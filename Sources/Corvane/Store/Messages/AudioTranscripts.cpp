#include "Store/Messages/AudioTranscripts.h"

#include "Store/Core/Workspaces.h"

namespace corvane {

bool storeAudioTranscript(LocalDB& db, const AudioTranscript& transcript)
{
    const qint64 now = db.nowMs();
    const auto path = transcript.audioPath.isEmpty() ? std::nullopt : std::optional(transcript.audioPath);
    return db.run(R"(INSERT INTO audio_transcript
  (message_id, workspace_id, audio_path, transcript, model, created_at, updated_at)
VALUES(?,?,?,?,?,?,?)
ON CONFLICT(message_id) DO UPDATE SET
  audio_path=COALESCE(excluded.audio_path, audio_transcript.audio_path),
  transcript=excluded.transcript,
  model=excluded.model,
  updated_at=excluded.updated_at;)",
        { transcript.messageId, activeWorkspaceId(db), path, transcript.transcript, transcript.model, now, now });
}

}
