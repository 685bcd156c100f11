#pragma once

#include "Terminal/Core/Terminal.h"
#include "Terminal/Host/ScreenDump.h"

#include <gtest/gtest.h>

namespace corvane::terminal {

/// A small terminal that tests write to and read from.
class Probe : public Terminal {
public:
    explicit Probe(int columns = 20, int rows = 5, const Config& config = {})
        : Terminal({ columns, rows }, config)
    {
    }

    Probe& operator<<(std::string_view bytes)
    {
        feed(bytes);
        EXPECT_EQ(fault(), nullptr);
        return *this;
    }

    /// A row's text, with blanks as spaces and without trailing ones.
    std::string line(int64_t row)
    {
        RowView view;
        readRow(row, view);
        std::string content;
        for (const Cell cell : view.cells) {
            if (cell.part() != Cell::Part::WideTail && !cell.isFiller())
                content += cell.isBlank() ? " " : text(cell);
        }
        return content.substr(0, content.find_last_not_of(' ') + 1);
    }

    std::string lines(int64_t first, int64_t last)
    {
        std::string content;
        for (int64_t row = first; row <= last; ++row)
            content += line(row) + "|";
        return content;
    }

    /// The terminal's reply to the bytes.
    std::string ask(std::string_view bytes)
    {
        consumeReplies(replies().size());
        feed(bytes);
        const std::string answer(replies());
        consumeReplies(answer.size());
        return answer;
    }

    Style styleAt(int row, int column)
    {
        RowView view;
        readRow(row, view);
        return size_t(column) < view.cells.size() ? style(view.cells[size_t(column)].style()) : Style();
    }

    std::string where() { return std::to_string(cursor().row) + "," + std::to_string(cursor().column); }
    std::string json()
    {
        Json text;
        dumpJson(*this, DumpPart::All, text);
        return text.text();
    }
};

}
