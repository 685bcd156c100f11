#pragma once

#include <QString>

namespace corvane {

class UserDefaults;

/// Whether Return sends, and not only Ctrl+Return; off by default.
bool returnSends(const UserDefaults& defaults);
void setReturnSends(UserDefaults& defaults, bool on);

/// The simplest keys that send, such as "Ctrl+Return".
QString sendKeys(const UserDefaults& defaults);

}
