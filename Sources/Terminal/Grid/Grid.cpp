#include "Terminal/Grid/Grid.h"

#include <new>

namespace corvane::terminal {

Grid::Grid(int columns, int rows)
    : m_columns(columns)
    // The system hands out zeroed pages, and a page that is never written costs nothing.
    , m_cells(static_cast<Cell*>(std::calloc(size_t(columns) * size_t(rows), sizeof(Cell))))
    , m_headers(size_t(rows))
{
    if (!m_cells)
        throw std::bad_alloc();
    m_order.reserve(size_t(rows));
    for (size_t i = 0; i < m_headers.size(); ++i) {
        m_headers[i].cells = m_cells.get() + i * size_t(columns);
        m_headers[i].id = ++m_lastId;
        m_order.push_back(&m_headers[i]);
    }
}

void Grid::rotateUp(int top, int bottom, int count)
{
    Row** const first = m_order.data() + top;
    if (count == 1) {
        Row* const freed = *first;
        std::memmove(first, first + 1, size_t(bottom - top - 1) * sizeof(Row*));
        m_order[size_t(bottom - 1)] = freed;
    } else {
        std::rotate(first, first + count, m_order.data() + bottom);
    }
    for (int row = bottom - count; row < bottom; ++row)
        renew(*m_order[size_t(row)]);
}

void Grid::rotateDown(int top, int bottom, int count)
{
    Row** const first = m_order.data() + top;
    std::rotate(first, m_order.data() + bottom - count, m_order.data() + bottom);
    for (int row = top; row < top + count; ++row)
        renew(*m_order[size_t(row)]);
}

void Grid::adoptIds(const Grid& other)
{
    m_lastId = other.m_lastId;
    for (Row* row : m_order)
        row->id = ++m_lastId;
}

const char* Grid::fault() const
{
    for (const Row* row : m_order) {
        if (row->used > m_columns)
            return "a row uses more than its columns";
        for (int column = 0; column < m_columns; ++column) {
            const Cell cell = row->cells[column];
            const auto part = cell.part();
            if (column >= row->used && cell != Cell())
                return "a cell past the used ones is not blank";
            if (cell.style() != 0 && !row->styled)
                return "a style in a row without styles";
            if ((cell.content() >= 0x80 || cell.isCluster() || part != Cell::Part::Narrow) && !row->complex)
                return "other than ASCII in a plain row";
            const bool tailFollows = column + 1 < m_columns && row->cells[column + 1].part() == Cell::Part::WideTail;
            if ((part == Cell::Part::WideHead) != tailFollows)
                return "half a wide character";
            if (part == Cell::Part::WideTail && cell.content() != 0)
                return "text in the second half of a wide character";
        }
        if (row->cells[0].part() == Cell::Part::WideTail)
            return "a row begins with half a character";
    }
    return nullptr;
}

}
