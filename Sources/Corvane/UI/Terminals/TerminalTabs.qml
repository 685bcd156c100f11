import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Terminals

/// The row of tabs: one for each terminal, a new one, and what else can be done.
FocusScope {
    id: bar

    required property TerminalsView screen
    property string renamed ///< the id of the one whose name is being typed

    signal leave

    implicitHeight: 36
    Accessible.role: Accessible.PageTabList
    Accessible.name: qsTr("Terminals")

    function finishRename(id: string, name: string) {
        renamed = "";
        screen.rename(id, name);
        leave();
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.window
    }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: Theme.line
    }
    ListView {
        id: list
        anchors.left: parent.left
        anchors.right: create.left
        height: parent.height
        orientation: ListView.Horizontal
        boundsBehavior: Flickable.StopAtBounds
        model: bar.screen.tabs
        clip: true
        focus: true

        function reveal(index: int) {
            positionViewAtIndex(index, ListView.Contain);
        }

        readonly property real tabWidth: Math.max(96, Math.min(220, width / Math.max(1, count)))

        delegate: T.AbstractButton {
            id: tab

            required property int index
            required property terminalTab entry

            objectName: "terminalTab:" + entry.title
            width: list.tabWidth
            height: bar.height
            hoverEnabled: true
            focus: entry.selected
            focusPolicy: Qt.TabFocus
            text: entry.title
            Accessible.role: Accessible.PageTab
            Accessible.name: entry.attention ? qsTr("%1, wants attention").arg(entry.title) : entry.ended ? qsTr("%1, ended").arg(entry.title) : entry.title
            Accessible.selected: entry.selected
            onClicked: {
                bar.screen.select(tab.entry.tabId);
                bar.leave();
            }
            onDoubleClicked: bar.renamed = tab.entry.tabId
            Keys.onReturnPressed: clicked()
            Keys.onLeftPressed: bar.screen.step(-1)
            Keys.onRightPressed: bar.screen.step(1)
            Keys.onPressed: event => {
                if (event.key === Qt.Key_F2)
                    bar.renamed = tab.entry.tabId;
                else if (event.key === Qt.Key_Delete)
                    bar.screen.close(tab.entry.tabId);
                else if (event.key === Qt.Key_Menu)
                    menu.popup(tab, 0, tab.height);
                else
                    return;
                event.accepted = true;
            }

            readonly property bool inFront: entry.selected
            onInFrontChanged: if (inFront) Qt.callLater(list.reveal, index) // not while the list lays itself out

            background: Rectangle {
                color: tab.entry.selected ? Theme.surface : tab.hovered ? Theme.raised : Theme.none
                Rectangle {
                    anchors.bottom: parent.bottom
                    width: parent.width
                    height: 2
                    visible: tab.entry.selected
                    color: Theme.accent
                }
                Rectangle {
                    anchors.right: parent.right
                    y: 8
                    width: 1
                    height: parent.height - 16
                    visible: !tab.entry.selected
                    color: Theme.line
                }
                Rectangle {
                    objectName: "terminalTab.progress"
                    width: parent.width * tab.entry.progress
                    height: 2
                    visible: tab.entry.progress > 0
                    color: tab.entry.stalled ? Theme.warn : Theme.good
                }
                FocusRing { control: tab; anchors.margins: 2; radius: Theme.controlRadius }
            }
            contentItem: Item {
                Rectangle {
                    id: dot
                    x: Theme.medium
                    anchors.verticalCenter: parent.verticalCenter
                    width: 6
                    height: 6
                    radius: 3
                    visible: tab.entry.attention
                    color: Theme.accent
                }
                Label {
                    anchors.left: tab.entry.attention ? dot.right : parent.left
                    anchors.leftMargin: tab.entry.attention ? Theme.small : Theme.medium
                    anchors.right: closer.left
                    anchors.verticalCenter: parent.verticalCenter
                    visible: bar.renamed !== tab.entry.tabId
                    text: tab.entry.title
                    color: tab.entry.ended ? Theme.faint : tab.entry.selected ? Theme.text : Theme.soft
                    font.strikeout: tab.entry.ended
                    elide: Text.ElideMiddle
                    Accessible.ignored: true
                }
                Loader {
                    anchors.left: parent.left
                    anchors.right: closer.left
                    anchors.leftMargin: Theme.tight
                    anchors.verticalCenter: parent.verticalCenter
                    active: bar.renamed === tab.entry.tabId
                    sourceComponent: TextField {
                        objectName: "terminalTab.name"
                        implicitHeight: 28
                        label: ""
                        placeholderText: tab.entry.title
                        text: tab.entry.title
                        onAccepted: bar.finishRename(tab.entry.tabId, text)
                        onActiveFocusChanged: if (!activeFocus && bar.renamed === tab.entry.tabId) bar.renamed = ""
                        Keys.onEscapePressed: bar.finishRename(tab.entry.tabId, "")
                        Component.onCompleted: {
                            forceActiveFocus();
                            selectAll();
                        }
                    }
                }
                IconButton {
                    id: closer
                    anchors.right: parent.right
                    anchors.rightMargin: Theme.tight
                    anchors.verticalCenter: parent.verticalCenter
                    opacity: tab.hovered || tab.entry.selected || hovered ? 1 : 0
                    focusPolicy: Qt.NoFocus
                    size: 24
                    iconSize: 12
                    icon.name: "window-close"
                    text: qsTr("Close")
                    key: tab.entry.selected ? Commands.keysOf("closeTerminal") : ""
                    onClicked: bar.screen.close(tab.entry.tabId)
                }
            }
            TapHandler {
                acceptedButtons: Qt.MiddleButton
                onTapped: bar.screen.close(tab.entry.tabId)
            }
            TapHandler {
                acceptedButtons: Qt.RightButton
                onTapped: menu.popup()
            }
            Menu {
                id: menu
                MenuItem {
                    text: qsTr("Rename…")
                    key: "F2"
                    onTriggered: bar.renamed = tab.entry.tabId
                }
                MenuItem {
                    text: qsTr("Close")
                    key: Commands.keysOf("closeTerminal")
                    onTriggered: bar.screen.close(tab.entry.tabId)
                }
            }
        }
    }
    IconButton {
        id: create
        objectName: "terminals.new"
        anchors.right: parent.right
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        size: 28
        icon.name: "list-add"
        text: bar.screen.createLabel
        key: Commands.keysOf("newTerminal")
        onClicked: {
            bar.screen.create();
            bar.leave();
        }
    }
}
