// Fuzzes terminal output: the grid stays consistent, and any split of the bytes gives the same screen and replies.

#include "Terminal/Core/Terminal.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace corvane::terminal;

namespace {

void feedIn(Terminal& terminal, std::string_view bytes, size_t chunk)
{
    for (size_t at = 0; at < bytes.size(); at += chunk)
        terminal.feed(bytes.substr(at, chunk));
}

bool isSame(Terminal& one, Terminal& other)
{
    RowView first;
    RowView second;
    for (int row = 0; row < one.size().rows; ++row) {
        one.readRow(row, first);
        other.readRow(row, second);
        if (first.cells.size() != second.cells.size() || first.size != second.size)
            return false;
        for (size_t column = 0; column < first.cells.size(); ++column) {
            const Cell left = first.cells[column];
            const Cell right = second.cells[column];
            if (one.text(left) != other.text(right) || left.part() != right.part()
                || !(one.style(left.style()) == other.style(right.style())))
                return false;
        }
    }
    return one.replies() == other.replies() && one.size() == other.size() && one.title() == other.title();
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
    Config config;
    config.scrollbackLines = 200;
    config.imageBytes = 4 << 20;
    config.allowWindowOps = data[0] & 1;
    config.allowImageFiles = false;
    Terminal whole({ 20, 6 }, config);
    Terminal parts({ 20, 6 }, config);
    whole.feed(bytes);
    feedIn(parts, bytes, 1 + data[0] % 13);
    if (whole.fault() || parts.fault() || !isSame(whole, parts))
        std::abort();
    return 0;
}
