import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Inbox

/// The person behind the thread: who they are, what is known and what happened, what is planned with them.
FocusScope {
    id: pane

    required property InboxView inbox
    required property WindowLayout layout
    property bool over: false ///< lies over the thread rather than beside it

    readonly property contactItem contact: inbox.person.selected
    readonly property CRMPane crm: inbox.person.crm

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Contact")

    function reveal(name: string) {
        if (name === "deals")
            dealsSection.reveal();
        else if (name === "notes")
            notesSection.reveal();
        else if (name === "tasks")
            tasksSection.reveal();
    }

    RevealFocus { view: view }
    Connections {
        target: pane.inbox.person
        function onSelectionChanged() {
            view.contentY = 0;
        }
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
        Shadow { visible: pane.over; radius: 0 }
    }
    Banner {
        id: error
        objectName: "contact.error"
        x: Theme.medium
        y: Theme.medium
        z: 1
        width: parent.width - Theme.medium * 2
        visible: text !== ""
        tone: "bad"
        text: pane.crm.errorText
        dismissable: true
        onDismissed: pane.crm.dismissError()
    }
    Flickable {
        id: view
        objectName: "contact.view"
        anchors.fill: parent
        anchors.topMargin: error.visible ? error.height + Theme.medium * 2 : 0
        contentHeight: column.implicitHeight
        boundsBehavior: Flickable.StopAtBounds
        pixelAligned: true
        clip: true
        T.ScrollBar.vertical: ScrollBar {}

        Column {
            id: column
            width: parent.width
            topPadding: Theme.wide
            bottomPadding: Theme.wide

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
                topPadding: Theme.medium
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
                topPadding: Theme.tight
                visible: text !== ""
                horizontalAlignment: Text.AlignHCenter
                text: [pane.contact.isGroup ? qsTr("Group") : "", pane.contact.isMuted ? qsTr("Muted") : ""].filter(word => word).join(" · ")
                color: Theme.soft
            }
            Item { width: 1; height: Theme.large }

            IdentitySection {
                width: parent.width
                layout: pane.layout
                crm: pane.crm
                platforms: pane.contact.platforms
            }
            Section {
                width: parent.width
                layout: pane.layout
                name: "memory"
                title: qsTr("Memory")
                count: pane.crm.memory.rows.count
                emptyText: pane.crm.memory.emptyText

                Repeater {
                    model: pane.crm.memory.rows
                    PaneLine {
                        id: fact
                        PaneLink {
                            objectName: "contact.forget"
                            text: qsTr("Forget")
                            subject: fact.entry.text
                            onClicked: pane.crm.forget(fact.entry.id)
                        }
                    }
                }
            }
            Section {
                width: parent.width
                layout: pane.layout
                name: "info"
                title: qsTr("Info")
                count: pane.crm.info.rows.count
                emptyText: pane.crm.info.emptyText

                Repeater {
                    model: pane.crm.info.rows
                    InfoLine {}
                }
            }
            Section {
                id: dealsSection
                width: parent.width
                layout: pane.layout
                name: "deals"
                title: qsTr("Deals")
                count: pane.crm.deals.rows.count
                emptyText: pane.crm.deals.emptyText

                Repeater {
                    model: pane.crm.deals.rows
                    PaneLine {
                        id: deal
                        strong: true
                        lines: 2
                        PaneLink {
                            id: move
                            objectName: "contact.moveDeal"
                            text: qsTr("Move")
                            subject: deal.entry.text
                            onClicked: stages.open()
                            StageMenu {
                                id: stages
                                y: move.height
                                names: pane.crm.stages
                                current: deal.entry.stage
                                onPicked: stage => pane.crm.moveDeal(deal.entry.id, stage)
                            }
                        }
                    }
                }
                PaneAction {
                    objectName: "contact.addDeal"
                    icon.name: "list-add"
                    text: qsTr("Add Deal")
                    onClicked: pane.crm.dealForm.open()
                }
            }
            NotesSection {
                id: notesSection
                width: parent.width
                layout: pane.layout
                crm: pane.crm
            }
            Section {
                width: parent.width
                layout: pane.layout
                name: "activity"
                title: qsTr("Activity")
                count: pane.crm.activity.rows.count
                showsCount: false
                emptyText: pane.crm.activity.emptyText

                Repeater {
                    model: pane.crm.activity.rows
                    PaneLine {
                        lines: 2
                        foldable: false
                    }
                }
                PaneLink {
                    x: -Theme.small
                    objectName: "contact.olderActivity"
                    visible: pane.crm.activity.hasOlder
                    text: qsTr("Show older")
                    subject: qsTr("Activity")
                    onClicked: pane.crm.activity.showOlder()
                }
            }
            TasksSection {
                id: tasksSection
                width: parent.width
                layout: pane.layout
                crm: pane.crm
            }
            Section {
                width: parent.width
                layout: pane.layout
                name: "actions"
                title: qsTr("Actions")

                PaneAction {
                    objectName: "contact.mute"
                    icon.name: pane.contact.isMuted ? "notifications" : "notifications-disabled"
                    text: pane.contact.isMuted ? qsTr("Unmute") : qsTr("Mute")
                    key: Commands.keysOf("mute")
                    onClicked: pane.inbox.actions.muteSelected()
                }
                PaneAction {
                    objectName: "contact.archive"
                    icon.name: pane.inbox.actions.unarchives ? "mail-unarchive" : "mail-archive"
                    text: pane.inbox.actions.archiveLabel
                    key: Commands.keysOf("archive")
                    onClicked: pane.inbox.actions.archiveSelected()
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

    AddDealSheet { crm: pane.crm }
}
