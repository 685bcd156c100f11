import QtQuick
import Corvane.Controls
import Corvane.Work

/// An order for the selected terminal, which its agent picks up.
Column {
    id: box

    required property OpsProjects projects

    function send() {
        if (projects.order(field.text))
            field.text = "";
    }

    spacing: Theme.tight
    Item {
        width: parent.width
        height: field.height
        TextBox {
            id: field
            objectName: "order.text"
            width: send.x - Theme.small
            maximumLines: 5
            placeholderText: qsTr("An order for %1").arg(box.projects.orderTabName)
            onSubmitted: box.send()
        }
        Button {
            id: send
            objectName: "order.send"
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            enabled: field.text.trim() !== ""
            text: qsTr("Leave order")
            onClicked: box.send()
        }
    }
    Label {
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        text: box.projects.error
        color: Theme.bad
    }
}
