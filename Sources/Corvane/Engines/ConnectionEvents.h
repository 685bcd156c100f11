#pragma once

#include "Engines/RuntimeState.h"

#include <QJsonObject>

namespace corvane {

/// Whether events of this type speak of the engine's own connection, and of no row.
bool isConnectionEvent(const QString& type);

/// What a connection event makes of the state; one that does not fit its type changes nothing.
RuntimeState afterConnectionEvent(RuntimeState state, const QString& type, const QJsonObject& event);

/// Whether the event says that the connection stands.
bool reportsOpen(const QString& type, const QJsonObject& event);

}
