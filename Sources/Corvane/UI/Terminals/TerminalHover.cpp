// What is below the pointer: links, and the pointer's shape.

#include "Foundation/Literals.h"
#include "Terminals/FileReference.h"
#include "UI/Terminals/TerminalItem.h"
#include "UI/Terminals/TerminalPointer.h"

#include <QCursor>
#include <QDir>
#include <QRegularExpression>
#include <QUrl>

namespace corvane {

using namespace terminal;

namespace {

/// The address schemes that may be opened: terminal output must not start anything else.
bool mayOpen(const QString& address)
{
    static const QRegularExpression allowed(u"^(https?|mailto|ftp):"_s, QRegularExpression::CaseInsensitiveOption);
    return allowed.match(address).hasMatch() || fileOfAddress(QUrl(address));
}

}

/// The link under the pointer: one that the program marked, else an address in the text. Only while Ctrl is held.
void TerminalItem::updateHover(QPointF position, Qt::KeyboardModifiers modifiers)
{
    const QPoint at = cellAt(position);
    if (!(modifiers & Qt::ControlModifier) || !contains(position) || at.y() >= int(m_snapshot.rows.size()))
        return setHover({}, {});
    const ShownRow& row = m_snapshot.rows[size_t(at.y())];
    const auto linkAt = [&row](int column) {
        return column >= 0 && column < int(row.cells.size()) ? row.styleOf(row.cells[size_t(column)]).link : 0;
    };
    if (const uint32_t link = linkAt(at.x())) {
        int from = at.x();
        int to = at.x() + 1;
        while (linkAt(from - 1) == link)
            --from;
        while (linkAt(to) == link)
            ++to;
        QString address;
        if (m_session && m_session->terminal()) {
            const auto access = m_session->terminal()->terminal();
            const std::string_view text = access->linkAddress(link);
            address = QString::fromUtf8(text.data(), qsizetype(text.size()));
        }
        return setHover(mayOpen(address) ? address : QString(), { QRect(from, at.y(), to - from, 1) });
    }
    // The whole line, one character a cell, over all of its rows.
    int first = at.y();
    while (first > 0 && m_snapshot.rows[size_t(first)].continued)
        --first;
    QString line;
    for (int index = first; index < int(m_snapshot.rows.size()); ++index) {
        const ShownRow& part = m_snapshot.rows[size_t(index)];
        if (index > first && !part.continued)
            break;
        for (int column = 0; column < m_snapshot.size.columns; ++column) {
            const Cell cell = column < int(part.cells.size()) ? part.cells[size_t(column)] : Cell();
            const bool isPlain = !cell.isCluster() && cell.content() >= 0x21 && cell.content() < 0x10000;
            line += isPlain ? QChar(char16_t(cell.content())) : QChar(u' ');
        }
    }
    // Parentheses belong to the address if they are closed in it.
    static const QRegularExpression address(
        uR"(\b(https?://|mailto:)([^\s<>"'`()]|\([^\s<>"'`()]*\))*(\([^\s<>"'`()]*\)|[^\s<>"'`.,;:!?()\]}]))"_s);
    const qsizetype place = qsizetype(at.y() - first) * m_snapshot.size.columns + at.x();
    const auto matchAt = [&](const QRegularExpression& pattern) {
        for (const QRegularExpressionMatch& match : pattern.globalMatch(line)) {
            if (place >= match.capturedStart() && place < match.capturedEnd())
                return match;
        }
        return QRegularExpressionMatch();
    };
    QRegularExpressionMatch match = matchAt(address);
    if (!match.hasMatch() && m_session) {
        match = matchAt(fileReferencePattern());
        if (!fileReference(match.captured(), m_session->currentDirectory(), QDir::homePath()))
            match = {};
    }
    QList<QRect> cells;
    for (qsizetype index = match.capturedStart(); match.hasMatch() && index < match.capturedEnd(); ++index) {
        const QPoint cell(int(index % m_snapshot.size.columns), first + int(index / m_snapshot.size.columns));
        if (cells.isEmpty() || cells.last().y() != cell.y())
            cells.append(QRect(cell, QSize(1, 1)));
        else
            cells.last().setWidth(cells.last().width() + 1);
    }
    setHover(match.captured(), cells);
}

void TerminalItem::updatePointer()
{
    const Qt::CursorShape usual = m_snapshot.tracksMouse ? Qt::ArrowCursor : Qt::IBeamCursor;
    const Qt::CursorShape wanted = m_session ? pointerShape(m_session->pointer()).value_or(usual) : usual;
    const Qt::CursorShape shape = m_hoveredLink.isEmpty() ? wanted : Qt::PointingHandCursor;
    if (cursor().shape() != shape)
        setCursor(shape);
}

void TerminalItem::setHover(const QString& link, const QList<QRect>& cells)
{
    if (link == m_hoveredLink && cells == m_hoveredCells)
        return;
    m_hoveredLink = link;
    m_hoveredCells = link.isEmpty() ? QList<QRect>() : cells;
    updatePointer();
    update();
    Q_EMIT hoveredLinkChanged();
}

}
