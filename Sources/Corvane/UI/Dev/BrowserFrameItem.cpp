#include "UI/Dev/BrowserFrameItem.h"

#include <QClipboard>
#include <QCursor>
#include <QGuiApplication>
#include <algorithm>

namespace corvane {

namespace {

constexpr double pixelsOfNotch = 100;
constexpr double notch = 120;

/// Copying and pasting go over the desktop's clipboard, of which the browser knows nothing.
bool isClipboardKey(const QKeyEvent& event)
{
    return event.matches(QKeySequence::Copy) || event.matches(QKeySequence::Cut) || event.matches(QKeySequence::Paste);
}

/// With Ctrl or Alt only what edits text is the page's.
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

void BrowserFrameItem::setBrowser(ChromiumBrowserController* browser)
{
    if (browser == m_browser)
        return;
    if (m_browser) {
        m_browser->disconnect(this);
        m_browser->page().disconnect(this);
    }
    m_browser = browser;
    if (browser) {
        connect(&browser->page(), &BrowserPage::cursorChanged, this, [this](const QString& css) {
            m_cursor = cursorShape(css);
            setCursor(m_cursor);
        });
        connect(browser, &ChromiumBrowserController::frameChanged, this, [this] { setImage(m_browser->frameImage()); });
        setImage(browser->frameImage());
    }
    Q_EMIT browserChanged();
}

bool BrowserFrameItem::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        event->setAccepted(m_browser && m_browser->isRunning() && isForPage(*static_cast<QKeyEvent*>(event)));
        return event->isAccepted();
    }
    // Tab is the page's, too.
    if (event->type() == QEvent::KeyPress) {
        keyPressEvent(static_cast<QKeyEvent*>(event));
        return event->isAccepted();
    }
    return BrowserPicture::event(event);
}

void BrowserFrameItem::keyPressEvent(QKeyEvent* event)
{
    event->setAccepted(m_browser && m_browser->isRunning() && isForPage(*event));
    if (!event->isAccepted())
        return;
    if (isClipboardKey(*event))
        return edit(*event);
    m_browser->key({ true, event->key(), event->text(), event->modifiers(), event->isAutoRepeat() });
}

void BrowserFrameItem::keyReleaseEvent(QKeyEvent* event)
{
    event->setAccepted(m_browser && m_browser->isRunning() && isForPage(*event));
    if (event->isAccepted() && !event->isAutoRepeat() && !isClipboardKey(*event))
        m_browser->key({ false, event->key(), event->text(), event->modifiers() });
}

void BrowserFrameItem::edit(const QKeyEvent& event)
{
    if (event.matches(QKeySequence::Paste))
        return m_browser->insertText(QGuiApplication::clipboard()->text());
    m_browser->takeSelection(
        event.matches(QKeySequence::Cut), [](const QString& text) { QGuiApplication::clipboard()->setText(text); });
}

void BrowserFrameItem::inputMethodEvent(QInputMethodEvent* event)
{
    event->accept();
    if (!m_browser)
        return;
    if (!event->commitString().isEmpty())
        m_browser->insertText(event->commitString());
    else
        m_browser->compose(event->preeditString(), int(event->preeditString().size()));
}

QVariant BrowserFrameItem::inputMethodQuery(Qt::InputMethodQuery query) const
{
    if (query == Qt::ImEnabled)
        return m_browser && m_browser->isRunning();
    return query == Qt::ImHints ? QVariant(int(Qt::ImhNoPredictiveText)) : QQuickItem::inputMethodQuery(query);
}

void BrowserFrameItem::send(BrowserPointer::Kind kind, const QSinglePointEvent& event)
{
    if (m_browser)
        m_browser->pointer({ .kind = kind,
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
    if (!m_browser)
        return;
    const QPointF pixels = event->pixelDelta().isNull() ? QPointF(event->angleDelta()) * (pixelsOfNotch / notch)
                                                        : QPointF(event->pixelDelta());
    m_browser->pointer({ .kind = BrowserPointer::Kind::Wheel,
                           .at = event->position(),
                           .buttons = event->buttons(),
                           .modifiers = event->modifiers(),
                           .wheel = -pixels },
        size());
}

}
