import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// A deal with the person beside the thread: what it is called, what it is worth, how far it is.
FormSheet {
    id: sheet

    required property CRMPane crm
    readonly property DealForm deal: crm.dealForm

    form: deal
    name: "addDeal"
    objectName: "addDeal"
    onBegun: fields.focusFirst()

    Label {
        width: parent.width
        wrapMode: Text.Wrap
        maximumLineCount: 2
        text: sheet.deal.hint
        color: Theme.soft
    }
    FormFields {
        id: fields
        form: sheet.deal
        name: sheet.name
        rowSpacing: Theme.large
    }
    Column {
        width: parent.width
        spacing: 6
        Label {
            text: qsTr("Stage")
            font.pixelSize: Theme.meta
            color: Theme.soft
        }
        Flow {
            width: parent.width
            spacing: Theme.small
            Repeater {
                model: sheet.crm.stages
                Chip {
                    required property string modelData
                    objectName: "addDeal.stage." + modelData
                    implicitHeight: 28
                    text: modelData
                    checkable: true
                    autoExclusive: true
                    checked: sheet.deal.stage === modelData
                    onClicked: sheet.deal.stage = modelData
                }
            }
        }
    }
}
