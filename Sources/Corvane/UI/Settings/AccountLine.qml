import QtQuick
import QtQuick.Layouts
import Corvane.Controls
import Corvane.Settings

/// One account: its channel and name, its state in words, and what can be done with it.
Item {
    id: line

    required property int index
    required property accountRow account

    readonly property color tone: account.kind === "good" ? Theme.good : account.kind === "bad" ? Theme.bad : account.kind === "warn" ? Theme.warn : Theme.soft
    // The first action is a button; the others are in a menu.
    readonly property accountAction first: account.first
    readonly property list<accountAction> others: account.others

    signal acted(action: accountAction)

    objectName: "account:" + account.accountId
    implicitHeight: Math.max(72, words.implicitHeight + Theme.large * 2)
    Accessible.role: Accessible.ListItem
    Accessible.name: account.sentence

    Rectangle {
        visible: line.index > 0
        x: Theme.large
        width: parent.width - Theme.large * 2
        height: 1
        color: Theme.line
    }
    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.large
        anchors.rightMargin: Theme.medium
        spacing: Theme.medium

        Rectangle {
            Layout.preferredWidth: 40
            Layout.preferredHeight: 40
            radius: Theme.cardRadius
            color: Theme.raised
            ChannelMark {
                anchors.centerIn: parent
                channel: line.account.channel
                size: 20
            }
        }
        ColumnLayout {
            id: words
            Layout.fillWidth: true
            spacing: 3

            Row {
                Layout.fillWidth: true
                spacing: Theme.small
                Label {
                    text: line.account.name
                    font.weight: Theme.strong
                    Accessible.ignored: true
                }
                Label {
                    text: line.account.channelLabel
                    color: Theme.faint
                    Accessible.ignored: true
                }
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: 6
                Rectangle {
                    Layout.preferredWidth: 8
                    Layout.preferredHeight: 8
                    radius: 4
                    color: line.account.kind === "idle" ? Theme.none : line.tone
                    border.width: line.account.kind === "idle" ? 1.5 : 0
                    border.color: Theme.faint
                    SequentialAnimation on opacity {
                        running: line.account.kind === "busy" && !Theme.reducedMotion
                        loops: Animation.Infinite
                        alwaysRunToEnd: true
                        NumberAnimation { to: 0.3; duration: 700; easing.type: Easing.InOutSine }
                        NumberAnimation { to: 1; duration: 700; easing.type: Easing.InOutSine }
                    }
                }
                Label {
                    text: line.account.status
                    color: line.tone
                    Accessible.ignored: true
                }
                Label {
                    Layout.fillWidth: true
                    text: line.account.detail
                    color: Theme.soft
                    Accessible.ignored: true
                }
            }
            Label {
                Layout.fillWidth: true
                text: line.account.lastMessage
                font.pixelSize: Theme.meta
                color: Theme.faint
                Accessible.ignored: true
            }
            Label {
                Layout.fillWidth: true
                visible: text !== ""
                text: line.account.note
                wrapMode: Text.Wrap
                maximumLineCount: 3
                font.pixelSize: Theme.meta
                color: line.account.kind === "bad" ? Theme.bad : Theme.faint
                Accessible.ignored: true
            }
        }
        Button {
            visible: line.first.id !== ""
            text: line.first.label
            Accessible.description: line.account.name
            onClicked: line.acted(line.first)
        }
        IconButton {
            id: more
            visible: line.others.length > 0
            icon.name: "overflow-menu"
            text: qsTr("More for %1").arg(line.account.name)
            Accessible.role: Accessible.ButtonMenu
            down: pressed || menu.visible
            onClicked: menu.popup(more, more.width - menu.width, more.height + Theme.tight)

            Menu {
                id: menu
                Repeater {
                    model: line.others
                    MenuItem {
                        required property accountAction modelData
                        text: modelData.label
                        danger: modelData.destructive
                        checkable: modelData.checkable
                        checked: modelData.checked
                        onTriggered: line.acted(modelData)
                    }
                }
            }
        }
    }
}
