import QtQml
import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// The channel that a reply goes to, and the choice among the person's others.
Chip {
    id: chip

    required property Composer composer
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
        onOpened: {
            for (let i = 0; i < chip.composer.replyPlatforms.length; ++i) {
                if (chip.composer.replyPlatforms[i].id === chip.composer.replyPlatform)
                    currentIndex = i;
            }
        }
        Instantiator {
            model: chip.composer.replyPlatforms
            delegate: MenuItem {
                required property choice modelData
                text: modelData.label
                checkable: true
                checked: chip.composer.replyPlatform === modelData.id
                onTriggered: chip.composer.replyPlatform = modelData.id
            }
            onObjectAdded: (index, item) => choices.insertItem(index, item)
            onObjectRemoved: (index, item) => choices.removeItem(item)
        }
    }
}
