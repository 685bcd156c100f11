import QtQuick
import QtQuick.Dialogs
import Corvane.Controls
import Corvane.Settings

/// The speech model, adding another one, and the language of dictation.
Column {
    id: section

    required property VoiceSettings voice
    required property DictationSettings dictation

    spacing: Theme.large

    Card {
        width: parent.width
        Label {
            width: parent.width
            objectName: "voice.state"
            wrapMode: Text.Wrap
            text: section.voice.stateText
            font.weight: Theme.strong
            color: section.voice.ready ? Theme.text : Theme.warn
        }
        SettingRow {
            label: qsTr("Language")
            hint: section.voice.localeHint
            MenuButton {
                id: languages
                objectName: "voice.locale"
                kind: "plain"
                implicitHeight: Theme.control
                leftPadding: Theme.medium
                text: section.voice.localeText
                Instantiator {
                    model: section.voice.locales
                    delegate: MenuItem {
                        required property choice modelData
                        text: modelData.label
                        checkable: true
                        checked: section.voice.locale === modelData.id
                        onTriggered: section.voice.locale = modelData.id
                    }
                    onObjectAdded: (index, item) => languages.list.insertItem(index, item)
                    onObjectRemoved: (index, item) => languages.list.removeItem(item)
                }
            }
        }
    }
    DictationCard {
        width: parent.width
        dictation: section.dictation
    }
    Card {
        width: parent.width
        SectionHeader { text: qsTr("Speech models") }
        Repeater {
            model: section.voice.models
            SettingRow {
                id: line
                required property speechModelLine modelData
                label: modelData.name
                hint: modelData.checksum ? modelData.detail + "\n" + modelData.checksum : modelData.detail
                Row {
                    spacing: Theme.small
                    Label {
                        visible: line.modelData.preferred
                        anchors.verticalCenter: parent.verticalCenter
                        text: qsTr("In use")
                        color: Theme.good
                    }
                    Button {
                        objectName: "voice.prefer." + line.modelData.id
                        visible: !line.modelData.preferred
                        text: qsTr("Use")
                        Accessible.name: qsTr("Use %1").arg(line.modelData.name)
                        onClicked: section.voice.prefer(line.modelData.id)
                    }
                    Button {
                        objectName: "voice.remove." + line.modelData.id
                        visible: line.modelData.removable
                        kind: "quiet"
                        text: qsTr("Remove")
                        Accessible.name: qsTr("Remove %1").arg(line.modelData.name)
                        onClicked: section.voice.remove(line.modelData.id)
                    }
                }
            }
        }
    }
    Card {
        id: adding
        width: parent.width
        SectionHeader { text: qsTr("Add a model") }
        SettingRow {
            label: qsTr("Published models")
            hint: qsTr("A larger model understands more and takes longer.")
            MenuButton {
                id: published
                objectName: "voice.published"
                kind: "plain"
                implicitHeight: Theme.control
                leftPadding: Theme.medium
                enabled: !section.voice.busy
                text: qsTr("Choose…")
                Instantiator {
                    model: section.voice.published
                    delegate: MenuItem {
                        required property publishedModelLine modelData
                        text: modelData.label
                        checkable: true
                        checked: section.voice.address === modelData.address
                        onTriggered: section.voice.address = modelData.address
                    }
                    onObjectAdded: (index, item) => published.list.insertItem(index, item)
                    onObjectRemoved: (index, item) => published.list.removeItem(item)
                }
            }
        }
        Row {
            width: parent.width
            spacing: Theme.small
            TextField {
                objectName: "voice.address"
                width: parent.width - download.width - parent.spacing
                enabled: !section.voice.busy
                text: section.voice.address
                Accessible.name: qsTr("Address of the model's file")
                onTextEdited: section.voice.address = text
            }
            Button {
                id: download
                objectName: "voice.download"
                enabled: !section.voice.busy
                icon.name: "download"
                text: qsTr("Download")
                onClicked: section.voice.download()
            }
        }
        SettingRow {
            label: qsTr("A file on this computer")
            hint: qsTr("A ggml file for whisper.cpp. It is copied; you can also drop it here.")
            Button {
                objectName: "voice.choose"
                enabled: !section.voice.busy
                text: qsTr("Choose a file…")
                onClicked: chooser.open()
            }
        }
        ProgressRow {
            name: "voice"
            visible: section.voice.busy
            progress: section.voice.progress
            text: section.voice.installText
            onCancelled: section.voice.cancel()
        }
        Banner {
            objectName: "voice.problem"
            width: parent.width
            visible: section.voice.installFailed
            tone: "bad"
            text: section.voice.installFailed ? section.voice.installText : ""
            dismissable: true
            onDismissed: section.voice.dismissError()
        }
        DropArea {
            parent: adding
            anchors.fill: parent
            enabled: !section.voice.busy
            onEntered: drag => drag.accepted = drag.hasUrls
            onDropped: drop => {
                section.voice.addFiles(drop.urls);
                drop.accept(Qt.CopyAction);
            }
        }
    }
    FileDialog {
        id: chooser
        title: qsTr("Choose a speech model")
        nameFilters: [qsTr("Speech models (*.bin)"), qsTr("All files (*)")]
        onAccepted: section.voice.addFiles([selectedFile])
    }
}
