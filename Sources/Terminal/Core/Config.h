#pragma once

#include <cstddef>
#include <string_view>

namespace corvane::terminal {

/// In cells, and what one cell measures in pixels.
struct Size {
    int columns = 80;
    int rows = 24;
    int cellWidth = 10;
    int cellHeight = 20;

    static constexpr int maxColumns = 4096;
    static constexpr int maxRows = 2048;
    /// The nearest size that a terminal can have.
    Size clamped() const;
    friend bool operator==(const Size&, const Size&) = default;
};

/// What the user or the host decides, not the program inside.
struct Config {
    size_t scrollbackLines = 10'000;
    size_t scrollbackBytes = 256u << 20;
    size_t imageBytes = 320u << 20;
    int vtLevel = 525; ///< 100 to 525: what DA and DECRQSS answer at start
    int checksumExtension = 0; ///< the value of XTCHECKSUM at start
    bool ambiguousWide = false;
    bool backgroundErase = true; ///< erasing leaves the background colour
    bool allowWindowOps = false;
    bool allowTitleReport = false;
    bool allowClipboardWrite = true; ///< handed to the listener, which asks; reads are always refused
    bool allowImageFiles = true; ///< images may be read from files and shared memory
    bool darkColors = true; ///< what the colour-scheme report answers

    /// By the option's name, such as "vt-level"; "ambiguous" takes a width, 1 or 2. False if name or value is not
    /// known.
    bool set(std::string_view name, std::string_view value);
    /// "default", "xterm" (what xterm answers and permits) or "strict" (nothing that asks the user or the machine).
    bool useProfile(std::string_view name);
};

}
