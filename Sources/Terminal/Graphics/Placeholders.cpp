#include "Terminal/Graphics/Placeholders.h"

#include "Terminal/Core/Emulator.h"

namespace corvane::terminal {

namespace {

struct MarkRange {
    char32_t first;
    char32_t last;
};

// The marks of combining class 230 without a decomposition, in the protocol's order.
constexpr MarkRange marks[] = { { 0x305, 0x305 }, { 0x30d, 0x30e }, { 0x310, 0x310 }, { 0x312, 0x312 },
    { 0x33d, 0x33f }, { 0x346, 0x346 }, { 0x34a, 0x34c }, { 0x350, 0x352 }, { 0x357, 0x357 }, { 0x35b, 0x35b },
    { 0x363, 0x36f }, { 0x483, 0x487 }, { 0x592, 0x595 }, { 0x597, 0x599 }, { 0x59c, 0x5a1 }, { 0x5a8, 0x5a9 },
    { 0x5ab, 0x5ac }, { 0x5af, 0x5af }, { 0x5c4, 0x5c4 }, { 0x610, 0x617 }, { 0x657, 0x65b }, { 0x65d, 0x65e },
    { 0x6d6, 0x6dc }, { 0x6df, 0x6e2 }, { 0x6e4, 0x6e4 }, { 0x6e7, 0x6e8 }, { 0x6eb, 0x6ec }, { 0x730, 0x730 },
    { 0x732, 0x733 }, { 0x735, 0x736 }, { 0x73a, 0x73a }, { 0x73d, 0x73d }, { 0x73f, 0x741 }, { 0x743, 0x743 },
    { 0x745, 0x745 }, { 0x747, 0x747 }, { 0x749, 0x74a }, { 0x7eb, 0x7f1 }, { 0x7f3, 0x7f3 }, { 0x816, 0x819 },
    { 0x81b, 0x823 }, { 0x825, 0x827 }, { 0x829, 0x82d }, { 0x951, 0x951 }, { 0x953, 0x954 }, { 0xf82, 0xf83 },
    { 0xf86, 0xf87 }, { 0x135d, 0x135f }, { 0x17dd, 0x17dd }, { 0x193a, 0x193a }, { 0x1a17, 0x1a17 },
    { 0x1a75, 0x1a7c }, { 0x1b6b, 0x1b6b }, { 0x1b6d, 0x1b73 }, { 0x1cd0, 0x1cd2 }, { 0x1cda, 0x1cdb },
    { 0x1ce0, 0x1ce0 }, { 0x1dc0, 0x1dc1 }, { 0x1dc3, 0x1dc9 }, { 0x1dcb, 0x1dcc }, { 0x1dd1, 0x1de6 },
    { 0x1dfe, 0x1dfe }, { 0x20d0, 0x20d1 }, { 0x20d4, 0x20d7 }, { 0x20db, 0x20dc }, { 0x20e1, 0x20e1 },
    { 0x20e7, 0x20e7 }, { 0x20e9, 0x20e9 }, { 0x20f0, 0x20f0 }, { 0x2cef, 0x2cf1 }, { 0x2de0, 0x2dff },
    { 0xa66f, 0xa66f }, { 0xa67c, 0xa67d }, { 0xa6f0, 0xa6f1 }, { 0xa8e0, 0xa8f1 }, { 0xaab0, 0xaab0 },
    { 0xaab2, 0xaab3 }, { 0xaab7, 0xaab8 }, { 0xaabe, 0xaabf }, { 0xaac1, 0xaac1 }, { 0xfe20, 0xfe26 },
    { 0x10a0f, 0x10a0f }, { 0x10a38, 0x10a38 }, { 0x1d185, 0x1d189 }, { 0x1d1aa, 0x1d1ad }, { 0x1d242, 0x1d244 } };

constexpr int markCount = [] {
    int count = 0;
    for (const MarkRange& range : marks)
        count += int(range.last - range.first) + 1;
    return count;
}();
static_assert(markCount == 297);

/// The contents of one placeholder cell.
struct Part {
    uint32_t image = 0;
    uint32_t placement = 0;
    int row = -1;
    int column = -1;
    int high = -1;

    /// Whether it continues `left`; omitted numbers are taken from there.
    bool continues(const Part& left)
    {
        if ((image & 0xffffff) != (left.image & 0xffffff) || placement != left.placement)
            return false;
        const bool follows = (row < 0 || row == left.row) && (column < 0 || column == left.column + 1)
            && (high < 0 || uint32_t(high) == left.image >> 24);
        if (!follows)
            return false;
        row = left.row;
        column = left.column + 1;
        image = left.image;
        return true;
    }
};

uint32_t numberOf(Color color)
{
    return color.kind() == Color::Kind::Rgb    ? color.rgbValue()
        : color.kind() == Color::Kind::Indexed ? color.index()
                                               : 0;
}

std::optional<Part> partOf(const Emulator& t, Cell cell)
{
    std::u32string_view text;
    if (cell.isCluster()) {
        text = t.clusters[cell.content()];
        if (text[0] != placeholderCharacter)
            return {};
    } else if (cell.content() != placeholderCharacter) {
        return {};
    }
    const Style& style = t.styles[cell.style()];
    Part part { numberOf(style.foreground), numberOf(style.underlineColor) };
    const auto mark = [&](size_t index) {
        return index < text.size() ? placeholderNumber(text[index]).value_or(-1) : -1;
    };
    part.row = mark(1);
    part.column = mark(2);
    part.high = mark(3);
    if (part.high > 0 && part.high < 256)
        part.image |= uint32_t(part.high) << 24;
    return part;
}

/// The pixels shown by a run of cells of a virtual placement.
void addView(Emulator& t, std::vector<PlacementView>& views, const Part& first, int row, int left, int right)
{
    const ImageStore& store = t.graphics.store();
    const Image* image = store.find(first.image);
    const Placement* placement = nullptr;
    for (const Placement& each : store.placements()) {
        if (each.image == first.image && each.isVirtual && (first.placement == 0 || each.id == first.placement))
            placement = &each;
    }
    if (!image || !placement)
        return;
    const int columns = placement->columns
        ? placement->columns
        : std::max(1, (placement->sourceWidth + t.size.cellWidth - 1) / t.size.cellWidth);
    const int rows = placement->rows
        ? placement->rows
        : std::max(1, (placement->sourceHeight + t.size.cellHeight - 1) / t.size.cellHeight);
    if (first.row >= rows || first.column >= columns)
        return;
    const int end = std::min(first.column + right - left, columns);
    const auto x = [&](int column) {
        return placement->sourceX + placement->sourceWidth * column / columns;
    };
    const auto y = [&](int index) {
        return placement->sourceY + placement->sourceHeight * index / rows;
    };
    views.push_back({ first.image, placement->id, placement->z, row, left, row + 1, left + end - first.column,
        x(first.column), y(first.row), x(end) - x(first.column), y(first.row + 1) - y(first.row) });
}

}

std::optional<int> placeholderNumber(char32_t mark)
{
    int number = 0;
    for (const MarkRange& range : marks) {
        if (mark >= range.first && mark <= range.last)
            return number + int(mark - range.first);
        number += int(range.last - range.first) + 1;
    }
    return {};
}

void addPlaceholderViews(Emulator& t, std::vector<PlacementView>& views)
{
    const auto& placements = t.graphics.store().placements();
    if (std::ranges::none_of(placements, [](const Placement& placement) { return placement.isVirtual; }))
        return;
    for (int index = 0; index < t.rows(); ++index) {
        const Row& row = t.row(index);
        if (!row.complex)
            continue;
        Part first;
        Part last;
        int begin = -1;
        for (int column = 0; column <= row.used; ++column) {
            auto part = column < row.used ? partOf(t, row.cells[column]) : std::nullopt;
            if (part && begin >= 0 && part->continues(last)) {
                last = *part;
                continue;
            }
            if (begin >= 0)
                addView(t, views, first, index, begin, column);
            begin = part ? column : -1;
            if (part) {
                part->row = std::max(part->row, 0);
                part->column = std::max(part->column, 0);
                first = last = *part;
            }
        }
    }
}

}
