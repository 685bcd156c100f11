#pragma once

#include "Terminal/Input/KeyEvent.h"

#include <QKeyEvent>

namespace corvane {

/// The key as reported to a program in a terminal; nothing if it is not reported.
std::optional<terminal::KeyEvent> terminalKey(const QKeyEvent& event, terminal::KeyAction action);

uint8_t terminalModifiers(Qt::KeyboardModifiers modifiers);

/// Keys that a terminal leaves to the window, such as those that switch the hub or the tab. It takes all others, even
/// if they are shortcuts elsewhere.
bool belongsToWindow(const QKeyEvent& event);

}
