#pragma once

#include <QString>

namespace corvane {

/// What sentences call this machine and what is on it. A sentence that names one of these takes the word from here, so
/// that a port to another platform has one place to change.
namespace machineWords {
inline const QString thisMachine = QStringLiteral("this computer");
inline const QString machine = QStringLiteral("computer");
inline const QString localModel = QStringLiteral("a model on this computer");
inline const QString localSpeech = QStringLiteral("speech recognition on this computer");
inline const QString localTranslation = QStringLiteral("translation on this computer");
inline const QString powerSaving = QStringLiteral("Power saver");
}

/// The same word at the start of a sentence.
QString atStart(const QString& words);

}
