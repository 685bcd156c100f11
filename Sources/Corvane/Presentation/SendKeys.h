#pragma once

#include <QString>

namespace corvane {

class UserDefaults;

/// Whether Return sends what is typed, not only Ctrl+Return; off where nobody said so.
bool returnSends(const UserDefaults& defaults);
void setReturnSends(UserDefaults& defaults, bool on);

/// The shortest keys that send, such as "Ctrl+Return".
QString sendKeys(const UserDefaults& defaults);

}
