import QtQuick
import Corvane

/// The fields that connect a channel. Its button waits until they hold what the channel needs.
Sheet {
    id: sheet

    required property QtObject settings
    property var flow: ({ channel: "", title: "", hint: "", buttonLabel: "", fields: [] })
    property var values: ({})
    readonly property bool complete: flow.channel !== "" && settings.canConnect(flow.channel, values)

    function offer(wanted: var) {
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
        flow = { channel: "", title: "", hint: "", buttonLabel: "", fields: [] };
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
            required property var modelData
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
