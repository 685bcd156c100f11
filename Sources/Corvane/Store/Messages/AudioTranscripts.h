#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// The transcript of a voice note.
struct AudioTranscript {
    QString messageId;
    QString audioPath; ///< empty: unchanged
    QString transcript;
    QString model; ///< the speech model
};

/// Replaces an earlier transcript of the message. False if it cannot be written.
bool storeAudioTranscript(LocalDB& db, const AudioTranscript& transcript);

}
