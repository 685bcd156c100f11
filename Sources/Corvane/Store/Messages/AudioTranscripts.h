#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// The text of a voice note.
struct AudioTranscript {
    QString messageId;
    QString audioPath; ///< empty: as it was
    QString transcript;
    QString model; ///< what made it
};

/// In place of an earlier transcript of the message. False where it cannot be written.
bool storeAudioTranscript(LocalDB& db, const AudioTranscript& transcript);

}
