#pragma once

#include "Engines/RuntimeState.h"

#include <QJsonObject>

namespace corvane {

/// Whether events of this type are about the engine's connection, not about rows.
bool isConnectionEvent(const QString& type);

/// The state after a connection event; a malformed event changes nothing.
RuntimeState afterConnectionEvent(RuntimeState state, const QString& type, const QJsonObject& event);

/// Whether the event means that the connection is up.
bool reportsOpen(const QString& type, const QJsonObject& event);

}
