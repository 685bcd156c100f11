import QtQuick
import Corvane.Controls
import Corvane.Settings

/// Links an account: the code while there is one, then that it worked.
Sheet {
    id: sheet

    required property PairingSheet pairing

    objectName: "pairingSheet"
    title: pairing.title
    width: 400
    onClosed: pairing.close()
    Component.onCompleted: follow()

    function follow() {
        if (pairing.isOpen)
            open();
        else
            close();
    }

    Connections {
        target: sheet.pairing
        function onChanged() { sheet.follow(); }
    }

    Item {
        width: parent.width
        height: 304

        Rectangle {
            anchors.centerIn: parent
            width: 304
            height: 304
            radius: Theme.cardRadius
            visible: code.visible
            color: Theme.paper
            border.width: 1
            border.color: Theme.line
        }
        QrItem {
            id: code
            anchors.centerIn: parent
            width: 268
            height: 268
            objectName: "pairing.code"
            visible: sheet.pairing.qr !== "" && valid
            text: sheet.pairing.qr
            ink: Theme.ink
            Accessible.role: Accessible.Graphic
            Accessible.name: qsTr("QR code")
        }
        Rectangle {
            anchors.centerIn: parent
            width: 96
            height: 96
            radius: 48
            visible: !code.visible
            color: sheet.pairing.connected ? Theme.tint : Theme.raised
            Icon {
                anchors.centerIn: parent
                size: 40
                name: sheet.pairing.connected ? "dialog-ok" : sheet.pairing.failed ? "dialog-error" : "link"
                color: sheet.pairing.connected ? Theme.good : sheet.pairing.failed ? Theme.bad : Theme.faint
            }
        }
    }
    Label {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        lineHeight: 1.3
        text: sheet.pairing.stateText
        font.pixelSize: sheet.pairing.connected ? Theme.title : Theme.body
        font.weight: sheet.pairing.connected ? Theme.strong : Theme.regular
        color: sheet.pairing.connected ? Theme.good : sheet.pairing.failed ? Theme.bad : Theme.soft
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    buttons: Button {
        objectName: "pairing.done"
        focus: true
        kind: sheet.pairing.connected ? "primary" : "plain"
        text: sheet.pairing.doneLabel
        onClicked: sheet.close()
    }
}
