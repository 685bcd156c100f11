#include "Browser/BrowserInput.h"

#include "Foundation/Literals.h"

#include <QHash>
#include <algorithm>

namespace corvane {

namespace {

/// A key's DOM names and its Windows key code, which pages still read.
struct NamedKey {
    QString key;
    QString code;
    int number = 0;
    QString text = {};
};

const QHash<int, NamedKey>& namedKeys()
{
    static const auto keys = [] {
        QHash<int, NamedKey> all {
            { Qt::Key_Return, { u"Enter"_s, u"Enter"_s, 13, u"\r"_s } },
            { Qt::Key_Enter, { u"Enter"_s, u"NumpadEnter"_s, 13, u"\r"_s } },
            { Qt::Key_Tab, { u"Tab"_s, u"Tab"_s, 9 } },
            { Qt::Key_Backtab, { u"Tab"_s, u"Tab"_s, 9 } },
            { Qt::Key_Backspace, { u"Backspace"_s, u"Backspace"_s, 8 } },
            { Qt::Key_Delete, { u"Delete"_s, u"Delete"_s, 46 } },
            { Qt::Key_Insert, { u"Insert"_s, u"Insert"_s, 45 } },
            { Qt::Key_Escape, { u"Escape"_s, u"Escape"_s, 27 } },
            { Qt::Key_Space, { u" "_s, u"Space"_s, 32, u" "_s } },
            { Qt::Key_Left, { u"ArrowLeft"_s, u"ArrowLeft"_s, 37 } },
            { Qt::Key_Up, { u"ArrowUp"_s, u"ArrowUp"_s, 38 } },
            { Qt::Key_Right, { u"ArrowRight"_s, u"ArrowRight"_s, 39 } },
            { Qt::Key_Down, { u"ArrowDown"_s, u"ArrowDown"_s, 40 } },
            { Qt::Key_Home, { u"Home"_s, u"Home"_s, 36 } },
            { Qt::Key_End, { u"End"_s, u"End"_s, 35 } },
            { Qt::Key_PageUp, { u"PageUp"_s, u"PageUp"_s, 33 } },
            { Qt::Key_PageDown, { u"PageDown"_s, u"PageDown"_s, 34 } },
            { Qt::Key_Shift, { u"Shift"_s, u"ShiftLeft"_s, 16 } },
            { Qt::Key_Control, { u"Control"_s, u"ControlLeft"_s, 17 } },
            { Qt::Key_Alt, { u"Alt"_s, u"AltLeft"_s, 18 } },
            { Qt::Key_Meta, { u"Meta"_s, u"MetaLeft"_s, 91 } },
        };
        for (int n = 0; n < 12; ++n) {
            const QString name = u"F%1"_s.arg(n + 1);
            all.insert(Qt::Key_F1 + n, { name, name, 112 + n });
        }
        return all;
    }();
    return keys;
}

/// A key by the character on it.
std::optional<NamedKey> characterKey(const BrowserKey& key)
{
    const bool isPrintable = !key.text.isEmpty() && key.text.front().isPrint();
    const bool isAscii = key.key > 0x20 && key.key < 0x7f;
    if (!isPrintable && !isAscii)
        return std::nullopt;
    const QChar cap(char16_t(isAscii ? key.key : 0));
    NamedKey named { key.text, {}, 0, key.text };
    if (cap.isLetter() || cap.isDigit()) {
        named.code = (cap.isLetter() ? u"Key"_s : u"Digit"_s) + cap;
        named.number = cap.unicode();
    }
    // Qt reports Ctrl and a letter as a control character; pages expect the letter.
    if (!isPrintable)
        named.key = cap.toLower();
    if (!isPrintable || key.modifiers & (Qt::ControlModifier | Qt::MetaModifier))
        named.text.clear();
    return named;
}

int modifierBits(Qt::KeyboardModifiers modifiers)
{
    return (modifiers & Qt::AltModifier ? 1 : 0) | (modifiers & Qt::ControlModifier ? 2 : 0)
        | (modifiers & Qt::MetaModifier ? 4 : 0) | (modifiers & Qt::ShiftModifier ? 8 : 0);
}

QString buttonName(Qt::MouseButton button)
{
    switch (button) {
    case Qt::LeftButton:
        return u"left"_s;
    case Qt::RightButton:
        return u"right"_s;
    case Qt::MiddleButton:
        return u"middle"_s;
    case Qt::BackButton:
        return u"back"_s;
    case Qt::ForwardButton:
        return u"forward"_s;
    default:
        return u"none"_s;
    }
}

QString heldButton(Qt::MouseButtons buttons)
{
    for (const Qt::MouseButton button : { Qt::LeftButton, Qt::RightButton, Qt::MiddleButton }) {
        if (buttons & button)
            return buttonName(button);
    }
    return buttonName(Qt::NoButton);
}

}

QRectF shownFrame(QSizeF frame, QSizeF view)
{
    const QSizeF size = frame.isEmpty() ? QSizeF() : frame.scaled(view, Qt::KeepAspectRatio);
    return { QPointF((view.width() - size.width()) / 2, (view.height() - size.height()) / 2), size };
}

std::optional<QPointF> pagePoint(QPointF inView, QSizeF view, QSizeF viewport)
{
    if (view.width() <= 1 || view.height() <= 1 || viewport.isEmpty())
        return std::nullopt;
    const QRectF shown = shownFrame(viewport, view);
    const QPointF point = inView - shown.topLeft();
    return QPointF(std::max(0.0, point.x() * viewport.width() / shown.width()),
        std::max(0.0, point.y() * viewport.height() / shown.height()));
}

QJsonObject pointerParameters(const BrowserPointer& pointer, QPointF at)
{
    using Kind = BrowserPointer::Kind;
    static const QHash<Kind, QString> types { { Kind::Press, u"mousePressed"_s }, { Kind::Release, u"mouseReleased"_s },
        { Kind::Move, u"mouseMoved"_s }, { Kind::Wheel, u"mouseWheel"_s } };
    const bool isButton = pointer.kind == Kind::Press || pointer.kind == Kind::Release;
    QJsonObject parameters { { u"type"_s, types.value(pointer.kind) }, { u"x"_s, at.x() }, { u"y"_s, at.y() },
        { u"button"_s, isButton ? buttonName(pointer.button) : heldButton(pointer.buttons) } };
    if (isButton)
        parameters.insert(u"clickCount"_s, std::max(1, pointer.clicks));
    if (const int bits = modifierBits(pointer.modifiers))
        parameters.insert(u"modifiers"_s, bits);
    if (const int held = (pointer.buttons & Qt::LeftButton ? 1 : 0) | (pointer.buttons & Qt::RightButton ? 2 : 0)
            | (pointer.buttons & Qt::MiddleButton ? 4 : 0))
        parameters.insert(u"buttons"_s, held);
    if (pointer.kind == Kind::Wheel) {
        parameters.insert(u"deltaX"_s, pointer.wheel.x());
        parameters.insert(u"deltaY"_s, pointer.wheel.y());
    }
    return parameters;
}

Qt::CursorShape cursorShape(const QString& css)
{
    static const QHash<QString, Qt::CursorShape> shapes { { u"pointer"_s, Qt::PointingHandCursor },
        { u"text"_s, Qt::IBeamCursor }, { u"vertical-text"_s, Qt::IBeamCursor }, { u"crosshair"_s, Qt::CrossCursor },
        { u"cell"_s, Qt::CrossCursor }, { u"move"_s, Qt::SizeAllCursor }, { u"all-scroll"_s, Qt::SizeAllCursor },
        { u"grab"_s, Qt::OpenHandCursor }, { u"grabbing"_s, Qt::ClosedHandCursor },
        { u"not-allowed"_s, Qt::ForbiddenCursor }, { u"no-drop"_s, Qt::ForbiddenCursor }, { u"wait"_s, Qt::WaitCursor },
        { u"progress"_s, Qt::BusyCursor }, { u"help"_s, Qt::WhatsThisCursor }, { u"none"_s, Qt::BlankCursor },
        { u"copy"_s, Qt::DragCopyCursor }, { u"alias"_s, Qt::DragLinkCursor }, { u"col-resize"_s, Qt::SplitHCursor },
        { u"row-resize"_s, Qt::SplitVCursor }, { u"e-resize"_s, Qt::SizeHorCursor },
        { u"w-resize"_s, Qt::SizeHorCursor }, { u"ew-resize"_s, Qt::SizeHorCursor },
        { u"n-resize"_s, Qt::SizeVerCursor }, { u"s-resize"_s, Qt::SizeVerCursor },
        { u"ns-resize"_s, Qt::SizeVerCursor }, { u"ne-resize"_s, Qt::SizeBDiagCursor },
        { u"sw-resize"_s, Qt::SizeBDiagCursor }, { u"nesw-resize"_s, Qt::SizeBDiagCursor },
        { u"nw-resize"_s, Qt::SizeFDiagCursor }, { u"se-resize"_s, Qt::SizeFDiagCursor },
        { u"nwse-resize"_s, Qt::SizeFDiagCursor } };
    return shapes.value(css.sliced(css.lastIndexOf(u',') + 1).trimmed(), Qt::ArrowCursor);
}

std::optional<QJsonObject> keyParameters(const BrowserKey& key)
{
    const auto named = namedKeys().constFind(key.key);
    const std::optional<NamedKey> known = named != namedKeys().cend() ? std::optional(*named) : characterKey(key);
    if (!known)
        return std::nullopt;
    const bool types = key.isDown && !known->text.isEmpty();
    QJsonObject parameters { { u"type"_s,
                                 !key.isDown ? u"keyUp"_s
                                     : types ? u"keyDown"_s
                                             : u"rawKeyDown"_s },
        { u"key"_s, known->key }, { u"code"_s, known->code }, { u"windowsVirtualKeyCode"_s, known->number },
        { u"modifiers"_s, modifierBits(key.modifiers) } };
    if (types)
        parameters.insert(u"text"_s, known->text);
    if (key.isRepeated)
        parameters.insert(u"autoRepeat"_s, true);
    return parameters;
}

}
