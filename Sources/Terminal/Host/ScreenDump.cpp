#include "Terminal/Host/ScreenDump.h"

#include "Terminal/Core/Emulator.h"
#include "Terminal/Core/Sgr.h"

namespace corvane::terminal {

namespace {

void writeColor(Json& json, std::string_view name, Color color)
{
    if (color.kind() == Color::Kind::Indexed)
        json.member(name, color.index());
    else if (color.kind() == Color::Kind::Rgb)
        json.member(name, "#" + toHex(color.rgbValue(), 6));
}

void writeStyle(Json& json, const Terminal& terminal, const Style& style)
{
    constexpr struct {
        Style::Attribute attribute;
        std::string_view name;
    } names[] = {
        { Style::Bold, "bold" },
        { Style::Faint, "faint" },
        { Style::Italic, "italic" },
        { Style::Blink, "blink" },
        { Style::Reverse, "reverse" },
        { Style::Conceal, "conceal" },
        { Style::Strike, "strike" },
        { Style::Overline, "overline" },
    };
    json.openObject();
    writeColor(json, "fg", style.foreground);
    writeColor(json, "bg", style.background);
    writeColor(json, "ulc", style.underlineColor);
    for (const auto& entry : names) {
        if (style.has(entry.attribute))
            json.member(entry.name, true);
    }
    if (style.underline != Underline::None)
        json.member("ul", int(style.underline));
    if (style.has(Style::Protected) || style.has(Style::Guarded))
        json.member("protect", true);
    if (style.link)
        json.member("link", terminal.linkAddress(style.link));
    json.closeObject();
}

void writeRow(Json& json, const Terminal& terminal, const RowView& row)
{
    constexpr std::string_view sizes[] = { "single", "width", "top", "bottom" };
    json.openObject();
    json.member("cont", row.continued).member("dbl", sizes[size_t(row.size)]);
    json.key("cells").openArray();
    for (size_t column = 0; column < row.cells.size(); ++column) {
        const Cell cell = row.cells[column];
        if (cell.part() == Cell::Part::WideTail)
            continue;
        json.openArray().value(column).value(terminal.text(cell)).value(cell.width());
        writeStyle(json, terminal, terminal.style(cell.style()));
        json.closeArray();
    }
    json.closeArray().closeObject();
}

template <typename Visit> void eachRow(Terminal& terminal, Visit visit)
{
    terminal.eachHistoryRow(visit);
    RowView row;
    for (int index = 0; index < terminal.size().rows; ++index) {
        terminal.readRow(index, row);
        visit(row);
    }
}

/// Joins wrapped rows and omits trailing blank lines.
template <typename Append> std::string dumpLines(Terminal& terminal, Append append)
{
    std::string text;
    bool first = true;
    eachRow(terminal, [&](const RowView& row) {
        if (!first && !row.continued)
            text.push_back('\n');
        first = false;
        append(text, row);
    });
    text.resize(text.find_last_not_of('\n') + 1);
    text.push_back('\n');
    return text;
}

void appendText(std::string& text, const Terminal& terminal, Cell cell)
{
    if (cell.part() == Cell::Part::WideTail || cell.isFiller())
        return;
    text += cell.isBlank() ? " " : terminal.text(cell);
}

}

void dumpJson(Terminal& terminal, DumpPart part, Json& json)
{
    const Size size = terminal.size();
    const CursorState cursor = terminal.cursor();
    json.openObject().member("cols", size.columns).member("rows", size.rows);
    json.key("cursor").openObject();
    json.member("row", cursor.row).member("col", cursor.column).member("visible", cursor.visible);
    json.member("shape",
        cursor.shape == CursorShape::Block           ? "block"
            : cursor.shape == CursorShape::Underline ? "underline"
                                                     : "bar");
    json.member("blink", cursor.blinks).member("pending_wrap", cursor.pendingWrap).closeObject();
    json.member("alt", terminal.isAlternate()).member("title", terminal.title());
    json.key("modes").openObject();
    for (const ModeEntry& entry : modeTable()) {
        if (!entry.name.empty())
            json.member(entry.name, terminal.has(entry.mode));
    }
    json.closeObject();
    if (part == DumpPart::All) {
        json.key("scrollback").openArray();
        terminal.eachHistoryRow([&](const RowView& row) { writeRow(json, terminal, row); });
        json.closeArray();
    }
    json.key("screen").openArray();
    RowView row;
    for (int index = 0; index < size.rows; ++index) {
        terminal.readRow(index, row);
        writeRow(json, terminal, row);
    }
    json.closeArray().closeObject();
}

std::string dumpText(Terminal& terminal)
{
    return dumpLines(terminal, [&](std::string& text, const RowView& row) {
        for (const Cell cell : row.cells)
            appendText(text, terminal, cell);
    });
}

std::string dumpAnsi(Terminal& terminal)
{
    return dumpLines(terminal, [&](std::string& text, const RowView& row) {
        StyleId current = 0;
        for (const Cell cell : row.cells) {
            if (cell.style() != current) {
                text += concat("\x1b[", sgrText(terminal.style(cell.style())), 'm');
                current = cell.style();
            }
            appendText(text, terminal, cell);
        }
        if (current)
            text += "\x1b[m";
    });
}

}
