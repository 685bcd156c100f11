import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Dev

/// The requirements of the project, a field each.
FocusScope {
    id: view

    required property DevSRS srs
    property srsSection none

    Flickable {
        id: scroll
        anchors.fill: parent
        anchors.bottomMargin: foot.visible ? foot.height : 0
        visible: view.srs.present
        focus: visible
        clip: true
        contentHeight: column.height + Theme.large * 2
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {}
        RevealFocus { view: scroll }

        Column {
            id: column
            x: Theme.wide
            y: Theme.large
            width: Math.min(parent.width - Theme.wide * 2, 760)
            spacing: Theme.large

            Label {
                visible: text !== ""
                text: view.srs.facts
                font.pixelSize: Theme.meta
                color: Theme.faint
            }
            Repeater {
                model: view.srs.sections.length // the fields stay while one types
                TextBox {
                    required property int index
                    readonly property srsSection entry: view.srs.sections[index] ?? view.none
                    readonly property string stored: entry.text
                    objectName: "srs:" + entry.id
                    width: column.width
                    focus: index === 0
                    label: entry.label
                    placeholderText: entry.shown
                    minimumLines: 2
                    maximumLines: 14
                    Component.onCompleted: text = stored
                    onStoredChanged: if (text !== stored) text = stored
                    onTextChanged: if (editing) view.srs.edit(entry.id, text)
                    onSubmitted: view.srs.save()
                }
            }
        }
    }
    EmptyState {
        anchors.centerIn: parent
        width: Math.min(380, parent.width - Theme.wide * 2)
        visible: !view.srs.present
        icon: "document"
        title: view.srs.emptyText
        detail: view.srs.canSeed ? qsTr("Start from a template, then describe what the project should do.") : ""
        action: view.srs.canSeed ? qsTr("Create it") : ""
        onActed: view.srs.seed()
    }
    Rectangle {
        id: foot
        anchors.bottom: parent.bottom
        width: parent.width
        height: 56
        visible: view.srs.dirty || view.srs.error !== ""
        color: Theme.surface
        Rectangle { width: parent.width; height: 1; color: Theme.line }
        Label {
            objectName: "srs.trouble"
            x: Theme.wide
            anchors.verticalCenter: parent.verticalCenter
            width: answers.x - x - Theme.medium
            wrapMode: Text.Wrap
            maximumLineCount: 2
            text: view.srs.error || (view.srs.overtaken ? qsTr("Somebody else changed it in the meantime. Saving overwrites their text.") : "")
            color: view.srs.error ? Theme.bad : Theme.warn
        }
        Row {
            id: answers
            anchors.right: parent.right
            anchors.rightMargin: Theme.wide
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.small
            Button {
                kind: "quiet"
                text: view.srs.overtaken ? qsTr("Take theirs") : qsTr("Discard")
                onClicked: view.srs.revert()
            }
            Button {
                objectName: "srs.save"
                kind: "primary"
                text: qsTr("Save")
                hint: "Ctrl+Return"
                onClicked: view.srs.save()
            }
        }
    }
}
