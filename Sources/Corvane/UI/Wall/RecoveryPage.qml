import QtQuick
import Corvane.Controls
import Corvane.Wall

/// The database is damaged: what happened to it, and what should replace it.
FocusScope {
    id: page

    required property StoreRecovery recovery

    focus: true

    Column {
        anchors.centerIn: parent
        width: 520
        spacing: Theme.wide

        Column {
            width: parent.width
            spacing: Theme.small

            Icon {
                anchors.horizontalCenter: parent.horizontalCenter
                name: "dialog-warning"
                size: 40
                color: Theme.warn
            }
            Label {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                text: page.recovery.title
                font.pixelSize: Theme.screen
                font.weight: Theme.strong
                Accessible.role: Accessible.Heading
            }
            Label {
                objectName: "recovery.explanation"
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                lineHeight: 1.3
                text: page.recovery.explanation
                color: Theme.soft
            }
        }
        Card {
            width: parent.width
            padding: Theme.wide
            visible: page.recovery.busy
            Label {
                objectName: "recovery.progress"
                width: parent.width
                text: page.recovery.progressText
                Accessible.role: Accessible.ProgressBar
                Accessible.name: text
            }
            Rectangle {
                width: parent.width
                height: 6
                radius: 3
                color: Theme.raised
                Rectangle {
                    width: parent.width * page.recovery.progress
                    height: parent.height
                    radius: 3
                    color: Theme.accent
                }
            }
        }
        Card {
            width: parent.width
            visible: page.recovery.choices.length > 0
            Repeater {
                model: page.recovery.choices
                Column {
                    id: offer
                    required property recoveryChoice modelData
                    required property int index
                    width: parent.width
                    spacing: Theme.tight
                    Button {
                        objectName: "recovery." + offer.modelData.id
                        width: parent.width
                        implicitHeight: 36
                        focus: offer.index === 0
                        kind: offer.index === 0 ? "primary" : "plain"
                        text: offer.modelData.label
                        onClicked: page.recovery.choose(offer.modelData.id)
                    }
                    Label {
                        width: parent.width
                        visible: text !== ""
                        wrapMode: Text.Wrap
                        text: offer.modelData.hint
                        color: Theme.faint
                        font.pixelSize: Theme.meta
                    }
                }
            }
            Label {
                objectName: "recovery.error"
                width: parent.width
                visible: text !== ""
                wrapMode: Text.Wrap
                text: page.recovery.error
                color: Theme.bad
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
        }
    }
}
