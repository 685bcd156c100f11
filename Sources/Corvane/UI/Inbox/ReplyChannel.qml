import QtQml
import QtQuick
import Corvane

/// The channel that a reply goes to, and the choice among the person's others.
Chip {
    id: chip

    required property QtObject composer
    readonly property bool hasChoice: composer.replyPlatforms.length > 1

    objectName: "composer.channel"
    implicitHeight: Theme.control
    mark: composer.replyPlatform
    text: composer.replyPlatformLabel
    enabled: hasChoice
    chevron: hasChoice
    Accessible.role: Accessible.ButtonMenu
    Accessible.name: qsTr("Reply on %1").arg(text)
    onClicked: choices.open()

    Menu {
        id: choices
        y: -height - Theme.tight
        onOpened: currentIndex = chip.composer.replyPlatforms.findIndex(each => each.key === chip.composer.replyPlatform)
        Instantiator {
            model: chip.composer.replyPlatforms
            delegate: MenuItem {
                required property var modelData
                text: modelData.label
                checkable: true
                checked: chip.composer.replyPlatform === modelData.key
                onTriggered: chip.composer.replyPlatform = modelData.key
            }
            onObjectAdded: (index, item) => choices.insertItem(index, item)
            onObjectRemoved: (index, item) => choices.removeItem(item)
        }
    }
}
