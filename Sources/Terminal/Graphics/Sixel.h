#pragma once

#include "Terminal/Graphics/Image.h"

#include <array>
#include <optional>
#include <string_view>

namespace corvane::terminal {

/// Decodes Sixel data in chunks of any size.
class SixelDecoder {
public:
    static constexpr int maxSide = 4096;
    static constexpr size_t registers = 1024;
    using Colors = std::array<uint32_t, registers>; ///< 0xrrggbb

    /// `colors` holds the initial registers and receives changes by the data. `background` fills pixels that the data
    /// does not set; without one they are transparent.
    SixelDecoder(Colors& colors, std::optional<uint32_t> background);
    void feed(std::string_view data);
    /// The picture so far; nothing if it is empty.
    std::optional<Bitmap> finish();

    static Colors vtColors();

private:
    void command(uint8_t byte);
    void applyCommand();
    void sixel(int bits);
    void setColor();
    bool reach(int width, int height);

    Colors& m_colors;
    std::optional<uint32_t> m_background;
    std::vector<uint32_t> m_pixels; // m_stride per row; 0xaarrggbb
    int m_stride = 0;
    int m_capacity = 0; // rows
    int m_width = 0;
    int m_height = 0;
    int m_x = 0;
    int m_y = 0;
    size_t m_color = 0;
    int m_repeat = 1;
    char m_command = 0;
    int m_values[5] = {};
    int m_count = 0;
};

}
