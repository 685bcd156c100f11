import QtQuick
import Corvane.Controls
import Corvane.Work

/// An agent: what it does, when it was last seen, and what it said last.
Rectangle {
    id: line

    required property workAgent agent
    property bool compact

    implicitHeight: column.height + Theme.medium * 2
    radius: Theme.cardRadius
    color: Theme.surface
    border.width: compact ? 0 : 1
    border.color: Theme.line
    Accessible.role: Accessible.ListItem
    Accessible.name: agent.aloud

    Column {
        id: column
        x: line.compact ? 0 : Theme.medium
        y: Theme.medium
        width: parent.width - x * 2
        spacing: Theme.tight
        Item {
            width: parent.width
            height: name.implicitHeight
            Rectangle {
                id: dot
                anchors.verticalCenter: parent.verticalCenter
                width: 8
                height: 8
                radius: 4
                color: line.agent.tone === "good" ? Theme.good : line.agent.tone === "bad" ? Theme.bad : Theme.faint
            }
            Label {
                id: name
                anchors.left: dot.right
                anchors.leftMargin: Theme.small
                width: Math.min(implicitWidth, parent.width - x - condition.implicitWidth - Theme.small)
                text: line.agent.name
                font.weight: Theme.strong
                Accessible.ignored: true
            }
            Label {
                id: condition
                anchors.left: name.right
                anchors.leftMargin: Theme.small
                anchors.baseline: name.baseline
                text: line.agent.state
                font.pixelSize: Theme.meta
                color: line.agent.tone === "bad" ? Theme.bad : line.agent.tone === "good" ? Theme.good : Theme.soft
                Accessible.ignored: true
            }
        }
        Label {
            width: parent.width
            text: line.agent.tool ? line.agent.heartbeat + " · " + line.agent.tool : line.agent.heartbeat
            font.pixelSize: Theme.meta
            color: Theme.soft
            Accessible.ignored: true
        }
        Label {
            width: parent.width
            visible: text !== ""
            wrapMode: Text.Wrap
            maximumLineCount: 2
            text: line.agent.session
            font.pixelSize: Theme.meta
            color: Theme.faint
            Accessible.ignored: true
        }
        Label {
            width: parent.width
            visible: text !== ""
            wrapMode: Text.Wrap
            maximumLineCount: 2
            text: line.agent.task
            Accessible.ignored: true
        }
        Label {
            width: parent.width
            visible: line.agent.lastWords !== ""
            wrapMode: Text.Wrap
            maximumLineCount: 3
            text: "“" + line.agent.lastWords + "”"
            color: Theme.soft
            Accessible.ignored: true
        }
    }
}
