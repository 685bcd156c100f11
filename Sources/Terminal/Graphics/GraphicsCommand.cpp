#include "Terminal/Graphics/GraphicsCommand.h"

#include <algorithm>
#include <charconv>

namespace corvane::terminal {

GraphicsCommand GraphicsCommand::parse(std::string_view control)
{
    GraphicsCommand command;
    while (!control.empty()) {
        const size_t end = std::min(control.find(','), control.size());
        const std::string_view pair = control.substr(0, end);
        control.remove_prefix(std::min(end + 1, control.size()));
        if (pair.size() < 3 || pair[1] != '=' || !isKey(pair[0]))
            continue;
        const auto key = size_t(index(pair[0]));
        const std::string_view value = pair.substr(2);
        command.m_present |= uint64_t(1) << key;
        command.m_letters[key] = value[0];
        int64_t number = 0;
        const auto [last, error] = std::from_chars(value.data(), value.data() + value.size(), number);
        if (error == std::errc() && last == value.data() + value.size())
            command.m_numbers[key] = std::clamp<int64_t>(number, INT32_MIN, UINT32_MAX);
    }
    return command;
}

int GraphicsCommand::amount(char key) const
{
    constexpr int64_t most = 1 << 20;
    return int(std::clamp<int64_t>(m_numbers[index(key)], 0, most));
}

}
