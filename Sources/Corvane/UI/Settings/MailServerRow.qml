import QtQml
import QtQuick
import QtQuick.Layouts
import Corvane.Controls
import Corvane.Settings

/// A mail server: its name, its port, and how its encryption begins.
RowLayout {
    id: row

    required property MailServerForm server

    spacing: Theme.small

    FormFieldBox {
        Layout.fillWidth: true
        field: row.server.host
    }
    FormFieldBox {
        Layout.preferredWidth: 76
        field: row.server.port
        inputMethodHints: Qt.ImhDigitsOnly
    }
    MenuButton {
        id: security
        Layout.preferredWidth: 108
        Layout.alignment: Qt.AlignBottom
        implicitHeight: Theme.control
        kind: "plain"
        text: row.server.securityLabel
        Accessible.description: row.server.host.label

        Instantiator {
            model: row.server.securities
            delegate: MenuItem {
                required property choice modelData
                text: modelData.label
                checkable: true
                checked: row.server.security === modelData.id
                onTriggered: row.server.security = modelData.id
            }
            onObjectAdded: (index, object) => security.list.insertItem(index, object)
            onObjectRemoved: (index, object) => security.list.removeItem(object)
        }
    }
}
