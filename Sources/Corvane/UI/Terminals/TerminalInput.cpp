#include "Foundation/Literals.h"
#include "Terminals/FileReference.h"
#include "UI/Terminals/TerminalItem.h"
#include "UI/Terminals/TerminalKeys.h"

#include <QClipboard>
#include <QCursor>
#include <QDir>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QStyleHints>
#include <QUrl>

namespace corvane {

using namespace terminal;

namespace {

constexpr int notch = 120;
constexpr int linesOfNotch = 3;

int buttonNumber(Qt::MouseButton button)
{
    switch (button) {
    case Qt::LeftButton:
        return 1;
    case Qt::MiddleButton:
        return 2;
    case Qt::RightButton:
        return 3;
    case Qt::BackButton:
        return 8;
    case Qt::ForwardButton:
        return 9;
    default:
        return 0;
    }
}

/// The address schemes that may be opened: terminal output must not start anything else.
bool mayOpen(const QString& address)
{
    static const QRegularExpression allowed(u"^(https?|mailto|ftp):"_s, QRegularExpression::CaseInsensitiveOption);
    return allowed.match(address).hasMatch() || fileOfAddress(QUrl(address));
}

}

/// The session's terminal, where the program still runs.
template <typename Action> void TerminalItem::withTerminal(Action action)
{
    if (m_session && m_session->isRunning()) {
        const auto access = m_session->terminal()->terminal();
        action(*access);
    }
}

bool TerminalItem::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        key->setAccepted(m_session && m_session->isRunning() && !belongsToWindow(*key));
        return true;
    }
    // Tab goes to the program, too.
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        keyPressEvent(key);
        return key->isAccepted();
    }
    return QQuickItem::event(event);
}

bool TerminalItem::sendKey(const QKeyEvent& event, KeyAction action)
{
    const auto key = belongsToWindow(event) ? std::nullopt : terminalKey(event, action);
    bool sent = false;
    if (key)
        withTerminal([&](Terminal& terminal) { sent = terminal.key(*key); });
    return sent;
}

void TerminalItem::keyPressEvent(QKeyEvent* event)
{
    event->setAccepted(false);
    if (!m_session || !m_session->isRunning())
        return;
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const int key = event->key();
    if (key == Qt::Key_Control)
        updateHover(mapFromGlobal(QCursor::pos()), modifiers | Qt::ControlModifier);
    if (modifiers == Qt::ShiftModifier && !m_snapshot.isAlternate) {
        event->accept();
        if (key == Qt::Key_PageUp || key == Qt::Key_PageDown)
            return scrollByPages(key == Qt::Key_PageUp ? -1 : 1);
        if (key == Qt::Key_Home || key == Qt::Key_End)
            return scrollToEnd(key == Qt::Key_Home);
    }
    if (modifiers == Qt::ShiftModifier && key == Qt::Key_Insert)
        return Q_EMIT pasteRequested(QGuiApplication::clipboard()->text(QClipboard::Selection));
    const bool sent = sendKey(*event, event->isAutoRepeat() ? KeyAction::Repeat : KeyAction::Press);
    // A modifier alone does not scroll.
    if (sent && m_session->scrollTop() != 0)
        m_session->scrollTo(0);
    setCursorOn(true);
    event->setAccepted(!belongsToWindow(*event));
}

void TerminalItem::keyReleaseEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Control)
        setHover({}, {});
    if (!event->isAutoRepeat())
        sendKey(*event, KeyAction::Release);
    event->setAccepted(!belongsToWindow(*event));
}

void TerminalItem::inputMethodEvent(QInputMethodEvent* event)
{
    m_preedit = event->preeditString();
    if (!event->commitString().isEmpty() && m_session && m_session->isRunning()) {
        m_session->send(event->commitString());
        m_session->scrollTo(0);
    }
    event->accept();
    update();
}

QVariant TerminalItem::inputMethodQuery(Qt::InputMethodQuery query) const
{
    switch (query) {
    case Qt::ImEnabled:
        return m_session && m_session->isRunning();
    case Qt::ImCursorRectangle:
        return cellRect(int(m_snapshot.cursor.row - m_snapshot.top), m_snapshot.cursor.column);
    case Qt::ImHints:
        return int(Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    default:
        return QQuickItem::inputMethodQuery(query);
    }
}

void TerminalItem::focusInEvent(QFocusEvent* event)
{
    QQuickItem::focusInEvent(event);
    setFocusOfProgram(true);
}

void TerminalItem::focusOutEvent(QFocusEvent* event)
{
    QQuickItem::focusOutEvent(event);
    m_preedit.clear();
    setFocusOfProgram(false);
}

void TerminalItem::setFocusOfProgram(bool in)
{
    withTerminal([in](Terminal& terminal) { terminal.focus(in); });
    setCursorOn(true);
    update();
}

Position TerminalItem::positionAt(QPointF position) const
{
    const QPoint cell = cellAt(position);
    return { m_snapshot.top + cell.y(), cell.x() };
}

bool TerminalItem::sendMouse(QPointF position, MouseAction action, int button, Qt::KeyboardModifiers modifiers)
{
    const QPoint cell = cellAt(position);
    const QPoint pixel = (position * m_ratio).toPoint();
    bool sent = false;
    withTerminal([&](Terminal& terminal) {
        sent = terminal.mouse({ action, button, cell.x(), cell.y(), terminalModifiers(modifiers),
            std::max(0, pixel.x()), std::max(0, pixel.y()) });
    });
    return sent;
}

void TerminalItem::select(SelectionMode mode, QPointF to)
{
    if (!m_session || !m_session->terminal() || !m_pressed)
        return;
    m_session->terminal()->terminal()->selection().set(mode, *m_pressed, positionAt(to));
    look();
}

/// With Shift the mouse selects, even if the program tracks it.
void TerminalItem::mousePressEvent(QMouseEvent* event)
{
    forceActiveFocus(Qt::MouseFocusReason);
    updateHover(event->position(), event->modifiers());
    if (event->button() == Qt::LeftButton && !m_hoveredLink.isEmpty()) {
        Q_EMIT linkOpened(m_hoveredLink);
        return;
    }
    const bool isProgrammed
        = m_snapshot.tracksMouse && !(event->modifiers() & Qt::ShiftModifier) && m_snapshot.top == 0;
    if (isProgrammed) {
        m_buttonOfProgram = buttonNumber(event->button());
        sendMouse(event->position(), MouseAction::Press, m_buttonOfProgram, event->modifiers());
        return;
    }
    if (event->button() == Qt::RightButton)
        return Q_EMIT menuRequested(event->position());
    if (event->button() == Qt::MiddleButton)
        return Q_EMIT pasteRequested(QGuiApplication::clipboard()->text(QClipboard::Selection));
    if (event->button() != Qt::LeftButton || !m_session || !m_session->terminal())
        return;
    const bool isThird
        = event->timestamp() - m_doubleClickedAt < ulong(qGuiApp->styleHints()->mouseDoubleClickInterval());
    m_pressed = positionAt(event->position());
    m_mode = isThird                           ? SelectionMode::Line
        : event->modifiers() & Qt::AltModifier ? SelectionMode::Block
                                               : SelectionMode::Character;
    if (isThird) {
        select(m_mode, event->position());
    } else {
        m_session->terminal()->terminal()->selection().clear();
        look();
    }
}

void TerminalItem::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (m_snapshot.tracksMouse && !(event->modifiers() & Qt::ShiftModifier))
        return mousePressEvent(event);
    if (event->button() != Qt::LeftButton)
        return;
    m_doubleClickedAt = event->timestamp();
    m_pressed = positionAt(event->position());
    m_mode = SelectionMode::Word;
    select(m_mode, event->position());
}

void TerminalItem::mouseMoveEvent(QMouseEvent* event)
{
    if (m_buttonOfProgram) {
        sendMouse(event->position(), MouseAction::Move, m_buttonOfProgram, event->modifiers());
        return;
    }
    if (!m_pressed || !m_session)
        return;
    // Beyond an edge the view scrolls.
    if (event->position().y() < 0)
        m_session->scrollTo(m_session->scrollTop() - 1);
    else if (event->position().y() > height())
        m_session->scrollTo(m_session->scrollTop() + 1);
    const bool hasMoved = m_mode != SelectionMode::Character || positionAt(event->position()) != *m_pressed
        || m_snapshot.selection.has_value();
    if (hasMoved)
        select(m_mode, event->position());
}

void TerminalItem::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_buttonOfProgram) {
        sendMouse(event->position(), MouseAction::Release, std::exchange(m_buttonOfProgram, 0), event->modifiers());
        return;
    }
    if (!m_pressed || !m_session || !m_session->terminal())
        return;
    m_pressed.reset();
    QClipboard* const clipboard = QGuiApplication::clipboard();
    const std::string text = m_session->terminal()->terminal()->selection().text();
    if (clipboard->supportsSelection() && !text.empty())
        clipboard->setText(QString::fromStdString(text), QClipboard::Selection);
}

void TerminalItem::mouseUngrabEvent()
{
    m_pressed.reset();
    m_buttonOfProgram = 0;
}

void TerminalItem::hoverMoveEvent(QHoverEvent* event)
{
    if (m_snapshot.tracksMouse && m_snapshot.top == 0)
        sendMouse(event->position(), MouseAction::Move, 0, event->modifiers());
    updateHover(event->position(), event->modifiers());
}

void TerminalItem::hoverLeaveEvent(QHoverEvent*)
{
    setHover({}, {});
}

/// A program with a screen of its own that does not ask for the mouse is scrolled by the arrow keys.
void TerminalItem::wheelEvent(QWheelEvent* event)
{
    event->accept();
    if (!m_session || !m_session->terminal())
        return;
    m_wheel += event->angleDelta().y();
    const int notches = int(m_wheel / notch);
    const bool isForProgram
        = m_snapshot.tracksMouse && !(event->modifiers() & Qt::ShiftModifier) && m_snapshot.top == 0;
    if (isForProgram || m_snapshot.isAlternate) {
        m_wheel -= notches * notch;
        for (int i = 0; i < std::abs(notches); ++i) {
            if (isForProgram) {
                sendMouse(event->position(), MouseAction::Press, notches > 0 ? 4 : 5, event->modifiers());
                continue;
            }
            for (int line = 0; line < linesOfNotch; ++line)
                withTerminal([&](Terminal& terminal) { terminal.key({ .key = notches > 0 ? keys::up : keys::down }); });
        }
        return;
    }
    const int lines = int(m_wheel * linesOfNotch / notch);
    m_wheel -= qreal(lines) * notch / linesOfNotch;
    if (lines != 0)
        m_session->scrollTo(m_session->scrollTop() - lines);
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

void TerminalItem::setHover(const QString& link, const QList<QRect>& cells)
{
    if (link == m_hoveredLink && cells == m_hoveredCells)
        return;
    m_hoveredLink = link;
    m_hoveredCells = link.isEmpty() ? QList<QRect>() : cells;
    setCursor(link.isEmpty() ? (m_snapshot.tracksMouse ? Qt::ArrowCursor : Qt::IBeamCursor) : Qt::PointingHandCursor);
    update();
    Q_EMIT hoveredLinkChanged();
}

}
