#pragma once

#include <QString>

namespace corvane {

/// The text with what looks like a secret masked, and trimmed. Everything that hands a transcript on passes it
/// through here; the transcript itself holds what was there.
QString redactSensitive(QString text);

}
