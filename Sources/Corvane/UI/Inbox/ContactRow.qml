import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// One person: name, time, the last message, and what is pending.
Item {
    id: row

    required property contactItem contact

    property bool picking: false ///< several rows are being picked
    property bool ringed: false ///< has the keyboard focus

    readonly property color ground: contact.checked || contact.selected ? Theme.tint : hover.hovered ? Theme.raised : Theme.surface

    signal opened
    signal toggled
    signal added ///< Ctrl+click
    signal extended ///< Shift+click
    signal menuAsked

    objectName: "contact:" + contact.id
    implicitHeight: Theme.row
    Accessible.role: Accessible.ListItem
    Accessible.name: contact.spoken
    Accessible.selected: contact.selected
    Accessible.checkable: true
    Accessible.checked: contact.checked
    Accessible.onPressAction: opened()

    Rectangle {
        anchors.fill: parent
        anchors.leftMargin: Theme.small
        anchors.rightMargin: Theme.small
        anchors.topMargin: 1
        anchors.bottomMargin: 1
        radius: Theme.cardRadius
        color: row.ground

        Rectangle {
            anchors.fill: parent
            visible: row.ringed
            radius: parent.radius
            color: Theme.none
            border.width: 2
            border.color: Theme.accent
        }
    }
    Avatar {
        id: face
        x: Theme.large
        anchors.verticalCenter: parent.verticalCenter
        visible: !box.active
        hue: row.contact.hue
        initials: row.contact.initials
        photo: row.contact.avatarPath
        group: row.contact.isGroup
        channel: row.contact.platforms[0] ?? ""
        ground: row.ground
    }
    Loader {
        id: box
        anchors.centerIn: face
        active: row.picking || (hover.hovered && hover.point.position.x < 60)
        sourceComponent: CheckBox {
            checked: row.contact.checked
            name: qsTr("Pick %1").arg(row.contact.name)
            onToggled: row.toggled()
        }
    }

    Label {
        id: title
        anchors.left: face.right
        anchors.leftMargin: Theme.medium
        y: 13
        width: Math.min(implicitWidth, marks.leftmost - anchors.leftMargin - face.x - face.width)
        text: row.contact.name
        font.weight: row.contact.unread ? Theme.strong : Theme.regular
        Accessible.ignored: true
    }
    Row {
        id: marks
        // The marks stay next to the name; the name is elided.
        readonly property real leftmost: time.x - Theme.small - (visibleChildren.length ? width + Theme.small : 0)
        anchors.verticalCenter: title.verticalCenter
        x: title.x + title.width + 6
        spacing: 3

        Repeater {
            // A number, so that a new message does not recreate the marks.
            model: Math.max(0, row.contact.platforms.length - 1)
            ChannelMark {
                required property int index
                channel: row.contact.platforms[index + 1] ?? ""
                size: 13
                color: Theme.faint
            }
        }
        Icon {
            visible: row.contact.isGroup
            name: "system-users"
            size: 13
            color: Theme.faint
        }
        Icon {
            visible: row.contact.isMuted
            name: "notifications-disabled"
            size: 13
            color: Theme.faint
        }
    }
    Label {
        id: time
        anchors.right: parent.right
        anchors.rightMargin: Theme.large
        anchors.baseline: title.baseline
        text: row.contact.timeText
        font.pixelSize: Theme.meta
        color: row.contact.unread && !row.contact.isMuted ? Theme.accent : Theme.faint
        Accessible.ignored: true
    }
    Ticks {
        id: tick
        x: title.x
        anchors.verticalCenter: said.verticalCenter
        size: 14
        ticks: row.contact.ticks
    }
    Label {
        id: said
        anchors.left: tick.visible ? tick.right : title.left
        anchors.leftMargin: tick.visible ? 3 : 0
        anchors.right: count.visible ? count.left : parent.right
        anchors.rightMargin: count.visible ? Theme.small : Theme.large
        y: 34
        text: row.contact.snippet
        color: row.contact.unread ? Theme.text : Theme.soft
        horizontalAlignment: Text.AlignLeft
        Accessible.ignored: true
    }
    Badge {
        id: count
        anchors.right: parent.right
        anchors.rightMargin: Theme.large
        y: 34
        quiet: row.contact.isMuted
        text: row.contact.unread > 99 ? "99+" : row.contact.unread > 0 ? row.contact.unread : ""
    }

    HoverHandler { id: hover }
    TapHandler {
        acceptedModifiers: Qt.NoModifier
        onTapped: row.picking ? row.toggled() : row.opened()
        onLongPressed: row.menuAsked()
    }
    TapHandler {
        acceptedModifiers: Qt.ControlModifier
        onTapped: row.added()
    }
    TapHandler {
        acceptedModifiers: Qt.ShiftModifier
        onTapped: row.extended()
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: row.menuAsked()
    }
}
