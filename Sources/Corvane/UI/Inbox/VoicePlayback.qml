import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Inbox

/// A voice note: waveform, name and length. Pressing the button plays it, pressing the waveform seeks.
Rectangle {
    id: note

    required property threadRow message
    required property VoicePlayer player

    readonly property bool current: player.messageId === message.id
    readonly property string problem: wave.problem || (current && player.state === "failed" ? player.stateText : "")
    readonly property string time: !current || player.state === "idle" ? "" : player.positionText

    implicitWidth: 280
    implicitHeight: 58
    radius: Theme.controlRadius
    color: message.outgoing ? Theme.surface : Theme.raised

    IconButton {
        id: press
        objectName: "thread.play"
        x: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        focusPolicy: Qt.NoFocus
        icon.name: note.current && note.player.state === "playing" ? "media-playback-pause" : "media-playback-start"
        text: note.current ? note.player.actionText : qsTr("Play")
        onClicked: note.player.toggle(note.message.id)
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
        // Dragging the slider breaks its binding.
        onMoved: note.player.seek(value)
        onPressedChanged: if (!pressed) value = Qt.binding(() => note.current ? note.player.progress : 0)
        Accessible.name: qsTr("Position in the voice note")

        background: Waveform {
            id: wave
            width: track.width
            height: track.height
            path: note.message.mediaPath
            progress: track.visualPosition
            ink: Theme.faint
            accent: Theme.accent
        }
        handle: Rectangle {
            visible: track.enabled
            x: track.visualPosition * (track.width - width)
            y: (track.height - height) / 2
            width: 4
            height: track.height
            radius: 2
            color: Theme.accent
        }
    }
    Label {
        anchors.left: track.left
        anchors.right: length.left
        anchors.rightMargin: Theme.small
        y: 34
        text: note.problem || note.message.mediaTitle
        elide: Text.ElideRight
        font.pixelSize: Theme.meta
        color: note.problem ? Theme.bad : Theme.soft
        Accessible.ignored: true
    }
    Label {
        id: length
        objectName: "thread.voiceLength"
        anchors.right: track.right
        y: 34
        text: !note.time ? wave.durationText : wave.durationText ? note.time + " / " + wave.durationText : note.time
        font.pixelSize: Theme.meta
        color: Theme.faint
        Accessible.ignored: true
    }
}
