#pragma once

#include "Terminal/Core/Terminal.h"
#include "Terminal/Host/EventLog.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::terminal {

/// The line protocol: each line is a command, answered by a line of JSON.
class Drive {
public:
    Drive();
    /// False after `quit`.
    std::optional<std::string> run(std::string_view line);

private:
    using Words = std::vector<std::string_view>;
    struct CommandEntry {
        std::string_view name;
        size_t arguments; ///< the minimum
        std::string (Drive::*run)(const Words& words);
    };
    static const CommandEntry commands[];

    std::string open(const Words& words);
    std::string option(const Words& words);
    std::string feed(const Words& words);
    std::string feedFile(const Words& words);
    std::string resize(const Words& words);
    std::string replies(const Words& words);
    std::string dump(const Words& words);
    std::string events(const Words& words);
    std::string damage(const Words& words);
    std::string character(const Words& words);
    std::string key(const Words& words);
    std::string keyEvent(const Words& words);
    std::string mouse(const Words& words);
    std::string paste(const Words& words);
    std::string focus(const Words& words);
    std::string marks(const Words& words);
    std::string images(const Words& words);
    std::string image(const Words& words);
    std::string select(const Words& words);
    std::string search(const Words& words);

    Config m_config;
    EventLog m_events;
    std::unique_ptr<Terminal> m_terminal;
    uint64_t m_damageSeen = 0;
};

}
