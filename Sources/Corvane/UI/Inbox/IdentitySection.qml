import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// Which contacts are one person, and which may be.
Section {
    id: section

    required property CRMPane crm
    required property list<string> platforms

    name: "identity"
    title: qsTr("Identity")
    count: crm.merges.count + crm.suggestions.count + (crm.identityText ? 1 : 0)
    showsCount: false
    emptyText: crm.identityEmpty

    Row {
        height: 30
        spacing: Theme.small
        visible: section.crm.identityText !== ""
        Repeater {
            model: section.platforms
            ChannelMark {
                required property string modelData
                anchors.verticalCenter: parent.verticalCenter
                channel: modelData
                size: 16
            }
        }
        Label {
            objectName: "contact.identity"
            anchors.verticalCenter: parent.verticalCenter
            text: section.crm.identityText
        }
    }
    Repeater {
        model: section.crm.merges
        PaneLine {
            id: merged
            lines: 2
            PaneLink {
                objectName: "contact.unmerge"
                text: qsTr("Unmerge")
                subject: merged.entry.text
                onClicked: section.crm.unmerge(merged.entry.id)
            }
        }
    }
    Item { width: 1; height: Theme.small; visible: section.crm.suggestions.count > 0 && section.crm.identityText !== "" }
    Column {
        width: parent.width
        spacing: Theme.small
        Repeater {
            model: section.crm.suggestions
            MergeSuggestion {
                id: suggestion
                onMerged: section.crm.mergeWith(suggestion.entry.id)
                onDismissed: section.crm.dismissSuggestion(suggestion.entry.id)
            }
        }
    }
}
