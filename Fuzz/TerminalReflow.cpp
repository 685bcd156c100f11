// Fuzzes text and resizes in any order: the grid stays consistent, and no character is lost (the input erases nothing).

#include "Terminal/Core/Terminal.h"

#include <cstdint>
#include <cstdlib>

using namespace corvane::terminal;

namespace {

std::string everything(Terminal& terminal)
{
    std::string text;
    const auto add = [&](const RowView& row) {
        for (const Cell cell : row.cells) {
            const std::string content = terminal.text(cell);
            if (content != " ")
                text += content;
        }
    };
    terminal.eachHistoryRow(add);
    RowView row;
    for (int index = 0; index < terminal.size().rows; ++index) {
        terminal.readRow(index, row);
        add(row);
    }
    return text;
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Terminal terminal({ 20, 6 });
    std::string expected;
    for (size_t at = 0; at < size; ++at) {
        const uint8_t byte = data[at];
        if (byte < 0x20) {
            if (at + 1 < size)
                terminal.resize({ 1 + byte * 3, 1 + data[++at] % 40 });
        } else if (byte == '|') {
            terminal.feed("\r\n");
        } else if (byte >= 0x80) {
            terminal.feed("漢");
            expected += "漢";
        } else {
            const char letter = char(byte);
            terminal.feed({ &letter, 1 });
            if (byte > ' ' && byte < 0x7f)
                expected += letter;
        }
        if (terminal.fault())
            std::abort();
    }
    if (everything(terminal) != expected)
        std::abort();
    return 0;
}
