#pragma once

namespace corvane {

/// The main function of the process that reads untrusted files: it answers the orders on its standard input, a socket,
/// until that closes. Returns the exit code.
int runDecodeChild();

}
