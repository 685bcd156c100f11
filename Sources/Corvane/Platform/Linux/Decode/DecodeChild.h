#pragma once

namespace corvane {

/// The whole life of the process that reads strangers' files: it answers the orders that come over the socket on its
/// standard input until that closes. Returns the process's exit code.
int runDecodeChild();

}
