import QtQuick
import Corvane.Controls
import Corvane.Settings

/// Which of the user's data is on this computer, and whether it may be read.
Card {
    id: card

    required property LocalAccess access
    property localAccessRow noRow

    Component.onCompleted: access.refresh()

    SettingRow {
        label: card.access.label
        hint: card.access.hint
    }
    Repeater {
        model: card.access.rows.length
        SettingRow {
            id: line
            required property int index
            readonly property localAccessRow row: card.access.rows[index] ?? card.noRow
            label: line.row.name
            hint: line.row.detail
            Label {
                visible: line.row.connected
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("Connected")
                color: Theme.good
            }
            Button {
                objectName: "localAccess." + line.row.id
                visible: !line.row.connected
                text: qsTr("Connect")
                Accessible.name: qsTr("Connect %1").arg(line.row.name)
                onClicked: card.access.connectTo(line.row.id)
            }
        }
    }
}
