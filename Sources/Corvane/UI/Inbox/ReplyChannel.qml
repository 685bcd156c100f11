import QtQml
import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// The channel that a reply goes to, and the choice among the person's others.
Chip {
    id: chip

    required property ReplyRouting routing
    readonly property bool hasChoice: routing.platforms.length > 1

    objectName: "composer.channel"
    implicitHeight: Theme.control
    mark: routing.replyPlatform
    text: routing.label
    enabled: hasChoice
    chevron: hasChoice
    Accessible.role: Accessible.ButtonMenu
    Accessible.name: qsTr("Reply on %1").arg(text)
    onClicked: choices.open()

    Menu {
        id: choices
        y: -height - Theme.tight
        onOpened: {
            for (let i = 0; i < chip.routing.platforms.length; ++i) {
                if (chip.routing.platforms[i].id === chip.routing.replyPlatform)
                    currentIndex = i;
            }
        }
        Instantiator {
            model: chip.routing.platforms
            delegate: MenuItem {
                required property choice modelData
                text: modelData.label
                checkable: true
                checked: chip.routing.replyPlatform === modelData.id
                onTriggered: chip.routing.replyPlatform = modelData.id
            }
            onObjectAdded: (index, item) => choices.insertItem(index, item)
            onObjectRemoved: (index, item) => choices.removeItem(item)
        }
    }
}
