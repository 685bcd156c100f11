#pragma once

#include "Foundation/Literals.h"

#include <QString>

namespace corvane {

/// The name under which the desktop and the session bus know the program; its desktop entry is
/// "{applicationId}.desktop".
inline const QString applicationId = u"com.nimb.corvane"_s;

}
