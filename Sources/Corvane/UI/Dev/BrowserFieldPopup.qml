import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Dev

/// Asks for the value of a date, time or colour field, under the field in the page.
T.Popup {
    id: popup

    required property BrowserFieldPicker picker
    required property rect frame ///< of the page, in the parent

    objectName: "browser.field"
    x: Math.round(frame.x + picker.place.x * frame.width)
    y: Math.round(frame.y + picker.place.y * frame.height)
    width: 280
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    padding: Theme.medium
    margins: Theme.small
    focus: true
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside

    visible: picker.isOpen
    onOpened: {
        field.forceActiveFocus(Qt.TabFocusReason);
        field.selectAll();
    }
    onClosed: picker.close()

    background: Rectangle {
        radius: Theme.cardRadius
        color: Theme.surface
        border.width: 1
        border.color: Theme.line
        Shadow { radius: Theme.cardRadius }
    }
    contentItem: FocusScope {
        focus: true
        implicitHeight: column.implicitHeight
        Accessible.role: Accessible.Dialog
        Accessible.name: popup.picker.label

        Column {
            id: column
            width: parent.width
            spacing: Theme.small

            TextField {
                id: field
                objectName: "browser.field.text"
                width: parent.width
                focus: true
                label: popup.picker.label
                onTextEdited: popup.picker.text = text
                onAccepted: popup.picker.accept()

                Binding { target: field; property: "text"; value: popup.picker.text }
            }
            Label {
                objectName: "browser.field.refusal"
                width: parent.width
                visible: text !== ""
                wrapMode: Text.Wrap
                text: popup.picker.refusal
                color: Theme.bad
                onTextChanged: if (text !== "") WindowTools.announce(this)
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            Item {
                width: parent.width
                height: 28
                visible: popup.picker.heading !== ""
                IconButton {
                    size: 28
                    icon.name: "go-previous"
                    text: qsTr("Earlier")
                    onClicked: popup.picker.turn(-1)
                }
                Label {
                    anchors.centerIn: parent
                    text: popup.picker.heading
                    font.weight: Theme.strong
                }
                IconButton {
                    anchors.right: parent.right
                    size: 28
                    icon.name: "go-next"
                    text: qsTr("Later")
                    onClicked: popup.picker.turn(1)
                }
            }
            Grid {
                id: grid
                readonly property real cell: width / columns
                width: parent.width
                columns: popup.picker.columns.length

                Repeater {
                    model: popup.picker.columns
                    Label {
                        required property string modelData
                        width: grid.cell
                        visible: modelData !== ""
                        horizontalAlignment: Text.AlignHCenter
                        text: modelData
                        font.pixelSize: Theme.meta
                        color: Theme.faint
                    }
                }
                Repeater {
                    model: popup.picker.options
                    T.AbstractButton {
                        id: option
                        required property browserFieldOption modelData
                        objectName: "browser.field:" + modelData.value
                        width: grid.cell
                        height: 28
                        enabled: modelData.offered
                        hoverEnabled: true
                        focusPolicy: Qt.NoFocus // the field takes keys
                        Accessible.name: modelData.name
                        Accessible.checkable: true
                        Accessible.checked: modelData.chosen
                        onClicked: popup.picker.choose(modelData.value)

                        contentItem: Label {
                            horizontalAlignment: Text.AlignHCenter
                            verticalAlignment: Text.AlignVCenter
                            text: option.modelData.label
                            font.weight: option.modelData.chosen ? Theme.strong : Theme.regular
                            color: option.modelData.chosen && !option.modelData.color ? Theme.accentInk
                                : option.modelData.aside || !option.enabled ? Theme.faint : Theme.text
                            opacity: option.enabled ? 1 : 0.5
                        }
                        background: Rectangle {
                            anchors.fill: parent
                            anchors.margins: 1
                            radius: Theme.controlRadius
                            color: option.modelData.color ? option.modelData.color : option.modelData.chosen ? Theme.accent
                                : option.hovered ? Theme.raised : Theme.none
                            border.width: option.modelData.color ? (option.modelData.chosen || option.hovered ? 2 : 1) : 0
                            border.color: option.modelData.chosen || option.hovered ? Theme.accent : Theme.line
                        }
                    }
                }
            }
            Row {
                anchors.right: parent.right
                spacing: Theme.small
                Button {
                    visible: popup.picker.canClear
                    kind: "quiet"
                    text: qsTr("Clear")
                    onClicked: popup.picker.clear()
                }
                Button {
                    objectName: "browser.field.set"
                    kind: "primary"
                    text: qsTr("Set")
                    onClicked: popup.picker.accept()
                }
            }
        }
    }
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.quick } }
}
