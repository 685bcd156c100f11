#include "Terminal/Core/Config.h"

#include <algorithm>
#include <charconv>

namespace corvane::terminal {

Size Size::clamped() const
{
    return { std::clamp(columns, 1, maxColumns), std::clamp(rows, 1, maxRows), std::clamp(cellWidth, 1, 512),
        std::clamp(cellHeight, 1, 512) };
}

bool Config::set(std::string_view name, std::string_view value)
{
    if (value == "on" || value == "true" || value == "yes")
        value = "1";
    else if (value == "off" || value == "false" || value == "no")
        value = "0";
    long long number = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (error != std::errc() || end != value.data() + value.size() || number < 0)
        return false;
    const auto assign = [&](auto& field) {
        field = static_cast<std::remove_reference_t<decltype(field)>>(number);
        return true;
    };
    if (name == "scrollback")
        return assign(scrollbackLines);
    if (name == "scrollback-bytes")
        return assign(scrollbackBytes);
    if (name == "image-bytes")
        return assign(imageBytes);
    if (name == "vt-level")
        return number >= 100 && number <= 525 && assign(vtLevel);
    if (name == "checksum-extension")
        return assign(checksumExtension);
    if (name == "ambiguous")
        return number <= 2 && (ambiguousWide = number == 2, true);
    if (name == "bce")
        return assign(backgroundErase);
    if (name == "allow-window-ops")
        return assign(allowWindowOps);
    if (name == "title-report")
        return assign(allowTitleReport);
    if (name == "clipboard-write")
        return assign(allowClipboardWrite);
    if (name == "image-files")
        return assign(allowImageFiles);
    if (name == "dark")
        return assign(darkColors);
    return false;
}

bool Config::useProfile(std::string_view name)
{
    if (name == "xterm") {
        allowWindowOps = allowTitleReport = true;
    } else if (name == "strict") {
        allowWindowOps = allowTitleReport = allowClipboardWrite = allowImageFiles = false;
    } else if (name != "default") {
        return false;
    }
    return true;
}

}
