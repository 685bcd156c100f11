import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// A deal with the person beside the thread: what it is called, how far it is, what it is worth.
Sheet {
    id: sheet

    required property CRMPane crm
    readonly property string contactName: crm.contactName
    readonly property list<string> stages: crm.stages
    property string stage: stages[0]
    property string owner ///< whose deal stands in the fields

    function clear() {
        owner = crm.contactId;
        name.text = "";
        value.text = "";
        stage = stages[0];
    }

    function submit() {
        if (!crm.addDeal(name.text, stage, value.text))
            return;
        clear();
        close();
    }

    objectName: "addDeal"
    title: qsTr("Add Deal")
    onAboutToShow: {
        if (owner !== crm.contactId)
            clear();
        name.forceActiveFocus(Qt.TabFocusReason);
    }

    Connections {
        target: sheet.crm
        function onContactChanged() {
            if (sheet.owner !== sheet.crm.contactId)
                sheet.close();
        }
    }

    Label {
        width: parent.width
        wrapMode: Text.Wrap
        maximumLineCount: 2
        text: qsTr("With %1").arg(sheet.contactName)
        color: Theme.soft
    }
    TextField {
        id: name
        objectName: "addDeal.name"
        width: parent.width
        label: qsTr("Deal name")
        onAccepted: value.forceActiveFocus(Qt.TabFocusReason)
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
                model: sheet.stages
                Chip {
                    required property string modelData
                    objectName: "addDeal.stage." + modelData
                    implicitHeight: 28
                    text: modelData
                    checkable: true
                    autoExclusive: true
                    checked: sheet.stage === modelData
                    onClicked: sheet.stage = modelData
                }
            }
        }
    }
    TextField {
        id: value
        objectName: "addDeal.value"
        width: parent.width
        label: qsTr("Value")
        placeholderText: qsTr("Such as $12.5k")
        onAccepted: sheet.submit()
    }
    Label {
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        text: sheet.crm.errorText
        color: Theme.bad
    }
    buttons: [
        Button {
            kind: "quiet"
            text: qsTr("Cancel")
            onClicked: sheet.close()
        },
        Button {
            objectName: "addDeal.submit"
            kind: "primary"
            enabled: sheet.crm.canAddDeal(name.text)
            text: qsTr("Add Deal")
            onClicked: sheet.submit()
        }
    ]
}
