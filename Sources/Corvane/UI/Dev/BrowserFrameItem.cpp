#include "UI/Dev/BrowserFrameItem.h"

#include <QClipboard>
#include <QCursor>
#include <QGuiApplication>
#include <algorithm>

namespace corvane {

namespace {

constexpr double pixelsOfNotch = 100;
constexpr double notch = 120;

/// The headless browser has no access to the desktop's clipboard.
bool isClipboardKey(const QKeyEvent& event)
{
    return event.matches(QKeySequence::Copy) || event.matches(QKeySequence::Cut) || event.matches(QKeySequence::Paste);
}

/// With Ctrl or Alt, only text editing keys go to the page.
bool isForPage(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const int key = event.key();
    if (modifiers & Qt::ControlModifier) {
        constexpr std::array editing { Qt::Key_A, Qt::Key_C, Qt::Key_V, Qt::Key_X, Qt::Key_Z, Qt::Key_Y, Qt::Key_Left,
            Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_Home, Qt::Key_End, Qt::Key_Backspace, Qt::Key_Delete,
            Qt::Key_Return, Qt::Key_Control, Qt::Key_Shift };
        return std::ranges::find(editing, key) != editing.end();
    }
    if (modifiers & (Qt::AltModifier | Qt::MetaModifier))
        return key == Qt::Key_Alt;
    return key != Qt::Key_F1 && key != Qt::Key_F5 && key != Qt::Key_F6;
}

}

BrowserFrameItem::BrowserFrameItem(QQuickItem* parent)
    : BrowserPicture(parent)
{
    setAcceptedMouseButtons(Qt::AllButtons);
    setAcceptHoverEvents(true);
    setFlag(ItemAcceptsInputMethod);
    setFlag(ItemIsFocusScope, false);
    setActiveFocusOnTab(true);
}

void BrowserFrameItem::setSurface(BrowserSurface* surface)
{
    if (surface == m_surface)
        return;
    if (m_surface)
        m_surface->disconnect(this);
    m_surface = surface;
    if (surface) {
        connect(surface, &BrowserSurface::cursorChanged, this, [this](const QString& css) {
            m_cursor = cursorShape(css);
            setCursor(m_cursor);
        });
        connect(surface, &BrowserSurface::frameChanged, this, [this] { setImage(m_surface->frameImage()); });
        setImage(surface->frameImage());
    }
    Q_EMIT surfaceChanged();
}

bool BrowserFrameItem::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        event->setAccepted(m_surface && m_surface->takesInput() && isForPage(*static_cast<QKeyEvent*>(event)));
        return event->isAccepted();
    }
    // Tab goes to the page, too.
    if (event->type() == QEvent::KeyPress) {
        keyPressEvent(static_cast<QKeyEvent*>(event));
        return event->isAccepted();
    }
    return BrowserPicture::event(event);
}

void BrowserFrameItem::keyPressEvent(QKeyEvent* event)
{
    event->setAccepted(m_surface && m_surface->takesInput() && isForPage(*event));
    if (!event->isAccepted())
        return;
    if (isClipboardKey(*event))
        return edit(*event);
    m_surface->key({ true, event->key(), event->text(), event->modifiers(), event->isAutoRepeat() });
}

void BrowserFrameItem::keyReleaseEvent(QKeyEvent* event)
{
    event->setAccepted(m_surface && m_surface->takesInput() && isForPage(*event));
    if (event->isAccepted() && !event->isAutoRepeat() && !isClipboardKey(*event))
        m_surface->key({ false, event->key(), event->text(), event->modifiers() });
}

void BrowserFrameItem::edit(const QKeyEvent& event)
{
    if (event.matches(QKeySequence::Paste))
        return m_surface->insertText(QGuiApplication::clipboard()->text());
    m_surface->takeSelection(
        event.matches(QKeySequence::Cut), [](const QString& text) { QGuiApplication::clipboard()->setText(text); });
}

void BrowserFrameItem::inputMethodEvent(QInputMethodEvent* event)
{
    event->accept();
    if (!m_surface)
        return;
    if (!event->commitString().isEmpty())
        m_surface->insertText(event->commitString());
    else
        m_surface->compose(event->preeditString(), int(event->preeditString().size()));
}

QVariant BrowserFrameItem::inputMethodQuery(Qt::InputMethodQuery query) const
{
    if (query == Qt::ImEnabled)
        return m_surface && m_surface->takesInput();
    return query == Qt::ImHints ? QVariant(int(Qt::ImhNoPredictiveText)) : QQuickItem::inputMethodQuery(query);
}

void BrowserFrameItem::send(BrowserPointer::Kind kind, const QSinglePointEvent& event)
{
    if (m_surface)
        m_surface->pointer({ .kind = kind,
                               .at = event.position(),
                               .button = event.button(),
                               .buttons = event.buttons(),
                               .clicks = m_clicks,
                               .modifiers = event.modifiers() },
            size());
}

void BrowserFrameItem::mousePressEvent(QMouseEvent* event)
{
    forceActiveFocus(Qt::MouseFocusReason);
    m_clicks = 1;
    send(BrowserPointer::Kind::Press, *event);
}

void BrowserFrameItem::mouseDoubleClickEvent(QMouseEvent* event)
{
    m_clicks = 2;
    send(BrowserPointer::Kind::Press, *event);
}

void BrowserFrameItem::mouseMoveEvent(QMouseEvent* event)
{
    send(BrowserPointer::Kind::Move, *event);
}

void BrowserFrameItem::mouseReleaseEvent(QMouseEvent* event)
{
    send(BrowserPointer::Kind::Release, *event);
}

void BrowserFrameItem::hoverMoveEvent(QHoverEvent* event)
{
    setCursor(shown().contains(event->position()) ? m_cursor : Qt::ArrowCursor);
    send(BrowserPointer::Kind::Move, *event);
}

void BrowserFrameItem::wheelEvent(QWheelEvent* event)
{
    event->accept();
    if (!m_surface)
        return;
    const QPointF pixels = event->pixelDelta().isNull() ? QPointF(event->angleDelta()) * (pixelsOfNotch / notch)
                                                        : QPointF(event->pixelDelta());
    m_surface->pointer({ .kind = BrowserPointer::Kind::Wheel,
                           .at = event->position(),
                           .buttons = event->buttons(),
                           .modifiers = event->modifiers(),
                           .wheel = -pixels },
        size());
}

}
