#pragma once

#include <QString>

namespace corvane {

/// The Node that runs engines on this machine; the set-up sees to it that there is one, so a test fails without.
QString enginesNode();

}
