#pragma once

#include <QByteArray>

namespace corvane {

/// All processes of this machine, as `ps` lists them: pid, name and command line, one line each. Blocks; empty if it
/// cannot be run.
QByteArray processTable();

}
