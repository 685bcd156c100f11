import QtQuick
import QtQml
import Corvane.Controls
import Corvane.Dev

/// What is about to be saved: the picture, of which parts can be blacked out, the events and the steps, and the fields
/// of a bug. Nothing is written before the button is pressed.
Sheet {
    id: dialog

    required property BrowserReportSheet sheet
    readonly property bool begun: sheet.purpose !== BrowserReportSheet.Closed

    onBegunChanged: {
        if (!begun)
            return close();
        open();
        (sheet.isBug ? titleField : noteBox).forceActiveFocus(Qt.TabFocusReason);
    }
    onClosed: sheet.close()

    objectName: "browserReport"
    width: 760
    title: sheet.heading

    Binding { target: titleField; property: "text"; value: dialog.sheet.title }
    Binding { target: ownerField; property: "text"; value: dialog.sheet.owner }
    Binding { target: noteBox; property: "text"; value: dialog.sheet.note }

    Label {
        width: parent.width
        wrapMode: Text.Wrap
        text: dialog.sheet.detail
        color: Theme.soft
    }
    Row {
        width: parent.width
        spacing: Theme.large

        Column {
            width: 380
            spacing: Theme.small

            BrowserBlackoutItem {
                id: picture
                objectName: "browserReport.picture"
                width: parent.width
                height: 260
                blackout: dialog.sheet.picture
                Accessible.role: Accessible.Graphic
                Accessible.name: qsTr("The picture as it will be saved")

                Rectangle {
                    visible: picture.shown.width === 0
                    anchors.fill: parent
                    radius: Theme.controlRadius
                    color: Theme.raised
                    Label {
                        anchors.centerIn: parent
                        text: qsTr("There is no picture of the page.")
                        color: Theme.faint
                    }
                }
                Rectangle {
                    x: Math.min(drag.fromX, drag.mouseX)
                    y: Math.min(drag.fromY, drag.mouseY)
                    width: Math.abs(drag.mouseX - drag.fromX)
                    height: Math.abs(drag.mouseY - drag.fromY)
                    visible: drag.pressed
                    color: Theme.ink
                    opacity: 0.6
                }
                MouseArea {
                    id: drag
                    property real fromX
                    property real fromY
                    objectName: "browserReport.blackout"
                    anchors.fill: parent
                    enabled: picture.shown.width > 0 && !dialog.sheet.busy
                    cursorShape: Qt.CrossCursor
                    preventStealing: true
                    onPressed: mouse => {
                        fromX = mouse.x;
                        fromY = mouse.y;
                    }
                    onReleased: mouse => {
                        const on = picture.shown;
                        dialog.sheet.picture.blackOut(Qt.rect((Math.min(fromX, mouse.x) - on.x) / on.width,
                            (Math.min(fromY, mouse.y) - on.y) / on.height, Math.abs(mouse.x - fromX) / on.width,
                            Math.abs(mouse.y - fromY) / on.height));
                    }
                }
            }
            Row {
                width: parent.width
                height: 28
                spacing: Theme.small
                Label {
                    width: parent.width - undo.width - Theme.small
                    anchors.verticalCenter: parent.verticalCenter
                    text: qsTr("Drag over what should not be visible; it is saved in black.")
                    font.pixelSize: Theme.meta
                    color: Theme.soft
                    elide: Text.ElideRight
                }
                Button {
                    id: undo
                    visible: dialog.sheet.picture.isBlackedOut
                    implicitHeight: 28
                    kind: "quiet"
                    text: qsTr("Undo")
                    onClicked: dialog.sheet.picture.undo()
                }
            }
            Label {
                objectName: "browserReport.preview"
                width: parent.width
                wrapMode: Text.Wrap
                maximumLineCount: 8
                elide: Text.ElideRight
                text: dialog.sheet.preview
                font.pixelSize: Theme.meta
                color: Theme.soft
            }
        }
        Column {
            width: parent.width - 380 - Theme.large
            spacing: Theme.medium

            TextField {
                id: titleField
                objectName: "browserReport.title"
                width: parent.width
                visible: dialog.sheet.isBug
                label: qsTr("Title")
                onTextEdited: dialog.sheet.title = text
            }
            Row {
                spacing: Theme.tight
                visible: dialog.sheet.isBug
                Repeater {
                    model: dialog.sheet.severities
                    Chip {
                        required property string modelData
                        objectName: "browserReport.severity:" + modelData
                        checkable: true
                        checked: dialog.sheet.severity === modelData
                        text: modelData
                        onClicked: {
                            dialog.sheet.severity = modelData;
                            checked = Qt.binding(() => dialog.sheet.severity === modelData);
                        }
                    }
                }
            }
            TextField {
                id: ownerField
                width: parent.width
                visible: dialog.sheet.isBug
                label: qsTr("Owner")
                placeholderText: dialog.sheet.ownerHint
                onTextEdited: dialog.sheet.owner = text
            }
            TextBox {
                id: noteBox
                objectName: "browserReport.note"
                width: parent.width
                label: qsTr("Note")
                minimumLines: 3
                maximumLines: 6
                onTextChanged: if (editing) dialog.sheet.note = text
                onSubmitted: dialog.sheet.submit()
            }
            SectionHeader {
                visible: steps.text !== ""
                text: qsTr("Steps")
            }
            Label {
                id: steps
                width: parent.width
                visible: text !== ""
                wrapMode: Text.Wrap
                maximumLineCount: 8
                elide: Text.ElideRight
                text: dialog.sheet.stepsText
                font.pixelSize: Theme.meta
                color: Theme.soft
            }
        }
    }
    Label {
        objectName: "browserReport.refusal"
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        text: dialog.sheet.refusal
        color: Theme.bad
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    buttons: [
        Button {
            kind: "quiet"
            enabled: !dialog.sheet.busy
            text: qsTr("Cancel")
            onClicked: dialog.close()
        },
        Button {
            objectName: "browserReport.submit"
            kind: "primary"
            enabled: !dialog.sheet.busy
            text: dialog.sheet.submitLabel
            hint: "Ctrl+Return"
            onClicked: dialog.sheet.submit()
        }
    ]
}
