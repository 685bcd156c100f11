import QtQuick
import QtQuick.Templates as T
import Corvane.Calls
import Corvane.Controls

/// Who said what: the line that is playing is highlighted and kept visible; clicking a line plays it.
FocusScope {
    id: transcript

    required property CallPage page
    readonly property CallTranscriptView view: page.transcript

    function leadToHit() {
        if (view.firstHit >= 0) {
            list.positionViewAtIndex(view.firstHit, ListView.Center);
            list.currentIndex = view.firstHit;
        }
    }

    Connections {
        target: transcript.view
        function onMoved() {
            const turn = transcript.view.currentTurn;
            if (turn >= 0 && turn !== list.heard) {
                list.heard = turn;
                if (!list.moving && !list.activeFocus)
                    list.positionViewAtIndex(turn, ListView.Contain);
            } else if (turn < 0) {
                list.heard = -1;
            }
        }
        function onChanged() { Qt.callLater(transcript.leadOnce); }
    }
    property string ledFor
    function leadOnce() {
        const search = page.callId + "/" + view.firstHit;
        if (search === ledFor)
            return;
        ledFor = search;
        leadToHit();
    }

    ListView {
        id: list
        objectName: "call.transcript"
        property int heard: -1
        anchors.fill: parent
        focus: true
        clip: true
        spacing: 2
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: true
        model: transcript.view.turns
        keyNavigationEnabled: true
        highlightMoveDuration: 0
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Transcript")
        T.ScrollBar.vertical: ScrollBar {}
        Keys.onReturnPressed: if (currentIndex >= 0) transcript.view.playTurn(currentIndex)
        Keys.onSpacePressed: transcript.page.sound.player.toggle()

        KeyboardFocus { id: keyboard; target: list }

        delegate: T.AbstractButton {
            id: row

            required property callTurn turn
            required property int index

            objectName: "call.turn"
            width: ListView.view.width
            implicitHeight: words.implicitHeight + Theme.small * 2
            hoverEnabled: true
            focusPolicy: Qt.NoFocus
            text: turn.text
            Accessible.role: Accessible.ListItem
            Accessible.name: turn.speaker + ", " + turn.time + ": " + turn.text
            onClicked: {
                list.currentIndex = index;
                transcript.view.playTurn(index);
            }
            background: Rectangle {
                radius: Theme.controlRadius
                color: list.heard === row.index || row.turn.hit ? Theme.tint : row.hovered ? Theme.raised : Theme.none
                border.width: keyboard.shown && row.ListView.isCurrentItem ? 2 : 0
                border.color: Theme.accent
            }
            contentItem: Item {
                Label {
                    id: time
                    x: Theme.small
                    y: Theme.small
                    width: 52
                    text: row.turn.time
                    font.pixelSize: Theme.meta
                    color: list.heard === row.index ? Theme.accent : Theme.faint
                }
                Column {
                    id: words
                    x: time.x + time.width
                    y: Theme.small
                    width: parent.width - x - Theme.small
                    spacing: 2
                    Label {
                        text: row.turn.speaker
                        font.pixelSize: Theme.meta
                        font.weight: Theme.strong
                        color: row.turn.mine ? Theme.accent : Theme.soft
                    }
                    Label {
                        width: parent.width
                        wrapMode: Text.Wrap
                        lineHeight: 1.3
                        text: row.turn.text
                    }
                }
            }
        }
    }
    Label {
        anchors.centerIn: parent
        visible: text !== ""
        text: transcript.view.emptyText
        color: Theme.soft
    }
}
