import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// The files of the message that is being written, how much of the limit they take, and what is wrong with them.
Flow {
    id: list

    required property Attachments attachments
    readonly property int count: files.count

    spacing: Theme.small
    visible: files.count > 0
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Files")

    Repeater {
        id: files
        model: list.attachments.rows
        FileChip {
            required property attachmentItem file
            objectName: "attachment"
            text: file.name
            size: file.size
            busy: file.copying
            removable: !file.copying
            onRemoved: list.attachments.remove(file.path)
        }
    }
    Label {
        height: 28
        verticalAlignment: Text.AlignVCenter
        text: list.attachments.summary
        font.pixelSize: Theme.meta
        color: list.attachments.problem === "" ? Theme.faint : Theme.bad
    }
    Label {
        objectName: "attachments.problem"
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        text: list.attachments.problem
        color: Theme.bad
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
}
