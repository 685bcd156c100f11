import QtQuick
import QtQuick.Templates as T
import Corvane.Approvals
import Corvane.Controls

/// The pending drafts above the thread: one line per draft; pressing it shows the text and the decision.
FocusScope {
    id: bar

    required property PendingDraftsView drafts ///< the view model
    property string openId ///< the draft whose text is shown

    signal emptied ///< it had the focus, and nothing is left to decide

    /// After a decision: moves to the next draft that needs one.
    function goOn() {
        for (let i = 0; i < lines.count; ++i) {
            const line = lines.itemAt(i) as DraftLine;
            if (line.draft.canDecide) {
                line.focusHead();
                return;
            }
        }
        emptied();
    }

    implicitHeight: visible ? Math.min(content.implicitHeight, 320) : 0
    visible: drafts.count > 0 || drafts.notice !== ""
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Waiting to be sent")

    HoverHandler { onHoveredChanged: bar.drafts.rows.pointerInside = hovered }
    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }
    RevealFocus { view: view }
    Flickable {
        id: view
        anchors.fill: parent
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        contentHeight: content.implicitHeight
        T.ScrollBar.vertical: ScrollBar {}

        Column {
            id: content
            width: parent.width

            Repeater {
                id: lines
                model: bar.drafts.rows
                DraftLine {
                    id: line
                    width: content.width
                    drafts: bar.drafts
                    open: editing || (canOpen && (bar.openId === draft.id || asking))
                    onToggled: bar.openId = line.open ? "" : line.draft.id
                    onDecided: Qt.callLater(bar.goOn)
                }
            }
            Item {
                width: parent.width
                height: notice.visible ? notice.height + Theme.small * 2 : 0
                Banner {
                    id: notice
                    objectName: "drafts.notice"
                    x: Theme.large
                    y: Theme.small
                    width: parent.width - Theme.large * 2
                    visible: text !== ""
                    tone: "warn"
                    text: bar.drafts.notice
                    dismissable: true
                    onDismissed: bar.drafts.dismissNotice()
                }
            }
        }
    }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: Theme.line
    }
}
