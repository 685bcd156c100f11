import QtQuick
import QtQuick.Templates as T
import Corvane

/// A voice note: a press plays it, the bar shows where it is and takes a press to go elsewhere.
Rectangle {
    id: note

    required property Item item

    readonly property QtObject player: item.inbox.voicePlayer
    readonly property bool current: player.messageId === item.id
    readonly property bool failed: current && player.state === "failed"
    readonly property string time: !current || player.state === "idle" ? ""
        : player.durationText ? player.positionText + " / " + player.durationText : player.positionText

    implicitWidth: 280
    implicitHeight: 52
    radius: Theme.controlRadius
    color: item.outgoing ? Theme.surface : Theme.raised

    IconButton {
        id: press
        objectName: "thread.play"
        x: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        focusPolicy: Qt.NoFocus
        icon.name: note.current && note.player.state === "playing" ? "media-playback-pause" : "media-playback-start"
        text: note.current ? note.player.actionText : qsTr("Play")
        onClicked: note.player.toggle(note.item.id)
    }
    T.Slider {
        id: track
        objectName: "thread.voicePosition"
        anchors.left: press.right
        anchors.leftMargin: Theme.small
        anchors.right: parent.right
        anchors.rightMargin: Theme.medium
        y: 8
        height: 24
        focusPolicy: Qt.NoFocus
        hoverEnabled: true
        enabled: note.current && ["playing", "paused"].includes(note.player.state)
        value: note.current ? note.player.progress : 0
        // Moved by hand the slider lets go of its binding.
        onMoved: note.player.seek(value)
        onPressedChanged: if (!pressed) value = Qt.binding(() => note.current ? note.player.progress : 0)
        Accessible.name: qsTr("Position in the voice note")

        background: Rectangle {
            y: 10
            width: track.width
            height: 4
            radius: 2
            color: Theme.line
            Rectangle {
                width: track.visualPosition * parent.width
                height: parent.height
                radius: 2
                color: Theme.accent
            }
        }
        handle: Rectangle {
            visible: track.enabled
            x: track.visualPosition * (track.width - width)
            y: 6
            width: 12
            height: 12
            radius: 6
            color: Theme.accent
            scale: track.pressed || track.hovered ? 1.2 : 1
        }
    }
    Label {
        anchors.left: track.left
        anchors.right: track.right
        y: 28
        text: note.failed ? note.player.stateText : note.time || note.item.mediaTitle
        elide: Text.ElideRight
        font.pixelSize: Theme.meta
        color: note.failed ? Theme.bad : Theme.soft
        Accessible.ignored: true
    }
}
