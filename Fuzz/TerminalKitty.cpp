// Fuzzes commands of the Kitty graphics protocol, separated by zero bytes: the images stay within their budget, and
// every placement within its image.

#include "Terminal/Core/Terminal.h"

#include <cstdint>
#include <cstdlib>

using namespace corvane::terminal;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Config config;
    config.imageBytes = 1 << 20;
    config.allowImageFiles = false;
    Terminal terminal({ 20, 6 }, config);
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    int64_t now = 0;
    while (!bytes.empty()) {
        const size_t end = std::min(bytes.find('\0'), bytes.size());
        terminal.feed("\x1b_G");
        terminal.feed(bytes.substr(0, end));
        terminal.feed("\x1b\\");
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
        terminal.tick(now += 50'000'000);
    }
    if (terminal.fault() || terminal.images().bytes() > terminal.images().budget())
        std::abort();
    for (const PlacementView& view : terminal.placements()) {
        const Image* image = terminal.images().find(view.image);
        if (!image || view.sourceX < 0 || view.sourceY < 0
            || view.sourceX + view.sourceWidth > image->frames.front().bitmap.width
            || view.sourceY + view.sourceHeight > image->frames.front().bitmap.height)
            std::abort();
    }
    return 0;
}
