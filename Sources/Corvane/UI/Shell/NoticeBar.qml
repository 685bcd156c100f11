import QtQuick
import Corvane.Controls
import Corvane.Shell

/// The notices for every screen, one line each; takes no space without any.
Column {
    id: bar

    required property Notices notices

    topPadding: list.count > 0 ? Theme.small : 0
    bottomPadding: topPadding
    spacing: Theme.tight

    Repeater {
        id: list
        model: bar.notices.items
        Banner {
            id: line
            required property notice modelData
            objectName: "notice." + modelData.id
            x: Theme.medium
            width: bar.width - Theme.medium * 2
            text: modelData.text
            tone: modelData.tone
            action: modelData.actions.length > 0 ? modelData.actions[0].label : ""
            otherAction: modelData.actions.length > 1 ? modelData.actions[1].label : ""
            onActed: bar.notices.perform(modelData.id, modelData.actions[0].id)
            onActedOtherwise: bar.notices.perform(modelData.id, modelData.actions[1].id)
        }
    }
}
