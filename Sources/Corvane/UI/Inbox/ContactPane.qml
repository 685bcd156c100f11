import QtQuick
import Corvane

/// The person behind the thread: who, by which channels, and what can be done.
FocusScope {
    id: pane

    required property QtObject inbox
    required property QtObject layout
    property bool over: false ///< lies over the thread rather than beside it

    readonly property var contact: inbox.selected

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Contact")

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
        Shadow { visible: pane.over; radius: 0 }
    }
    Flickable {
        anchors.fill: parent
        contentHeight: column.implicitHeight
        boundsBehavior: Flickable.StopAtBounds
        clip: true

        Column {
            id: column
            width: parent.width
            topPadding: Theme.wide
            bottomPadding: Theme.wide
            spacing: Theme.medium

            Avatar {
                anchors.horizontalCenter: parent.horizontalCenter
                width: 72
                hue: pane.contact.hue
                initials: pane.contact.initials
                photo: pane.contact.avatarPath
                group: pane.contact.isGroup
            }
            Label {
                x: Theme.large
                width: parent.width - Theme.large * 2
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                maximumLineCount: 3
                text: pane.contact.name
                font.pixelSize: Theme.screen
                font.weight: Theme.strong
                Accessible.role: Accessible.Heading
            }
            Label {
                x: Theme.large
                width: parent.width - Theme.large * 2
                visible: text !== ""
                horizontalAlignment: Text.AlignHCenter
                text: [pane.contact.isGroup ? qsTr("Group") : "", pane.contact.isMuted ? qsTr("Muted") : ""].filter(word => word).join(" · ")
                color: Theme.soft
            }

            Section {
                width: parent.width
                layout: pane.layout
                name: "info"
                title: qsTr("Channels")

                Repeater {
                    model: pane.contact.platforms
                    Item {
                        id: line
                        required property int index
                        required property string modelData
                        width: parent.width
                        height: 32
                        Accessible.role: Accessible.StaticText
                        Accessible.name: label.text
                        ChannelMark {
                            id: mark
                            anchors.verticalCenter: parent.verticalCenter
                            channel: line.modelData
                            size: 16
                        }
                        Label {
                            id: label
                            anchors.left: mark.right
                            anchors.leftMargin: Theme.medium
                            anchors.right: answers.left
                            anchors.verticalCenter: parent.verticalCenter
                            text: pane.contact.platformLabels[line.index] ?? ""
                            Accessible.ignored: true
                        }
                        Label {
                            id: answers
                            anchors.right: parent.right
                            anchors.verticalCenter: parent.verticalCenter
                            visible: line.modelData === pane.inbox.composer.replyPlatform
                            text: qsTr("replies go here")
                            font.pixelSize: Theme.meta
                            color: Theme.faint
                        }
                    }
                }
            }
            Section {
                width: parent.width
                layout: pane.layout
                name: "actions"
                title: qsTr("Actions")

                PaneAction {
                    objectName: "contact.mute"
                    focus: true
                    icon.name: pane.contact.isMuted ? "notifications" : "notifications-disabled"
                    text: pane.contact.isMuted ? qsTr("Unmute") : qsTr("Mute")
                    key: Keymap.keysOf("mute")
                    onClicked: pane.inbox.muteSelected()
                }
                PaneAction {
                    objectName: "contact.archive"
                    readonly property bool archived: pane.inbox.filter === "archived"
                    icon.name: archived ? "mail-unarchive" : "mail-archive"
                    text: archived ? qsTr("Move to the inbox") : qsTr("Archive")
                    key: archived ? "" : Keymap.keysOf("archive")
                    onClicked: archived ? pane.inbox.unarchive(pane.contact.id) : pane.inbox.archiveSelected()
                }
                PaneAction {
                    objectName: "contact.copy"
                    icon.name: "edit-copy"
                    text: qsTr("Copy name")
                    onClicked: WindowTools.copy(pane.contact.name)
                }
            }
        }
    }
}
