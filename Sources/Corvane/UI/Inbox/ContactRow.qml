import QtQuick
import Corvane

/// One person: who, when, what was said last, and what waits.
Item {
    id: row

    required property string id
    required property string name
    required property var platforms
    required property string snippet
    required property string ticks
    required property string timeText
    required property int unread
    required property bool isGroup
    required property string avatarPath
    required property string initials
    required property int hue
    required property bool isMuted
    required property string spoken
    required property bool selected
    required property bool checked

    property bool picking: false ///< several rows are being picked
    property bool ringed: false ///< the keyboard is here

    readonly property color ground: checked || selected ? Theme.tint : hover.hovered ? Theme.raised : Theme.surface

    signal opened
    signal toggled
    signal added ///< Ctrl and a press
    signal extended ///< Shift and a press
    signal menuAsked

    objectName: "contact:" + id
    implicitHeight: Theme.row
    Accessible.role: Accessible.ListItem
    Accessible.name: spoken
    Accessible.selected: selected
    Accessible.checkable: true
    Accessible.checked: checked
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
        visible: !box.visible
        hue: row.hue
        initials: row.initials
        photo: row.avatarPath
        group: row.isGroup
        channel: row.platforms[0] ?? ""
        ground: row.ground
    }
    CheckBox {
        id: box
        anchors.centerIn: face
        visible: row.picking || (hover.hovered && hover.point.position.x < 60)
        checked: row.checked
        name: qsTr("Pick %1").arg(row.name)
        onToggled: row.toggled()
    }

    Label {
        id: title
        anchors.left: face.right
        anchors.leftMargin: Theme.medium
        y: 13
        width: Math.min(implicitWidth, marks.leftmost - anchors.leftMargin - face.x - face.width)
        text: row.name
        font.weight: row.unread ? Theme.strong : Theme.regular
        Accessible.ignored: true
    }
    Row {
        id: marks
        // Marks keep their place beside the name; the name gives way.
        readonly property real leftmost: time.x - Theme.small - (visibleChildren.length ? width + Theme.small : 0)
        anchors.verticalCenter: title.verticalCenter
        x: title.x + title.width + 6
        spacing: 3

        Repeater {
            model: row.platforms.length > 1 ? row.platforms.slice(1) : []
            ChannelMark {
                required property string modelData
                channel: modelData
                size: 13
                color: Theme.faint
            }
        }
        Icon {
            visible: row.isGroup
            name: "system-users"
            size: 13
            color: Theme.faint
        }
        Icon {
            visible: row.isMuted
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
        text: row.timeText
        font.pixelSize: Theme.meta
        color: row.unread && !row.isMuted ? Theme.accent : Theme.faint
        Accessible.ignored: true
    }
    Ticks {
        id: tick
        x: title.x
        anchors.verticalCenter: said.verticalCenter
        size: 14
        ticks: row.ticks
    }
    Label {
        id: said
        anchors.left: tick.visible ? tick.right : title.left
        anchors.leftMargin: tick.visible ? 3 : 0
        anchors.right: count.visible ? count.left : parent.right
        anchors.rightMargin: count.visible ? Theme.small : Theme.large
        y: 34
        text: row.snippet
        color: row.unread ? Theme.text : Theme.soft
        horizontalAlignment: Text.AlignLeft
        Accessible.ignored: true
    }
    Badge {
        id: count
        anchors.right: parent.right
        anchors.rightMargin: Theme.large
        y: 34
        quiet: row.isMuted
        text: row.unread > 99 ? "99+" : row.unread > 0 ? row.unread : ""
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
