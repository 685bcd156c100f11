#pragma once

namespace corvane {

/// Whether people other than this user have an account with a shell on this machine.
bool othersMayLogIn();

}
