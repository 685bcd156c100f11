#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvane::terminal {

/// Four bytes per pixel: red, green, blue, alpha; not premultiplied.
struct Bitmap {
    /// Larger bitmaps are refused.
    static constexpr int maxSide = 10'000;

    int width = 0;
    int height = 0;
    std::vector<uint8_t> pixels;

    static bool isAllowed(int64_t width, int64_t height)
    {
        return width > 0 && height > 0 && width <= maxSide && height <= maxSide;
    }
    size_t bytes() const { return pixels.size(); }
};

struct ImageFrame {
    Bitmap bitmap;
    int gap = 40; ///< milliseconds until the next frame
};

struct Image {
    uint32_t id = 0;
    uint32_t number = 0; ///< chosen by the program; 0 if there is none
    uint64_t age = 0; ///< increases with every use
    uint64_t version = 0; ///< changes whenever the pixels change
    std::vector<ImageFrame> frames; ///< the first one is the image itself
    size_t current = 0;
    bool running = false;
    int loops = 0; ///< remaining; 0 is endless
    int64_t nextFrameAt = 0; ///< in nanoseconds of the terminal's tick

    const Bitmap& shown() const { return frames[current].bitmap; }
    size_t bytes() const
    {
        size_t sum = 0;
        for (const ImageFrame& frame : frames)
            sum += frame.bitmap.bytes();
        return sum;
    }
};

}
