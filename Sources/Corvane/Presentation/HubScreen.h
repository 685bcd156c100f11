#pragma once

#include "Presentation/Commands.h"

namespace corvane {

/// What a room provides for its hub.
struct HubScreen {
    QObject* screen = nullptr; ///< the `screen` of its page; lives as long as the program
    QList<Command> commands = {};
};

}
