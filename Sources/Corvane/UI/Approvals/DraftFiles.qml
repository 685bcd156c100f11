import QtQuick
import Corvane.Approvals
import Corvane.Controls

/// The files that go out with a draft; pressing one opens it.
Flow {
    property alias files: chips.model

    spacing: Theme.small
    visible: chips.count > 0
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Files")

    Repeater {
        id: chips
        FileChip {
            required property draftFile modelData
            objectName: "draft.file"
            text: modelData.name
            size: modelData.size
            busy: modelData.path === ""
            onClicked: if (modelData.path) WindowTools.open(modelData.path)
        }
    }
}
