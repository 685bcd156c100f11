#pragma once

#include "Terminal/Input/KeyEvent.h"

#include <QKeyEvent>

namespace corvane {

/// The key as programs in a terminal are told of it; nothing where it is none of theirs.
std::optional<terminal::KeyEvent> terminalKey(const QKeyEvent& event, terminal::KeyAction action);

uint8_t terminalModifiers(Qt::KeyboardModifiers modifiers);

/// Keys that a terminal leaves to the window, such as those that change the hub or the tab. It takes all others,
/// also those that are shortcuts elsewhere.
bool belongsToWindow(const QKeyEvent& event);

}
