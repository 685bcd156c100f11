#include "UI/Terminals/TerminalItem.h"
#include "UI/Terminals/TerminalKeys.h"

#include <QClipboard>
#include <QCursor>
#include <QGuiApplication>
#include <QStyleHints>

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
    setDrag(event->position(), true);
    const bool hasMoved = m_mode != SelectionMode::Character || positionAt(event->position()) != *m_pressed
        || m_snapshot.selection.has_value();
    if (hasMoved)
        select(m_mode, event->position());
}

void TerminalItem::setDrag(QPointF position, bool held)
{
    m_drag = position;
    const bool isOut = held && (position.y() < 0 || position.y() > height());
    if (std::exchange(m_draggedOut, isOut) != isOut)
        Q_EMIT draggedOutChanged();
}

void TerminalItem::continueDrag()
{
    if (!m_pressed || !m_session || !m_draggedOut)
        return;
    m_session->scrollTo(m_session->scrollTop() + (m_drag.y() < 0 ? -1 : 1));
    select(m_mode, m_drag);
}

std::optional<Terminal::PromptRange> TerminalItem::outputAt(QPointF position) const
{
    if (!m_session || !m_session->terminal())
        return {};
    const int64_t row = positionAt(position).row;
    for (const Terminal::PromptRange& range : m_session->terminal()->terminal()->marks()) {
        const bool isIn = row >= range.row && (row < range.endRow || (row == range.endRow && range.endColumn > 0));
        if (range.kind == PromptMark::Output && isIn)
            return range;
    }
    return {};
}

void TerminalItem::selectOutput(QPointF at)
{
    const auto output = outputAt(at);
    if (!output)
        return;
    const Position last = output->endColumn > 0 ? Position { output->endRow, output->endColumn - 1 }
                                                : Position { output->endRow - 1, m_snapshot.size.columns - 1 };
    m_session->terminal()->terminal()->selection().set(SelectionMode::Character, { output->row, output->column }, last);
    look();
}

void TerminalItem::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_buttonOfProgram) {
        sendMouse(event->position(), MouseAction::Release, std::exchange(m_buttonOfProgram, 0), event->modifiers());
        return;
    }
    setDrag({}, false);
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
    setDrag({}, false);
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

}
