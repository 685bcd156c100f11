#pragma once

#include "Terminals/LumoTerminalSession.h"
#include "UI/Terminals/TerminalPainter.h"

#include <QPointer>
#include <QQuickItem>
#include <QtQmlIntegration>

namespace corvane {

/// Draws a terminal and handles its keyboard, mouse and input method. Changed rows are painted into images on the main
/// thread; rows that only moved keep theirs. It is idle while nothing changes, or while it is not visible.
class TerminalItem : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(corvane::LumoTerminalSession* session READ session WRITE setSession NOTIFY sessionChanged)
    Q_PROPERTY(int fontSize READ fontSize WRITE setFontSize NOTIFY fontSizeChanged)
    /// Sixteen colours, then text, background and cursor.
    Q_PROPERTY(QList<QColor> colors READ colors WRITE setColors NOTIFY colorsChanged)
    Q_PROPERTY(bool dark READ dark WRITE setDark NOTIFY colorsChanged)
    Q_PROPERTY(QColor selectionColor MEMBER m_selectionColor NOTIFY colorsChanged)
    Q_PROPERTY(QColor matchColor MEMBER m_matchColor NOTIFY colorsChanged)
    Q_PROPERTY(bool cursorOn READ cursorOn WRITE setCursorOn NOTIFY cursorOnChanged) ///< for blinking
    Q_PROPERTY(bool cursorBlinks READ cursorBlinks NOTIFY viewChanged)
    Q_PROPERTY(bool textOn READ textOn WRITE setTextOn NOTIFY textOnChanged) ///< for blinking text
    Q_PROPERTY(bool textBlinks READ textBlinks NOTIFY viewChanged)
    Q_PROPERTY(qreal scrollSize READ scrollSize NOTIFY viewChanged) ///< the visible share, as for a scroll bar
    Q_PROPERTY(qreal scrollPosition READ scrollPosition NOTIFY viewChanged)
    Q_PROPERTY(bool hasSelection READ hasSelection NOTIFY viewChanged)
    Q_PROPERTY(bool draggedOut READ draggedOut NOTIFY draggedOutChanged) ///< a selection, beyond an edge
    Q_PROPERTY(QString hoveredLink READ hoveredLink NOTIFY hoveredLinkChanged) ///< the target of Ctrl+click
public:
    explicit TerminalItem(QQuickItem* parent = nullptr);
    ~TerminalItem() override;

    LumoTerminalSession* session() const { return m_session; }
    void setSession(LumoTerminalSession* session);
    int fontSize() const { return m_fontSize; }
    void setFontSize(int size);
    const QList<QColor>& colors() const { return m_colors; }
    void setColors(const QList<QColor>& colors);
    bool dark() const { return m_dark; }
    void setDark(bool dark);
    bool cursorOn() const { return m_cursorOn; }
    void setCursorOn(bool on);
    bool cursorBlinks() const { return m_snapshot.cursor.blinks && m_snapshot.cursor.visible; }
    bool textOn() const { return m_textOn; }
    void setTextOn(bool on);
    bool textBlinks() const { return std::ranges::any_of(m_strips, &Strip::blinks); }
    qreal scrollSize() const;
    qreal scrollPosition() const;
    bool hasSelection() const { return m_snapshot.selection.has_value(); }
    QString hoveredLink() const { return m_hoveredLink; }
    bool draggedOut() const { return m_draggedOut; }

    Q_INVOKABLE void scrollToPosition(qreal position);
    void scrollByPages(int pages);
    void scrollToEnd(bool oldest);
    Q_INVOKABLE void copy() const;
    Q_INVOKABLE void selectAll();
    Q_INVOKABLE QString clipboardText() const;
    /// At a place in the output of a command, if the shell marks that (OSC 133).
    Q_INVOKABLE bool isOutput(QPointF at) const { return outputAt(at).has_value(); }
    Q_INVOKABLE void selectOutput(QPointF at);
    Q_INVOKABLE void continueDrag(); ///< while the mouse is held beyond an edge: the text follows

    /// The visible rows as text, one line each, and the cursor's position in it.
    QString shownText() const;
    int cursorOffset() const;
    QRectF cellRect(int row, int column) const; ///< in the item's coordinates
    QPoint cellAt(QPointF position) const; ///< column and row, within the screen

    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

Q_SIGNALS:
    void sessionChanged();
    void fontSizeChanged();
    void colorsChanged();
    void cursorOnChanged();
    void textOnChanged();
    void viewChanged();
    void hoveredLinkChanged();
    void draggedOutChanged();
    void menuRequested(QPointF at);
    void linkOpened(const QString& address);
    void pasteRequested(const QString& text);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseUngrabEvent() override;
    void hoverMoveEvent(QHoverEvent* event) override;
    void hoverLeaveEvent(QHoverEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    void updatePolish() override;
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData*) override;

private:
    friend class TerminalScene;

    /// A row as drawn. Its number stays the same as long as its content does, wherever it moves.
    struct Strip {
        terminal::ShownRow::Key key;
        uint64_t number = 0;
        bool blinks = false; ///< some of its text
        std::vector<TerminalQuad> quads {};
        QImage picture {}; ///< in place of the quads, where it is not null
    };

    void look(); ///< something may have changed
    bool isSeen() const;
    void updateFont();
    void updateSize();
    void paintStrips();
    Strip paintStrip(const terminal::ShownRow& row);
    void applyColors();
    bool sendKey(const QKeyEvent& event, terminal::KeyAction action);
    bool sendMouse(QPointF position, terminal::MouseAction action, int button, Qt::KeyboardModifiers modifiers);
    void select(terminal::SelectionMode mode, QPointF to);
    void setFocusOfProgram(bool in);
    void updatePointer();
    void setDrag(QPointF position, bool held);
    std::optional<terminal::Terminal::PromptRange> outputAt(QPointF position) const;
    void updateHover(QPointF position, Qt::KeyboardModifiers modifiers);
    void setHover(const QString& link, const QList<QRect>& cells);
    terminal::Position positionAt(QPointF position) const;
    void announceText();
    template <typename Action> void withTerminal(Action action);

    QPointer<LumoTerminalSession> m_session;
    std::unique_ptr<TerminalPainter> m_painter;
    int m_fontSize = 14;
    qreal m_ratio = 1; ///< device pixel ratio
    QList<QColor> m_colors;
    bool m_dark = false;
    QColor m_selectionColor;
    QColor m_matchColor;
    bool m_cursorOn = true;
    bool m_textOn = true;
    terminal::Snapshot m_snapshot;
    TerminalLook m_look;
    std::vector<Strip> m_strips;
    int m_stripColumns = 0;
    bool m_drawsQuads = false; ///< the GPU composes the rows, not the painter
    uint64_t m_lastStrip = 0;
    QString m_preedit;
    QString m_announced;

    // Mouse
    std::optional<terminal::Position> m_pressed; ///< the start of a selection
    terminal::SelectionMode m_mode = terminal::SelectionMode::Character;
    ulong m_doubleClickedAt = 0;
    int m_buttonOfProgram = 0; ///< the button press that was reported to the program
    qreal m_wheel = 0;
    QPointF m_drag;
    bool m_draggedOut = false;
    QString m_hoveredLink;
    QList<QRect> m_hoveredCells; ///< the cells of the link
};

}
