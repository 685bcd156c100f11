#include "Terminal/Host/Bench.h"

#include "Terminal/Host/Json.h"

#include <algorithm>
#include <ctime>
#include <fstream>
#include <iterator>
#include <sys/resource.h>

namespace corvane::terminal {

namespace {

/// Processor time, which other programs hardly affect.
double cpuSeconds()
{
    timespec now {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

/// The current resident memory in kilobytes.
long residentKilobytes()
{
    std::ifstream status("/proc/self/statm");
    long total = 0;
    long resident = 0;
    status >> total >> resident;
    return resident * 4;
}

}

std::string benchFile(const std::string& path, const BenchOptions& options)
{
    std::ifstream file(path, std::ios::binary);
    const std::string bytes { std::istreambuf_iterator<char>(file), {} };
    if (!file || bytes.empty())
        return Json()
            .openObject()
            .member("file", path)
            .member("error", "cannot be read, or empty")
            .closeObject()
            .text();
    double best = 0;
    std::vector<double> chunks;
    size_t history = 0;
    size_t coldHistory = 0;
    for (int run = 0; run < options.runs; ++run) {
        Terminal terminal(options.size, options.config);
        std::vector<double> times;
        times.reserve(bytes.size() / options.chunk + 1);
        const double begin = cpuSeconds();
        double last = begin;
        for (size_t at = 0; at < bytes.size(); at += options.chunk) {
            terminal.feed(std::string_view(bytes).substr(at, options.chunk));
            terminal.consumeReplies(terminal.replies().size());
            const double now = cpuSeconds();
            times.push_back(now - last);
            last = now;
        }
        const double seconds = cpuSeconds() - begin;
        history = terminal.memory().history;
        while (terminal.compressHistory(1)) { }
        coldHistory = terminal.memory().history;
        if (run == 0 || seconds < best) {
            best = seconds;
            chunks = std::move(times);
        }
    }
    std::sort(chunks.begin(), chunks.end());
    const double worst = chunks[std::min(chunks.size() - 1, chunks.size() * 99 / 100)];
    Json json;
    json.openObject().member("file", path).member("bytes", bytes.size());
    json.key("mb_per_s").number(double(bytes.size()) / best / 1e6, 1);
    json.key("ns_per_byte").number(best * 1e9 / double(bytes.size()), 3);
    json.key("cpu_s").number(best, 4);
    json.key("chunk_p99_ms").number(worst * 1e3, 4);
    json.member("history_bytes", history).member("cold_history_bytes", coldHistory);
    json.member("rss_kb", residentKilobytes());
    return json.closeObject().text();
}

}
