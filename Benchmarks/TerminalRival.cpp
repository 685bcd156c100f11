// Feeds files to libvterm and prints the same figures as corvane-term bench: terminal-rival COLUMNSxROWS RUNS FILE...
// Its callbacks keep scrolled-out lines and collect damage, as a real terminal would.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <deque>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <vterm.h>

namespace {

constexpr size_t historyLines = 10'000;

struct Kept {
    std::deque<std::vector<VTermScreenCell>> lines;
    long damage = 0;
};

int damaged(VTermRect area, void* user)
{
    static_cast<Kept*>(user)->damage += area.end_row - area.start_row;
    return 1;
}

int pushLine(int columns, const VTermScreenCell* cells, void* user)
{
    auto& lines = static_cast<Kept*>(user)->lines;
    std::vector<VTermScreenCell> line;
    if (lines.size() >= historyLines) {
        line = std::move(lines.front());
        lines.pop_front();
    }
    line.assign(cells, cells + columns);
    lines.push_back(std::move(line));
    return 1;
}

/// Processor time, as in corvane-term bench.
double cpuSeconds()
{
    timespec now {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

double feed(const std::string& bytes, int columns, int rows)
{
    VTerm* const terminal = vterm_new(rows, columns);
    vterm_set_utf8(terminal, 1);
    VTermScreen* const screen = vterm_obtain_screen(terminal);
    Kept kept;
    VTermScreenCallbacks callbacks {};
    callbacks.damage = damaged;
    callbacks.sb_pushline = pushLine;
    vterm_screen_set_callbacks(screen, &callbacks, &kept);
    vterm_screen_enable_altscreen(screen, 1);
    vterm_screen_set_damage_merge(screen, VTERM_DAMAGE_SCROLL);
    vterm_screen_reset(screen, 1);
    const double begin = cpuSeconds();
    constexpr size_t chunk = 65536;
    for (size_t at = 0; at < bytes.size(); at += chunk) {
        vterm_input_write(terminal, bytes.data() + at, std::min(chunk, bytes.size() - at));
        vterm_screen_flush_damage(screen);
    }
    const double taken = cpuSeconds() - begin;
    vterm_free(terminal);
    return taken;
}

}

int main(int count, char** arguments)
{
    int columns = 80;
    int rows = 24;
    if (count < 4 || std::sscanf(arguments[1], "%dx%d", &columns, &rows) != 2)
        return 2;
    const int runs = std::atoi(arguments[2]);
    for (int i = 3; i < count; ++i) {
        std::ifstream file(arguments[i], std::ios::binary);
        const std::string bytes { std::istreambuf_iterator<char>(file), {} };
        double best = 1e9;
        for (int run = 0; run < runs; ++run)
            best = std::min(best, feed(bytes, columns, rows));
        std::printf("{\"file\":\"%s\",\"mb_per_s\":%.1f}\n", arguments[i], double(bytes.size()) / best / 1e6);
    }
    return 0;
}
