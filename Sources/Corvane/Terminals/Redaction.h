#pragma once

#include <QString>

namespace corvane {

/// The text trimmed and with probable secrets masked. Everything that passes a transcript on uses it; the transcript
/// itself is complete.
QString redactSensitive(QString text);

}
