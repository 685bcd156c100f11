#pragma once

#include "Terminal/Core/Modes.h"
#include "Terminal/Input/KeyEvent.h"

namespace corvane::terminal {

/// What of the terminal decides on the bytes that a key sends.
struct KeyContext {
    const Modes& modes;
    int kittyFlags = 0;
    int modifyOtherKeys = 0;
    bool eightBit = false; ///< CSI and SS3 as one byte
};

enum KittyFlag { Disambiguate = 1, EventTypes = 2, AlternateKeys = 4, AllAsEscapes = 8, AssociatedText = 16 };

/// The bytes that the program gets for the key; none if it gets nothing.
std::string encodeKey(const KeyEvent& event, const KeyContext& context);

}
