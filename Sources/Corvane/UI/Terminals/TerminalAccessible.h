#pragma once

#include <QAccessibleObject>

namespace corvane {

class TerminalItem;

/// A terminal for screen readers: its rows as a text with a cursor.
class TerminalAccessible final : public QAccessibleObject, public QAccessibleTextInterface {
public:
    explicit TerminalAccessible(TerminalItem* item);

    QAccessibleInterface* parent() const override;
    QAccessibleInterface* child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QString text(QAccessible::Text what) const override;
    QAccessible::Role role() const override { return QAccessible::Terminal; }
    QAccessible::State state() const override;
    QRect rect() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    QString text(int start, int end) const override;
    int characterCount() const override;
    int cursorPosition() const override;
    void setCursorPosition(int) override { }
    QRect characterRect(int offset) const override;
    int offsetAtPoint(const QPoint& point) const override;
    QString attributes(int offset, int* start, int* end) const override;
    void scrollToSubstring(int, int) override { }
    void selection(int index, int* start, int* end) const override;
    int selectionCount() const override { return 0; }
    void addSelection(int, int) override { }
    void removeSelection(int) override { }
    void setSelection(int, int, int) override { }

private:
    TerminalItem& item() const;
};

/// Further calls have no effect.
void installTerminalAccessibility();

}
