import QtQuick
import QtQml
import Corvane.Controls
import Corvane.Dev

/// A request for a coding agent, and the packet that goes with it.
FocusScope {
    id: view

    required property DevAssistant assistant
    property choice noTarget

    Binding { target: prompt; property: "text"; value: view.assistant.prompt }

    Column {
        id: head
        x: Theme.wide
        y: Theme.large
        width: parent.width - Theme.wide * 2
        spacing: Theme.medium

        TextBox {
            id: prompt
            objectName: "dev.prompt"
            width: parent.width
            focus: true
            label: qsTr("Request")
            placeholderText: view.assistant.promptHint
            minimumLines: 2
            maximumLines: 6
            onTextChanged: if (editing) view.assistant.prompt = text
            onSubmitted: view.assistant.launchAssistant()
        }
        Item {
            width: parent.width
            height: launch.height
            Row {
                anchors.verticalCenter: parent.verticalCenter
                spacing: Theme.tight
                Repeater {
                    model: view.assistant.targets.length
                    Chip {
                        required property int index
                        readonly property choice entry: view.assistant.targets[index] ?? view.noTarget
                        objectName: "dev.target:" + entry.id
                        checkable: true
                        checked: view.assistant.target === entry.id
                        text: entry.label
                        onClicked: {
                            checked = Qt.binding(() => view.assistant.target === entry.id);
                            view.assistant.target = entry.id;
                        }
                    }
                }
            }
            Row {
                id: launch
                anchors.right: parent.right
                spacing: Theme.small
                Button {
                    objectName: "dev.copyPacket"
                    kind: "quiet"
                    icon.name: "edit-copy"
                    text: qsTr("Copy only")
                    onClicked: view.assistant.copyPacket()
                }
                Button {
                    objectName: "dev.launchAssistant"
                    kind: "primary"
                    text: view.assistant.launchLabel
                    hint: "Ctrl+Return"
                    onClicked: view.assistant.launchAssistant()
                }
            }
        }
        Label {
            width: parent.width
            wrapMode: Text.Wrap
            text: view.assistant.targetText
            color: Theme.soft
        }
        Item {
            width: parent.width
            height: caption.implicitHeight
            SectionHeader {
                id: caption
                text: qsTr("Packet")
            }
            Label {
                anchors.right: parent.right
                width: parent.width - caption.implicitWidth - Theme.large
                horizontalAlignment: Text.AlignRight
                text: view.assistant.transcriptText
                font.pixelSize: Theme.meta
                color: Theme.faint
            }
        }
    }
    TextBox {
        objectName: "dev.packet"
        anchors.top: head.bottom
        anchors.topMargin: Theme.small
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.large
        x: Theme.wide
        width: parent.width - Theme.wide * 2
        readOnly: true
        text: view.assistant.packet
        placeholderText: qsTr("Packet")
    }
}
