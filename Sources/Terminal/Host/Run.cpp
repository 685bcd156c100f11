#include "Terminal/Host/Run.h"

#include "Terminal/Host/ScreenDump.h"

#include <cstdio>
#include <fstream>

namespace corvane::terminal {

int runCommand(const RunOptions& options)
{
    std::ofstream log;
    SessionTaps taps;
    if (!options.logFile.empty()) {
        log.open(options.logFile, std::ios::binary);
        taps.output = [&log](std::string_view output) {
            log.write(output.data(), std::streamsize(output.size()));
        };
    }
    Session session(options.size, options.config, std::move(taps));
    if (const auto started = session.start(options.command); !started) {
        std::fprintf(stderr, "%s\n", started.error().c_str());
        return 127;
    }
    const auto timeout
        = options.timeoutSeconds > 0 ? std::chrono::seconds(options.timeoutSeconds) : std::chrono::hours(24);
    const bool ended = session.waitForExit(timeout);
    if (!options.dumpFile.empty()) {
        Json json;
        dumpJson(*session.terminal(), DumpPart::All, json);
        std::ofstream(options.dumpFile) << json.text() << '\n';
    }
    if (!ended)
        return 124;
    const ExitStatus status = session.exitStatus();
    return status.bySignal ? 128 + status.code : status.code;
}

}
