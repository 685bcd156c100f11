#pragma once

#include "Terminal/Core/Modes.h"
#include "Terminal/Input/KeyEvent.h"

namespace corvane::terminal {

/// The terminal state that key encoding depends on.
struct KeyContext {
    const Modes& modes;
    int kittyFlags = 0;
    int modifyOtherKeys = 0;
    bool eightBit = false; ///< CSI and SS3 as single bytes
};

enum KittyFlag { Disambiguate = 1, EventTypes = 2, AlternateKeys = 4, AllAsEscapes = 8, AssociatedText = 16 };

/// The bytes to send for the key; may be empty.
std::string encodeKey(const KeyEvent& event, const KeyContext& context);

}
