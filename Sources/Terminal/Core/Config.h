#pragma once

#include <cstddef>
#include <string_view>

namespace corvane::terminal {

/// In cells, with the size of a cell in pixels.
struct Size {
    int columns = 80;
    int rows = 24;
    int cellWidth = 10;
    int cellHeight = 20;

    static constexpr int maxColumns = 4096;
    static constexpr int maxRows = 2048;
    /// Clamped to the sizes that a terminal can have.
    Size clamped() const;
    friend bool operator==(const Size&, const Size&) = default;
};

/// Set by the user or the host, never by the program inside.
struct Config {
    size_t scrollbackLines = 10'000;
    size_t scrollbackBytes = 256u << 20;
    size_t imageBytes = 320u << 20;
    int vtLevel = 525; ///< 100 to 525: the initial level for DA and DECRQSS
    int checksumExtension = 0; ///< the initial value of XTCHECKSUM
    bool ambiguousWide = false;
    bool backgroundErase = true; ///< erased cells keep the background colour
    bool allowWindowOps = false;
    bool allowTitleReport = false;
    bool allowClipboardWrite = true; ///< passed to the listener, which asks the user; reads are always refused
    bool allowImageFiles = true; ///< images may be read from files and shared memory
    bool darkColors = true; ///< answers the colour-scheme report

    /// Sets an option by name, such as "vt-level"; "ambiguous" takes a width, 1 or 2. False if the name or value is
    /// unknown.
    bool set(std::string_view name, std::string_view value);
    /// "default", "xterm" (what xterm answers and permits) or "strict" (nothing that reaches the user or the machine).
    bool useProfile(std::string_view name);
};

}
