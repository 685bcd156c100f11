#pragma once

#include <QByteArray>

namespace corvane {

/// Every process of this machine, as `ps` lists them: number, name and command line, one line each. Waits for it; empty
/// where it cannot be run.
QByteArray processTable();

}
