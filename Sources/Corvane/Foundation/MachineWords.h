#pragma once

#include "Foundation/Literals.h"

#include <QString>

namespace corvane {

/// The words for this machine and its services. Sentences that name one of these take the word from here, so that a
/// port to another platform changes one place.
namespace machineWords {
inline const QString thisMachine = u"this computer"_s;
inline const QString machine = u"computer"_s;
inline const QString localModel = u"a model on this computer"_s;
inline const QString localSpeech = u"speech recognition on this computer"_s;
inline const QString localTranslation = u"translation on this computer"_s;
inline const QString powerSaving = u"Power saver"_s;
}

/// The same word at the start of a sentence.
QString atStart(const QString& words);

}
