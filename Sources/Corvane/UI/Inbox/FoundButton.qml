import QtQuick
import QtQuick.Templates as T
import Corvane.Controls

/// A row of what the search found; the arrow keys lead from one to the next.
T.AbstractButton {
    id: button

    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onDownPressed: nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
    Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    background: Rectangle {
        x: Theme.small
        width: button.width - Theme.small * 2
        radius: Theme.cardRadius
        color: button.hovered && button.enabled ? Theme.raised : Theme.none
        border.width: button.visualFocus ? 2 : 0
        border.color: Theme.accent
    }
}
