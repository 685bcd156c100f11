import QtQuick
import Corvane.Calls
import Corvane.Controls

/// A call's name, time and state, and what can be done with it.
Item {
    id: head

    required property CallPage page

    implicitHeight: words.implicitHeight

    Column {
        id: words
        anchors.left: parent.left
        anchors.right: actions.left
        anchors.rightMargin: Theme.large
        spacing: Theme.tight
        TextField {
            id: title
            objectName: "call.title"
            width: Math.min(parent.width, 460)
            font.pixelSize: Theme.title
            font.weight: Theme.strong
            placeholderText: qsTr("Name of the call")
            onTextChanged: if (!activeFocus) cursorPosition = 0 // shows the start of a long name
            onEditingFinished: head.page.rename(text)
            // Changes elsewhere do not overwrite what is being typed.
            Binding { target: title; property: "text"; value: head.page.title; when: !title.activeFocus; restoreMode: Binding.RestoreNone }
        }
        Label {
            width: parent.width
            text: head.page.whenText + " · " + head.page.stateText
            color: Theme.soft
        }
        Label {
            objectName: "call.error"
            width: parent.width
            visible: text !== ""
            wrapMode: Text.Wrap
            text: head.page.errorText
            color: head.page.tone === "bad" ? Theme.bad : Theme.warn
        }
        Row {
            visible: head.page.processing.busy
            spacing: Theme.small
            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                width: 180
                height: 4
                radius: 2
                color: Theme.raised
                Accessible.role: Accessible.ProgressBar
                Accessible.name: head.page.stateText
                Rectangle {
                    width: parent.width * head.page.processing.progress
                    height: parent.height
                    radius: 2
                    color: Theme.accent
                }
            }
            Button {
                objectName: "call.cancelWork"
                implicitHeight: 24
                kind: "quiet"
                text: qsTr("Cancel")
                onClicked: head.page.processing.stop()
            }
        }
        Label {
            objectName: "call.done"
            width: parent.width
            visible: text !== ""
            elide: Text.ElideMiddle
            text: head.page.doneText
            color: Theme.soft
            font.pixelSize: Theme.meta
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
    }
    Row {
        id: actions
        anchors.right: parent.right
        spacing: Theme.tight
        Button {
            objectName: "call.process"
            visible: text !== ""
            text: head.page.processing.label
            onClicked: head.page.processing.start()
        }
        MenuButton {
            id: models
            objectName: "call.models"
            implicitHeight: Theme.control
            visible: head.page.processing.models.length > 0
            icon.name: "audio"
            Accessible.name: qsTr("Transcribe with another model")
            hint: Accessible.name
            Instantiator {
                model: head.page.processing.models
                delegate: MenuItem {
                    required property choice modelData
                    text: modelData.label
                    checkable: true
                    checked: head.page.processing.model === modelData.id
                    onTriggered: head.page.processing.startWith(modelData.id)
                }
                onObjectAdded: (index, object) => models.list.insertItem(index, object as MenuItem)
                onObjectRemoved: (index, object) => models.list.removeItem(object as MenuItem)
            }
        }
        MenuButton {
            objectName: "call.more"
            implicitHeight: Theme.control
            icon.name: "overflow-menu"
            chevron: false
            Accessible.name: qsTr("More")
            MenuItem {
                text: qsTr("Export as text")
                icon.name: "document"
                onTriggered: head.page.exportText()
            }
            MenuItem {
                text: qsTr("Export subtitles (.vtt)")
                icon.name: "document"
                onTriggered: head.page.exportSubtitles()
            }
            MenuItem {
                text: qsTr("Export the sound")
                icon.name: "audio"
                enabled: head.page.sound.hasSound
                onTriggered: head.page.exportSound()
            }
            MenuSeparator {}
            MenuItem {
                text: qsTr("Delete…")
                icon.name: "edit-delete"
                onTriggered: remove.open()
            }
        }
    }
    Sheet {
        id: remove
        objectName: "call.removeSheet"
        title: qsTr("Delete this call?")
        Label {
            width: parent.width
            wrapMode: Text.Wrap
            lineHeight: 1.3
            text: head.page.deleteQuestion
            color: Theme.soft
        }
        buttons: [
            Button {
                kind: "quiet"
                focus: true
                text: qsTr("Keep it")
                onClicked: remove.close()
            },
            Button {
                objectName: "call.removeNow"
                kind: "danger"
                text: qsTr("Delete")
                onClicked: {
                    remove.close();
                    head.page.remove();
                }
            }
        ]
    }
}
