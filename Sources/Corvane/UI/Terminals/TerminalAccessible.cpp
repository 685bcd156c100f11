#include "UI/Terminals/TerminalAccessible.h"

#include "UI/Terminals/TerminalItem.h"

#include <QQuickWindow>

namespace corvane {

namespace {

QAccessibleInterface* make(const QString&, QObject* object)
{
    auto* const item = qobject_cast<TerminalItem*>(object);
    return item ? new TerminalAccessible(item) : nullptr;
}

}

void installTerminalAccessibility()
{
    static const bool installed = [] {
        QAccessible::installFactory(make);
        return true;
    }();
    static_cast<void>(installed);
}

TerminalAccessible::TerminalAccessible(TerminalItem* item)
    : QAccessibleObject(item)
{
}

TerminalItem& TerminalAccessible::item() const
{
    return *static_cast<TerminalItem*>(object());
}

QAccessibleInterface* TerminalAccessible::parent() const
{
    for (QQuickItem* above = item().parentItem(); above; above = above->parentItem()) {
        if (QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(above))
            return interface;
    }
    return QAccessible::queryAccessibleInterface(item().window());
}

QString TerminalAccessible::text(QAccessible::Text what) const
{
    const LumoTerminalSession* const session = item().session();
    return what == QAccessible::Name && session ? session->label() : QString();
}

QAccessible::State TerminalAccessible::state() const
{
    QAccessible::State state;
    state.focusable = state.multiLine = state.readOnly = true;
    state.focused = item().hasActiveFocus();
    state.invisible = !item().isVisible();
    return state;
}

QRect TerminalAccessible::rect() const
{
    const QRectF scene = item().mapRectToScene(item().boundingRect());
    return item().window() ? QRect(item().window()->mapToGlobal(scene.topLeft().toPoint()), scene.size().toSize())
                           : QRect();
}

void* TerminalAccessible::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface*>(this) : nullptr;
}

QString TerminalAccessible::text(int start, int end) const
{
    const QString shown = item().shownText();
    return shown.mid(start, end < 0 ? -1 : end - start);
}

int TerminalAccessible::characterCount() const
{
    return int(item().shownText().size());
}

int TerminalAccessible::cursorPosition() const
{
    return item().cursorOffset();
}

QRect TerminalAccessible::characterRect(int offset) const
{
    const QString before = item().shownText().left(offset);
    const auto column = int(before.size() - before.lastIndexOf(u'\n') - 1);
    const QRectF scene = item().mapRectToScene(item().cellRect(int(before.count(u'\n')), column));
    return item().window() ? QRect(item().window()->mapToGlobal(scene.topLeft().toPoint()), scene.size().toSize())
                           : QRect();
}

int TerminalAccessible::offsetAtPoint(const QPoint& point) const
{
    const QPoint cell = item().cellAt(item().mapFromGlobal(point));
    const QStringList lines = item().shownText().split(u'\n');
    qsizetype offset = 0;
    for (qsizetype i = 0; i < std::min<qsizetype>(cell.y(), lines.size()); ++i)
        offset += lines.at(i).size() + 1;
    return int(offset + std::min<qsizetype>(cell.x(), lines.value(cell.y()).size()));
}

QString TerminalAccessible::attributes(int, int* start, int* end) const
{
    *start = 0;
    *end = characterCount();
    return {};
}

void TerminalAccessible::selection(int, int* start, int* end) const
{
    *start = *end = 0;
}

}
