import QtQuick
import Corvane.Controls
import Corvane.Settings

/// The fields that connect a channel. Its button waits until they hold what the channel needs.
Sheet {
    id: sheet

    required property IntegrationsView settings
    property connectFlow flow
    property connectFlow none ///< while no sheet is open
    property var values: ({})
    readonly property bool complete: flow.channel !== "" && settings.canConnect(flow.channel, values)

    function offer(wanted: connectFlow) {
        values = {};
        flow = wanted;
        open();
        fields.itemAt(0).forceActiveFocus(Qt.TabFocusReason);
    }

    function submit() {
        if (complete && settings.connectAccount(flow.channel, values))
            close();
    }

    objectName: "connectSheet"
    title: flow.title
    onClosed: {
        values = {}; // a secret does not stay in memory longer than its sheet
        flow = none;
    }

    Label {
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        lineHeight: 1.3
        textFormat: Text.MarkdownText
        elide: Text.ElideNone
        text: sheet.flow.hint
        color: Theme.soft
    }
    Repeater {
        id: fields
        model: sheet.flow.fields
        TextField {
            required property int index
            required property connectField modelData
            objectName: "connect." + modelData.id
            width: parent.width
            label: modelData.label
            placeholderText: modelData.placeholder
            echoMode: modelData.masked ? TextInput.Password : TextInput.Normal
            onTextEdited: sheet.values = Object.assign({}, sheet.values, { [modelData.id]: text })
            onAccepted: {
                if (index + 1 < fields.count)
                    fields.itemAt(index + 1).forceActiveFocus(Qt.TabFocusReason);
                else
                    sheet.submit();
            }
        }
    }
    buttons: [
        Button {
            kind: "quiet"
            text: qsTr("Cancel")
            onClicked: sheet.close()
        },
        Button {
            objectName: "connect.submit"
            kind: "primary"
            enabled: sheet.complete
            text: sheet.flow.buttonLabel
            onClicked: sheet.submit()
        }
    ]
}
