import QtQuick
import QtQuick.Templates as T
import Corvane.Calls
import Corvane.Controls

/// Plays a call: its waveform with the marks, both tracks, and the position.
Column {
    id: sound

    required property CallSoundView view ///< the view model
    readonly property CallPlayer player: view.player

    spacing: Theme.small

    Label {
        width: parent.width
        visible: text !== ""
        text: sound.view.noSoundText
        color: Theme.soft
    }
    Row {
        width: parent.width
        visible: sound.view.hasSound
        spacing: Theme.medium
        IconButton {
            id: press
            objectName: "call.play"
            anchors.verticalCenter: parent.verticalCenter
            icon.name: sound.player.state === "playing" ? "media-playback-pause" : "media-playback-start"
            text: sound.player.actionText
            onClicked: sound.player.toggle()
        }
        T.Slider {
            id: track
            objectName: "call.position"
            width: parent.width - press.width - times.width - Theme.medium * 2
            height: 56
            focusPolicy: Qt.TabFocus
            value: sound.player.progress
            stepSize: 0.01
            // Dragging the slider breaks its binding.
            onMoved: sound.player.seek(value)
            onPressedChanged: if (!pressed) value = Qt.binding(() => sound.player.progress)
            Keys.onLeftPressed: sound.player.skip(-5)
            Keys.onRightPressed: sound.player.skip(5)
            Keys.onSpacePressed: sound.player.toggle()
            Accessible.name: qsTr("Position in the call")

            background: Item {
                CallWave {
                    anchors.fill: parent
                    above: sound.view.microphoneBars
                    below: sound.view.systemBars
                    marks: sound.view.marks
                    progress: track.visualPosition
                    ink: Theme.faint
                    accent: Theme.accent
                    markInk: Theme.warn
                }
                FocusRing { control: track; radius: Theme.controlRadius }
            }
            handle: Rectangle {
                x: track.visualPosition * (track.width - width)
                width: 2
                height: track.height
                color: Theme.accent
            }
        }
        Label {
            id: times
            anchors.verticalCenter: parent.verticalCenter
            text: sound.player.durationText ? sound.player.positionText + " / " + sound.player.durationText
                : sound.player.positionText
            color: Theme.soft
        }
    }
    Flow {
        width: parent.width
        visible: sound.view.hasSound && (sound.player.hasBoth || sound.view.markTimes.length > 0)
        spacing: Theme.tight
        Chip {
            objectName: "call.microphone"
            visible: sound.player.hasBoth
            text: qsTr("Me")
            checkable: false
            checked: sound.player.microphoneOn
            Accessible.role: Accessible.CheckBox
            onClicked: sound.player.microphoneOn = !sound.player.microphoneOn
        }
        Chip {
            objectName: "call.system"
            visible: sound.player.hasBoth
            text: qsTr("Meeting audio")
            checkable: false
            checked: sound.player.systemOn
            Accessible.role: Accessible.CheckBox
            onClicked: sound.player.systemOn = !sound.player.systemOn
        }
        Repeater {
            model: sound.view.markTimes
            Chip {
                required property string modelData
                required property int index
                objectName: "call.mark"
                text: qsTr("Mark %1").arg(modelData)
                onClicked: sound.view.playMark(index)
            }
        }
    }
    Label {
        width: parent.width
        visible: text !== ""
        text: sound.player.problem
        color: Theme.bad
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
}
