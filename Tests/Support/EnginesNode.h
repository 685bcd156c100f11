#pragma once

#include <QString>

namespace corvane {

/// The Node that runs engines on this machine. The setup ensures that there is one, so a test fails without it.
QString enginesNode();

}
